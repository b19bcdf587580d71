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

    // Gives an element a class or takes it away.
    function setClass(element, name, isOn) {
        var names = element.className.split(' ').filter(function (other) {
            return other !== name;
        });
        if (isOn)
            names.push(name);
        element.className = names.join(' ');
    }

    return { byId: byId, setText: setText, child: child, setClass: setClass };
}());
