// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The screens of the portal, and how one leads to another. A screen is an object:
//   layout   page (rows beside the picture), video (the picture alone), overlay (rows over it), sheet (no picture)
//   title    returns the rows' heading
//   rows     returns its rows, see Menu; not for the layouts video and sheet
//   hints    returns pairs of a key and what it does
//   enter, leave, handleKey   what happens besides, optional; handleKey says whether it has used the key
var Screens = (function () {
    'use strict';

    var screens = {};
    var open = []; // from the first to the one that is shown

    function add(name, screen) {
        screens[name] = screen;
    }

    function current() {
        return open[open.length - 1].name;
    }

    function currentScreen() {
        return screens[current()];
    }

    // Shows the rows of the current screen anew, because what they tell has changed.
    function refresh() {
        var screen = currentScreen();
        if (screen.rows)
            Menu.show(screen.title(), screen.rows());
    }

    function showHints(hints) {
        var list = Dom.byId('hints');
        list.textContent = '';
        hints.concat([['F1', 'leave']]).forEach(function (hint) {
            Dom.child(list, 'kbd', '', hint[0]);
            list.appendChild(document.createTextNode(hint[1]));
        });
    }

    function show(focus) {
        var screen = currentScreen();
        document.body.setAttribute('data-screen', current());
        document.body.setAttribute('data-layout', screen.layout);
        refresh();
        showHints(screen.hints());
        Focus.moveToId(focus);
        if (screen.enter)
            screen.enter();
        Player.place();
    }

    function leave() {
        if (currentScreen().leave)
            currentScreen().leave();
    }

    function go(name) {
        if (open.length) {
            open[open.length - 1].focus = Focus.current().id;
            leave();
        }
        open.push({ name: name });
        show();
    }

    // To the screen before, and to the row from which this one was opened.
    function back() {
        if (open.length < 2)
            return;
        leave();
        open.pop();
        show(open[open.length - 1].focus);
    }

    function handleArrow(code) {
        var step = { 37: -1, 39: 1 }[code];
        if (!step || !Menu.change(step))
            Focus.move(code);
    }

    function handleKey(code) {
        var screen = currentScreen();
        if (screen.handleKey && screen.handleKey(code))
            return true;
        if (Keys.isBack(code))
            back();
        else if (screen.layout === 'sheet')
            return false;
        else if (code === Keys.OK)
            Focus.current().click();
        else if (Keys.isArrow(code))
            handleArrow(code);
        else
            return false;
        return true;
    }

    return { add: add, current: current, refresh: refresh, go: go, back: back, handleKey: handleKey };
}());
