// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageEvents.h"

#include <QWebFrame>

namespace {

// The callback is looked up anew for each event, in the page's global scope. An error that a callback throws would be
// lost in a signal; thrown again by the listener of an event that nobody else hears of, it reaches the page's error
// handler and the console at once, as that of any script does.
const char script[] = R"js(
(function () {
    'use strict';
    var reporter = document.createElement('i');
    var dispatch = reporter.dispatchEvent.bind(reporter);
    var createEvent = document.createEvent.bind(document);
    var thrown;
    reporter.addEventListener('report', function () { throw thrown; });

    StbMedia.occurred.connect(function (argument, code) {
        try {
            if (typeof StbMedia.eventCallback != 'undefined')
                StbMedia.eventCallback(argument, code);
        } catch (error) {
            thrown = error;
            var report = createEvent('Event');
            report.initEvent('report', false, false);
            dispatch(report);
        }
    });
})();
)js";

} // namespace

PageEvents::PageEvents(QWebFrame *frame, const QString &mediaName, QObject *parent)
    : QObject(parent)
{
    frame->addToJavaScriptWindowObject(mediaName, this);
    frame->evaluateJavaScript(QLatin1String(script));
}

void PageEvents::deliver(int argument, int code)
{
    emit occurred(argument, code);
}
