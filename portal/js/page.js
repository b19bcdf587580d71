// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The page as a whole: drawn for one width, it is scaled to the one that it has.
var Page = (function () {
    'use strict';

    var DRAWN_WIDTH = 1280;

    function scale() {
        document.documentElement.style.zoom = window.innerWidth / DRAWN_WIDTH;
    }

    // The place of an element on the screen. Engines differ in whether they measure before scaling or after; what they
    // say of the body, which is as wide as the window, tells.
    function placeOf(element) {
        var box = element.getBoundingClientRect();
        var factor = window.innerWidth / document.body.getBoundingClientRect().width;
        return {
            left: Math.round(box.left * factor),
            top: Math.round(box.top * factor),
            width: Math.round(box.width * factor),
            height: Math.round(box.height * factor)
        };
    }

    return { scale: scale, placeOf: placeOf };
}());
