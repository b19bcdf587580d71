// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/FrameProtection.h"

#include "browser/PageScript.h"
#include "common/other/qtcompat.h"

#include <QUndoStack>
#include <QWebFrame>
#include <QWebPage>

void FrameProtection::addTo(QWebPage *page)
{
    if (QtCompat::engineNeedsProtection)
        new FrameProtection(page);
}

FrameProtection::FrameProtection(QWebPage *page)
    : QObject(page)
{
    connect(page->undoStack(), SIGNAL(indexChanged(int)), SLOT(forgetEdits()));
    watch(page->mainFrame());
    connect(page, SIGNAL(frameCreated(QWebFrame *)), SLOT(watch(QWebFrame *)));
}

// An edit that is undone, or done again, can bring a frame back, and the engine clears the stack for each frame that is
// loaded: the edit would be deleted while it is at work. So there never is one to undo, for keys and frames neither.
void FrameProtection::forgetEdits()
{
    static_cast<QUndoStack *>(sender())->clear();
}

void FrameProtection::watch(QWebFrame *frame)
{
    connect(frame, SIGNAL(javaScriptWindowObjectCleared()), SLOT(runScript()));
}

void FrameProtection::runScript()
{
    runPageScript(static_cast<QWebFrame *>(sender()), "frames");
}
