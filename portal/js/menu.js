// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The list of rows of a screen. A row is an object:
//   id       names it among its screen's rows
//   name     its text
//   about    smaller text below, optional
//   mark     text before it, optional
//   value    text behind it, optional
//   kind     further classes for the style sheet, optional
//   ok       what OK does, optional
//   change   what the left and right keys do, a function of -1 or 1, optional
// One that does nothing is only to be read, and never has the focus.
var Menu = (function () {
    'use strict';

    var changes = {};

    function makeActive(button, row) {
        button.id = 'row-' + row.id;
        button.addEventListener('click', row.ok || function () {
            row.change(1);
        }, false);
        if (row.change) {
            Dom.setClass(button, 'changeable', true);
            changes[button.id] = row.change;
        }
    }

    function add(row) {
        var isActive = Boolean(row.ok || row.change);
        var element = Dom.child(Dom.byId('rows'), isActive ? 'button' : 'div', 'row ' + (row.kind || ''), '');
        var line = Dom.child(element, 'span', 'line', '');
        var name;
        if (row.mark)
            Dom.child(line, 'span', 'mark', row.mark);
        name = Dom.child(line, 'span', 'name', row.name);
        if (row.about)
            Dom.child(name, 'span', 'about', row.about);
        if (row.value !== undefined)
            Dom.child(line, 'span', 'value', row.value);
        if (isActive)
            makeActive(element, row);
    }

    // Shows these rows in place of others. Where the focus is, it stays, if that row is there again.
    function show(title, rows) {
        var focused = Focus.current() && Focus.current().id;
        Dom.setText('menu-title', title);
        Dom.setText('rows', '');
        changes = {};
        rows.forEach(add);
        Focus.moveToId(focused);
    }

    // Changes the row with the focus, if it can be changed. Says whether it could.
    function change(step) {
        var action = changes[Focus.current().id];
        if (action)
            action(step);
        return Boolean(action);
    }

    // The value so many places after another one in a list, round and round.
    function neighbour(list, value, step) {
        return list[(list.indexOf(value) + step + list.length) % list.length];
    }

    return { show: show, change: change, neighbour: neighbour };
}());
