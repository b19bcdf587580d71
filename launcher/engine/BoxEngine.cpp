// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BoxEngine.h"

#include "NameLists.h"
#include "WebView.h"

#include <QFile>

namespace {

const char *const newWindow = SIGNAL(javaScriptWindowObjectCleared());
const char *const addScriptObjects = SLOT(populateJavaScriptWindowObject());

QString removalScript()
{
    QFile file(":/engine/remove.js");
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The resource %s is missing", qPrintable(file.fileName()));
    const QString names = QString::fromUtf8(NameLists::asJson(":/engine/builtins.txt"));
    return QString::fromUtf8(file.readAll()).trimmed() + '(' + names + ')';
}

} // namespace

BoxEngine::BoxEngine(const QObject *page)
{
    Q_INIT_RESOURCE(engine);
    m_script = removalScript();
    connect(page, SIGNAL(frameCreated(QWebFrame *)), SLOT(watch(QWebFrame *)));

    // The plugin has connected its own scripts already.
    const QObject *frame = WebView::mainFrame(page);
    const QObject *view = page->parent();
    const bool arePluginsConnected = view && disconnect(frame, newWindow, view, addScriptObjects);
    connect(frame, newWindow, this, SLOT(removeNames()));
    if (arePluginsConnected)
        connect(frame, newWindow, view, addScriptObjects);
}

void BoxEngine::watch(QWebFrame *frame)
{
    connect(reinterpret_cast<QObject *>(frame), newWindow, this, SLOT(removeNames()));
}

void BoxEngine::removeNames()
{
    WebView::evaluate(sender(), m_script);
}
