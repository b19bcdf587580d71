// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageEvents.h"

#include "browser/PageScript.h"

#include <QWebFrame>

PageEvents::PageEvents(QWebFrame *frame, const QString &mediaName, QObject *parent)
    : QObject(parent)
    , m_frame(frame)
    , m_isWhole(false)
{
    frame->addToJavaScriptWindowObject(mediaName, this);
    runPageScript(frame, "events");
}

void PageEvents::addSetter()
{
    runPageScript(m_frame, "callback");
}

void PageEvents::deliver(int argument, int code)
{
    emit occurred(argument, code);
}

bool PageEvents::isWhole(const QString &text)
{
    m_isWhole = true;
    emit shown(text);
    return m_isWhole;
}

void PageEvents::refuse()
{
    m_isWhole = false;
}
