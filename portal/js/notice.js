// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// A short text at the top of the screen, which goes by itself.
var Notice = (function () {
    'use strict';

    var SECONDS = 3;
    var timer = 0;

    function hide() {
        Dom.setClass(document.body, 'noticed', false);
    }

    function show(text) {
        Dom.setText('notice', text);
        Dom.setClass(document.body, 'noticed', true);
        clearTimeout(timer);
        timer = setTimeout(hide, SECONDS * 1000);
    }

    return { show: show };
}());
