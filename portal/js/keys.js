// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The keys of a remote control, as their key codes reach the page.
var Keys = (function () {
    'use strict';

    var LEFT = 37, UP = 38, RIGHT = 39, DOWN = 40, OK = 13, BACKSPACE = 8, ESCAPE = 27;
    var MUTE = 173, VOLUME_DOWN = 174, VOLUME_UP = 175;

    var names = {
        8: 'Backspace', 9: 'Tab', 13: 'Enter', 16: 'Shift', 17: 'Control', 18: 'Alt', 27: 'Escape', 32: 'Space',
        33: 'PageUp', 34: 'PageDown', 35: 'End', 36: 'Home', 37: 'Left', 38: 'Up', 39: 'Right', 40: 'Down',
        45: 'Insert', 46: 'Delete', 93: 'Menu', 170: 'Search', 173: 'Mute', 174: 'VolumeDown', 175: 'VolumeUp',
        176: 'NextTrack', 177: 'PreviousTrack', 178: 'Stop', 179: 'Play'
    };

    // Letters and digits have the code of their character, F1 to F24 follow one another.
    function nameOf(code) {
        if (names[code])
            return names[code];
        if ((code >= 48 && code <= 57) || (code >= 65 && code <= 90))
            return String.fromCharCode(code);
        if (code >= 96 && code <= 105)
            return 'Numpad' + (code - 96);
        if (code >= 112 && code <= 135)
            return 'F' + (code - 111);
        return 'Key';
    }

    function isBack(code) {
        return code === BACKSPACE || code === ESCAPE;
    }

    function isArrow(code) {
        return code >= LEFT && code <= DOWN;
    }

    return {
        LEFT: LEFT, UP: UP, RIGHT: RIGHT, DOWN: DOWN, OK: OK, MUTE: MUTE, VOLUME_DOWN: VOLUME_DOWN,
        VOLUME_UP: VOLUME_UP, nameOf: nameOf, isBack: isBack, isArrow: isArrow
    };
}());
