// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// What the portal remembers from one start to the next, in the page's local storage. A box without one forgets it.
var Memory = (function () {
    'use strict';

    function get(key, otherwise) {
        var text = window.localStorage ? localStorage.getItem(key) : null;
        return text === null ? otherwise : JSON.parse(text);
    }

    function set(key, value) {
        if (window.localStorage)
            localStorage.setItem(key, JSON.stringify(value));
    }

    // Storage is off until a page asks for it.
    function start() {
        if (window.StbDisplay)
            StbDisplay.EnableHtml5LocalStorage(true);
    }

    return { get: get, set: set, start: start };
}());
