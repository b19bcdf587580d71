// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The values and the ways to call that scripts.txt has no short text for. Made before a script can change what they
// use; each call makes its value anew.
var hostile = (function () {
    'use strict';
    var names = ['StbMedia', 'StbDisplay', 'StbPVR', 'stb_media', 'stb_display'];

    var now = Date.now;
    var apply = Function.prototype.call.bind(Function.prototype.apply);
    var connected = [];
    var frames = 0;

    function nested(depth, inner, wrap) {
        var value = inner;
        for (var i = 0; i < depth; ++i)
            value = wrap(value);
        return value;
    }

    function inArray(value) { return [value]; }
    function inObject(value) { return {a: value}; }

    // A child frame, with the script objects as those of its parent. So many for each page: a script that makes one can
    // be called again by all that it does, and would never come to an end.
    function frame() {
        if (++frames > 200)
            throw new RangeError('too many frames');
        var element = document.createElement('iframe');
        (document.body || document.documentElement).appendChild(element);
        names.concat('hostile').forEach(function (name) { element.contentWindow[name] = window[name]; });
        return element;
    }

    var mostElements = 500;
    var handled = 0;

    // The page stays small: its elements would soon be nested deeper than the stack goes.
    function shrink(page) {
        if (page.getElementsByTagName('*').length > mostElements)
            page.body.textContent = '';
    }

    function show(html) {
        shrink(document);
        var place = document.createElement('div');
        place.innerHTML = html;
        (document.body || document.documentElement).appendChild(place);
        return place;
    }

    function walker() {
        return document.createTreeWalker(document, NodeFilter.SHOW_ALL, null, false);
    }

    return Object.freeze({
        deepArray: function () { return nested(100000, new Date(NaN), inArray); },
        deepObject: function () { return nested(100000, new Date(NaN), inObject); },
        longText: function () { return new Array(10000001).join('x'); },
        longArray: function () { return new Array(1000000); },
        longestArray: function () { return new Array(4294967295); },
        wideObject: function () {
            var object = {};
            for (var i = 0; i < 100000; ++i)
                object['p' + i] = i;
            return object;
        },
        cyclic: function () {
            var object = {array: [1], date: new Date(NaN)};
            object.self = object;
            object.array.push(object.array, object);
            return object;
        },
        // Each look makes more of it.
        growing: function grow() { return {get more() { return grow(); }}; },
        // A value of a frame that is gone.
        ofDeadFrame: function (expression) {
            var element = frame();
            var value = element.contentWindow.eval('(' + expression + ')');
            element.parentNode.removeChild(element);
            return value;
        },
        inFrame: function (call) { frame().contentWindow.eval('(' + call + ')()'); },
        // What a call from a frame does that goes, or is loaded anew, meanwhile.
        inDyingFrame: function (call) {
            var element = frame();
            element.contentWindow.go = function () { element.parentNode.removeChild(element); };
            element.contentWindow.eval('go(); (' + call + ')()');
        },
        atUnloadOfFrame: function (call) {
            var element = frame();
            element.contentWindow.addEventListener('unload', call);
            element.parentNode.removeChild(element);
        },
        // In place of what this page has connected before.
        connect: function (signal, call) {
            connected.forEach(function (old) {
                try {
                    old.signal.disconnect(old.call);
                } catch (gone) {
                }
            });
            connected = [{signal: signal, call: call}];
            signal.connect(call);
        },
        apply: apply,
        // For some time at most, since a call may itself take long.
        again: function (call) {
            var end = now() + 200;
            for (var i = 0; i < 2000 && now() < end; ++i) {
                try {
                    call();
                } catch (refused) {
                }
            }
        },
        // A function that does nothing when it is called by what it does. The engine asks for the text of a call's next
        // argument though it could not have that of the one before: a function that every object is asked for its text
        // by, and that calls with two, would run twice as often with each level of the stack.
        alone: function (called) {
            var runs = false;
            return function () {
                if (runs)
                    return '1';
                runs = true;
                try {
                    return called();
                } finally {
                    runs = false;
                }
            };
        },
        // Not what the call itself changes.
        observe: function (call) {
            var observer = new MutationObserver(function () {
                observer.disconnect();
                call();
            });
            observer.observe(document, {childList: true, subtree: true});
        },
        show: show,
        // The page's node of this number, as often round as it takes: an element, a text, a comment or the document.
        // Without a list of them, whose functions a page may have changed.
        node: function (number) {
            var count = 1;
            for (var all = walker(); count < mostElements && all.nextNode();)
                ++count;
            var found = walker();
            for (var i = number % count; i > 0; --i)
                found.nextNode();
            return found.currentNode;
        },
        command: function (name, value, page) {
            page = page || document;
            shrink(page);
            page.execCommand(name, false, value);
        },
        // As a page's own keyboard does.
        type: function (target, text) {
            var event = document.createEvent('TextEvent');
            event.initTextEvent('textInput', true, true, window, text);
            target.dispatchEvent(event);
        },
        // What listens to changes makes changes.
        listen: function (target, type, call) {
            var depth = 0;
            target.addEventListener(type, function () {
                if (++handled > 300 || depth > 2)
                    return;
                ++depth;
                try {
                    call();
                } finally {
                    --depth;
                }
            }, true);
        },
        // Elements of an <svg>, each of which may refer to itself and to what was shown before.
        draw: function (markup) {
            var old = document.querySelectorAll('svg');
            for (var i = 0; i + 3 < old.length; ++i)
                old[i].parentNode.removeChild(old[i]);
            return show('<svg width="300" height="200">' + markup + '</svg>');
        },
        // All that an object answers to.
        walk: function (object) {
            for (var name in object)
                String(object[name]);
            Object.getOwnPropertyNames(object).forEach(function (own) {
                Object.getOwnPropertyDescriptor(object, own);
            });
        }
    });
})();
