// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// A short text at the top of the screen, which goes by itself.
var Notice = (function () {
    'use strict';

    var SECONDS = 3;
    var timer = 0;

    function hide() {
        document.body.classList.remove('noticed');
    }

    function show(text) {
        Dom.setText('notice', text);
        document.body.classList.add('noticed');
        clearTimeout(timer);
        timer = setTimeout(hide, SECONDS * 1000);
    }

    return { show: show };
}());
