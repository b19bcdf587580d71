// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Runs in each new page and in each of its frames, before their first script, as long as the certificates are not in
// use: a socket is checked against those that are in use when it is made.
(function () {
    'use strict';
    var certificates = window.certificates;
    var WebSocketObject = window.WebSocket;
    var define = Object.defineProperty;
    delete window.certificates;

    function put(value) {
        define(window, 'WebSocket', {value: value, writable: true, enumerable: false, configurable: true});
    }

    if (WebSocketObject) {
        define(window, 'WebSocket', {
            get: function () {
                certificates.require();
                put(WebSocketObject);
                return WebSocketObject;
            },
            set: put,
            enumerable: false,
            configurable: true
        });
    }
})();
