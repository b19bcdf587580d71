// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/WorkerRemover.h"

#include <QWebFrame>
#include <QWebPage>

WorkerRemover::WorkerRemover(QWebPage *page)
    : QObject(page)
{
    watch(page->mainFrame());
    connect(page, SIGNAL(frameCreated(QWebFrame *)), SLOT(watch(QWebFrame *)));
}

void WorkerRemover::watch(QWebFrame *frame)
{
    connect(frame, SIGNAL(javaScriptWindowObjectCleared()), SLOT(removeWorkers()));
}

void WorkerRemover::removeWorkers()
{
    static_cast<QWebFrame *>(sender())->evaluateJavaScript(QLatin1String("delete window.Worker; 0"));
}
