// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Runs in each new page and in each of its frames, before their first script, in an engine that crashes at some of what
// it offers them.
(function () {
    'use strict';
    // The engine may end the process when a running worker is ended, and does when 500 live.
    delete window.Worker;

    // A function of the engine's, or the one that reads an attribute, for calls that the page cannot change.
    function native(type, name) {
        var member = Object.getOwnPropertyDescriptor(type.prototype, name);
        var method = member.get || member.value;
        method.call = method.call;
        return method;
    }

    // Whole documents cannot be edited, and only those commands are left that typing is made of: the others lose their
    // place in what they have made, and crash or do not come to an end.
    delete HTMLDocument.prototype.designMode;
    var toLowerCase = native(String, 'toLowerCase');
    var allowed = Object.create(null);
    ['copy', 'cut', 'delete', 'forwardDelete', 'insertLineBreak', 'insertParagraph', 'insertText', 'paste', 'selectAll',
        'unselect'].forEach(function (name) { allowed[name.toLowerCase()] = true; });

    // As in an engine that does not know the command.
    ['execCommand', 'queryCommandEnabled', 'queryCommandSupported'].forEach(function (name) {
        var ask = native(Document, name);
        Document.prototype[name] = function (command, userInterface, value) {
            var known = toLowerCase.call('' + command);
            var result = known in allowed && ask.call(this, known, userInterface, value);
            return result;
        };
    });

    // A text that goes to a field while the selection is elsewhere makes the engine read a null pointer. The field's own
    // selection is brought back before the page hears of the text.
    var kinds = [HTMLInputElement, HTMLTextAreaElement].map(function (type) {
        return {
            start: native(type, 'selectionStart'),
            end: native(type, 'selectionEnd'),
            select: native(type, 'setSelectionRange')
        };
    });
    var focus = native(Element, 'focus');
    var focused = native(Document, 'activeElement');
    var target = native(Event, 'target');
    var refuse = native(Event, 'preventDefault');
    var stop = native(Event, 'stopImmediatePropagation');

    // False for elements of another kind.
    function bringBackSelection(field, kind) {
        try {
            var start = kind.start.call(field);
            var end = kind.end.call(field);
            if (focused.call(document) !== field)
                focus.call(field);
            kind.select.call(field, start, end);
        } catch (refused) {
            return false;
        }
        return true;
    }

    window.addEventListener('textInput', function (event) {
        var field = target.call(event);
        if (!bringBackSelection(field, kinds[0]) && !bringBackSelection(field, kinds[1]))
            return;
        if (focused.call(document) !== field) {
            refuse.call(event);
            stop.call(event);
        }
    }, true);
})();
