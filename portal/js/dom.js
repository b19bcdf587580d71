// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The few things that the portal does with the page's elements.
var Dom = (function () {
    'use strict';

    function byId(id) {
        return document.getElementById(id);
    }

    function setText(id, text) {
        byId(id).textContent = text;
    }

    // Appends a new element to a parent.
    function child(parent, tag, className, text) {
        var element = document.createElement(tag);
        element.className = className;
        element.textContent = text;
        parent.appendChild(element);
        return element;
    }

    return { byId: byId, setText: setText, child: child };
}());
