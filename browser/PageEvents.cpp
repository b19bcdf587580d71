// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageEvents.h"

#include "browser/PageScript.h"

#include <QWebFrame>

PageEvents::PageEvents(QWebFrame *frame, const QString &mediaName, QObject *parent)
    : QObject(parent)
    , m_frame(frame)
{
    static const QString script = pageScript("events");
    frame->addToJavaScriptWindowObject(mediaName, this);
    frame->evaluateJavaScript(script);
}

void PageEvents::addSetter()
{
    static const QString script = pageScript("callback");
    m_frame->evaluateJavaScript(script);
}

void PageEvents::deliver(int argument, int code)
{
    emit occurred(argument, code);
}
