// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageEvents.h"

#include "browser/PageScript.h"

#include <QWebFrame>

PageEvents::PageEvents(QWebFrame *frame, const QString &mediaName, QObject *parent)
    : QObject(parent)
{
    frame->addToJavaScriptWindowObject(mediaName, this);
    frame->evaluateJavaScript(pageScript("events"));
}

void PageEvents::deliver(int argument, int code)
{
    emit occurred(argument, code);
}
