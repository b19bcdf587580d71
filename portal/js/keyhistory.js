// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Shows the last keys pressed, newest first, by name and code. A key pressed again only counts up.
var KeyHistory = (function () {
    'use strict';

    var LENGTH = 4;
    var presses = [];

    function show(list) {
        list.textContent = '';
        presses.forEach(function (press) {
            var item = document.createElement('li');
            var name = document.createElement('b');
            name.textContent = press.name;
            item.appendChild(name);
            item.appendChild(document.createTextNode(' ' + press.code + (press.count > 1 ? ' \u00d7' + press.count : '')));
            list.appendChild(item);
        });
    }

    function add(code) {
        if (presses.length && presses[0].code === code)
            presses[0].count += 1;
        else
            presses.unshift({ name: Keys.nameOf(code), code: code, count: 1 });
        presses = presses.slice(0, LENGTH);
        show(document.getElementById('keys'));
    }

    return { add: add };
}());
