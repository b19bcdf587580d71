// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The focus: one button of the page, marked by the class "focused", which the arrow keys move to a neighbour on the
// screen. It is not the engine's own focus, which is lost when the window is not active.
var Focus = (function () {
    'use strict';

    var focused = null;

    function current() {
        return focused;
    }

    function moveTo(button) {
        if (focused)
            Dom.setClass(focused, 'focused', false);
        focused = button;
        Dom.setClass(focused, 'focused', true);
        focused.scrollIntoViewIfNeeded(false);
    }

    function isShown(button) {
        return button.offsetParent !== null;
    }

    // Moves the focus to the button with this id. If there is none, it goes to the first row or, without rows, to the
    // picture.
    function moveToId(id) {
        var choices = [document.getElementById(id), document.querySelector('button.row'),
            document.getElementById('picture')];
        moveTo(choices.filter(function (button) {
            return button && isShown(button);
        })[0]);
    }

    function centreOf(button) {
        var box = button.getBoundingClientRect();
        return { x: (box.left + box.right) / 2, y: (box.top + box.bottom) / 2 };
    }

    // How far `to` is from `from`, if it lies in that direction rather than beside it; else infinitely far.
    function distance(from, to, direction) {
        var x = to.x - from.x;
        var y = to.y - from.y;
        var ahead = { 37: -x, 38: -y, 39: x, 40: y }[direction];
        var aside = direction === Keys.LEFT || direction === Keys.RIGHT ? Math.abs(y) : Math.abs(x);
        return ahead > 0 && ahead >= aside ? ahead + aside : Infinity;
    }

    // Moves the focus to the nearest visible button in the direction of an arrow key, if there is one.
    function move(direction) {
        var buttons = document.querySelectorAll('button');
        var start = centreOf(focused);
        var nearest = null;
        var best = Infinity;
        var i, away;
        for (i = 0; i < buttons.length; i += 1) {
            away = isShown(buttons[i]) ? distance(start, centreOf(buttons[i]), direction) : Infinity;
            if (away < best) {
                best = away;
                nearest = buttons[i];
            }
        }
        if (nearest)
            moveTo(nearest);
    }

    return { current: current, moveToId: moveToId, move: move };
}());
