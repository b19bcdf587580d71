// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Finds the box's script objects in the page and lists what they offer.
var ScriptObjects = (function () {
    'use strict';

    var known = [
        { name: 'StbMedia', purpose: 'Players and their tracks' },
        { name: 'StbDisplay', purpose: 'Screen and box' },
        { name: 'StbPVR', purpose: 'Scheduled recordings' },
        { name: 'stb_media', purpose: 'StbMedia for older portals' },
        { name: 'stb_display', purpose: 'StbDisplay for older portals' }
    ];

    // The toolkit gives these to every script object. They are no part of the box's interface: a portal leaves them alone.
    var foreign = ['objectName', 'objectNameChanged', 'destroyed', 'deleteLater'];

    // The names of an object's members, each once. Methods are enumerated as signatures, such as "Pause(int)".
    function membersOf(object) {
        var names = [];
        var key, name;
        for (key in object) {
            name = key.split('(')[0];
            if (foreign.indexOf(name) < 0 && names.indexOf(name) < 0)
                names.push(name);
        }
        return names;
    }

    // Every script object that a box has, with its members, or with none and found = false.
    function find() {
        return known.map(function (entry) {
            var object = window[entry.name];
            var found = typeof object === 'object' && object !== null;
            return {
                name: entry.name,
                purpose: entry.purpose,
                found: found,
                members: found ? membersOf(object) : []
            };
        });
    }

    return { find: find };
}());
