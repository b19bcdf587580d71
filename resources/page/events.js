// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Runs in each new page, while StbMedia is the plugin's PageEvents. The callback is looked up anew for each event, in the
// page's global scope. An error that a callback throws would be lost in a signal; thrown again by the listener of an
// event that nobody else hears of, it reaches the page's error handler and the console at once, as that of any script
// does.
(function () {
    'use strict';
    var page = document;
    var reporter = page.createElement('i');
    var thrown;
    reporter.addEventListener('report', function () { throw thrown; }, false);

    // Kept from what the page may make of these functions later.
    var createEvent = page.createEvent;
    var types = ['Event'];
    types.map = types.map;
    reporter.dispatchEvent = reporter.dispatchEvent;

    StbMedia.occurred.connect(function (argument, code) {
        try {
            if (typeof StbMedia.eventCallback !== 'undefined')
                StbMedia.eventCallback(argument, code);
        } catch (error) {
            thrown = error;
            var report = types.map(createEvent, page)[0];
            report.initEvent('report', false, false);
            reporter.dispatchEvent(report);
        }
    });

    // A text is read and not run. It has to fit twice, so that it cannot end what stands around it. Where a page's own
    // rules forbid to read texts there is another error, and none can be made to look like this one.
    var events = StbMedia;
    var read = eval;
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
