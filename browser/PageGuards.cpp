// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageGuards.h"

#include "browser/PageScript.h"
#include "browser/RecordTimes.h"
#include "browser/ScriptGuard.h"
#include "browser/ScriptRelay.h"

#include <QWebFrame>

PageGuards::PageGuards(QWebFrame *frame, QObject *parent)
    : QObject(parent)
    , m_frame(frame)
{
}

void PageGuards::add(const QString &name, QObject *object)
{
    ScriptGuard *guard = new ScriptGuard(object, this);
    m_guards[name] = guard;
    m_frame->addToJavaScriptWindowObject(name, guard);
}

void PageGuards::finish(KavroJS::StbPVR *pvr)
{
    m_frame->addToJavaScriptWindowObject(QLatin1String("pageGuards"), this);
    m_frame->addToJavaScriptWindowObject(QLatin1String("recordTimes"), new RecordTimes(pvr, this));
    runPageScript(m_frame, "guards");
}

QObject *PageGuards::guarded(const QString &name)
{
    ScriptGuard *guard = m_guards.value(name);
    if (!guard)
        return nullptr;
    guard->showMembers();
    return new ScriptRelay(guard->guarded(), this);
}

void PageGuards::rename(const QString &name)
{
    if (ScriptGuard *guard = m_guards.value(name))
        guard->copyName();
}
