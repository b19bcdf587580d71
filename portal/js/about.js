// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// What the page finds of the box: the script objects and their members, the box's name and versions, the keys.
(function () {
    'use strict';

    var COLUMNS = 4;
    var shown = null;

    function showMembers(object) {
        shown = object;
        Screens.go('members');
    }

    function objectRow(object) {
        var count = object.members.length;
        return {
            id: object.name,
            name: object.name,
            about: object.purpose,
            value: object.found ? count + (count === 1 ? ' member' : ' members') : 'not found',
            kind: object.found ? 'object' : 'failed',
            ok: function () {
                showMembers(object);
            }
        };
    }

    function showFacts() {
        Dom.setText('address', location.href);
        Dom.setText('user-agent', navigator.userAgent);
        Dom.setText('versions', window.StbDisplay ? 'API ' + StbDisplay.APIVersion + ', firmware '
            + StbDisplay.FirmwareVersion + ', serial number ' + StbDisplay.SerialNumber : 'not told');
    }

    Screens.add('about', {
        layout: 'page',
        title: function () {
            return 'Script objects';
        },
        hints: function () {
            return [['OK', 'members'], ['Back', 'return']];
        },
        rows: function () {
            return ScriptObjects.find().map(objectRow);
        },
        enter: showFacts
    });

    // Column by column, with a list for each.
    function showInColumns(names) {
        var parent = Dom.byId('members-list');
        var length = Math.ceil(names.length / COLUMNS);
        var column;
        parent.textContent = '';
        names.forEach(function (name, i) {
            if (i % length === 0)
                column = Dom.child(parent, 'ul', '', '');
            Dom.child(column, 'li', '', name);
        });
    }

    Screens.add('members', {
        layout: 'sheet',
        hints: function () {
            return [['Back', 'return']];
        },
        enter: function () {
            Dom.setText('members-object', shown.name);
            Dom.setText('members-count', shown.found ? String(shown.members.length) : 'not found in this page');
            showInColumns(shown.members);
        }
    });
}());
