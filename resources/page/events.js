// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Runs in each new page, while StbMedia is the plugin's PageEvents. The callback is looked up anew for each event, in the
// page's global scope. It is called from a listener of an event that nobody else hears of: a signal would lose an error
// that it throws, and leave what its promises have to do for later. After a listener the engine does both at once, as
// after any script.
(function () {
    'use strict';
    var page = document;
    var receiver = page.createElement('i');
    var arrivedArgument, arrivedCode;
    receiver.addEventListener('platform', function () {
        // What the page does here may let the next event in.
        var argument = arrivedArgument;
        var code = arrivedCode;
        if (typeof StbMedia.eventCallback !== 'undefined')
            StbMedia.eventCallback(argument, code);
    }, false);

    // Kept from what the page may make of these functions later.
    var createEvent = page.createEvent;
    var initEvent = page.createEvent('Event').initEvent;
    createEvent.call = createEvent.call;
    initEvent.call = initEvent.call;
    receiver.dispatchEvent = receiver.dispatchEvent;

    StbMedia.occurred.connect(function (argument, code) {
        // One of its own for each: a listener could stop one that is used again.
        var event = createEvent.call(page, 'Event');
        initEvent.call(event, 'platform', false, false);
        arrivedArgument = argument;
        arrivedCode = code;
        receiver.dispatchEvent(event);
    });

    // A text is read and not run. It has to fit twice, so that it cannot end what stands around it. Where a page's own
    // rules forbid to read texts there is another error, and none can be made to look like this one.
    var events = StbMedia;
    var read = eval; // eslint-disable-line no-eval -- what is read is not run
    var prototypeOf = Object.getPrototypeOf;
    var syntaxErrors = SyntaxError.prototype;
    events.shown.connect(function (text) {
        try {
            read('if (0) {(function () {' + text + '\n}); [function () {' + text + '\n}]}');
        } catch (error) {
            if (prototypeOf(error) === syntaxErrors)
                events.refuse();
        }
    });
})();
