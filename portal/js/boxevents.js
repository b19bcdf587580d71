// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// What the box tells the page. Who wants to hear of an event says so here, since the box knows one function only.
var BoxEvents = (function () {
    'use strict';

    var STATE = 1, METADATA = 2, POSITION = 3, AUDIO = 4, VIDEO = 5, SUBTITLES = 6, RECORDS = 139;

    var names = {
        1: 'state', 2: 'metadata', 3: 'position', 4: 'audio', 5: 'video', 6: 'subtitles', 7: 'volume', 8: 'zoom',
        9: 'mute', 11: 'multicast', 14: 'teletext', 15: 'teletext page', 129: 'outputs', 137: 'boot parameters',
        139: 'recordings', 144: 'HDMI'
    };

    var listeners = [];

    // Has listener(argument, type) called at each event of these types, or of all if there are none.
    function listen(listener, types) {
        listeners.push({ call: listener, types: types });
    }

    function dispatch(argument, type) {
        listeners.forEach(function (listener) {
            if (!listener.types || listener.types.indexOf(type) >= 0)
                listener.call(argument, type);
        });
    }

    function nameOf(type) {
        return names[type] || 'event';
    }

    function start() {
        if (window.StbMedia)
            StbMedia.SetEventCallback(dispatch);
    }

    return {
        STATE: STATE, METADATA: METADATA, POSITION: POSITION, AUDIO: AUDIO, VIDEO: VIDEO, SUBTITLES: SUBTITLES,
        RECORDS: RECORDS, listen: listen, nameOf: nameOf, start: start
    };
}());
