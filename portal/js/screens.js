// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The screens of the portal: home, the members of one script object, and the full-screen picture.
var Screens = (function () {
    'use strict';

    function setText(id, text) {
        document.getElementById(id).textContent = text;
    }

    function child(parent, tag, className, text) {
        var element = document.createElement(tag);
        element.className = className;
        element.textContent = text;
        parent.appendChild(element);
        return element;
    }

    function current() {
        return document.body.getAttribute('data-screen');
    }

    function show(screen) {
        document.body.setAttribute('data-screen', screen);
    }

    function memberWord(count) {
        return count === 1 ? 'member' : 'members';
    }

    function showMembers(object) {
        var list = document.getElementById('members-list');
        var count = object.members.length;
        setText('members-object', object.name);
        setText('members-count', object.found ? count + ' ' + memberWord(count) : 'not found in this page');
        list.textContent = '';
        object.members.forEach(function (name) {
            child(list, 'li', '', name);
        });
        show('members');
    }

    // The row of one script object; OK opens its members.
    function addObject(object) {
        var row = child(document.getElementById('objects'), 'button', 'object', '');
        var name = child(row, 'span', 'name', object.name);
        var count = child(row, 'span', 'count', object.found ? object.members.length : 'not found');
        child(name, 'span', 'purpose', object.purpose);
        if (object.found)
            child(count, 'small', '', memberWord(object.members.length));
        else
            row.classList.add('missing');
        row.addEventListener('click', function () {
            showMembers(object);
        });
    }

    function toggleFullscreen() {
        show(current() === 'fullscreen' ? 'home' : 'fullscreen');
    }

    // Fills the home screen and puts the focus on its first row.
    function start() {
        ScriptObjects.find().forEach(addObject);
        setText('address', location.href);
        setText('user-agent', navigator.userAgent);
        document.getElementById('picture').addEventListener('click', toggleFullscreen);
        Focus.moveTo(document.querySelector('.object'));
    }

    function back() {
        show('home');
    }

    return { start: start, current: current, back: back, setText: setText };
}());
