// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BoxEngine.h"

#include "NameLists.h"

#include <QFile>
#include <QVariant>

namespace {

// Of QWebFrame, which is used by name: this program loads the web engine with the plugin only, inside the box.
const char *const newWindow = SIGNAL(javaScriptWindowObjectCleared());
const char *const addScriptObjects = SLOT(populateJavaScriptWindowObject());

const QObject *childOf(const QObject *parent, const char *className)
{
    for (const QObject *child : parent->children()) {
        if (child->inherits(className))
            return child;
    }
    return nullptr;
}

QString removalScript()
{
    QFile file(":/engine/remove.js");
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The resource %s is missing", qPrintable(file.fileName()));
    const QString names = QString::fromUtf8(NameLists::asJson(":/engine/builtins.txt"));
    return QString::fromUtf8(file.readAll()).trimmed() + '(' + names + ')';
}

} // namespace

BoxEngine::BoxEngine(QObject *view)
{
    Q_INIT_RESOURCE(engine);
    m_script = removalScript();
    if (const QObject *page = childOf(view, "QWebPage")) {
        connect(page, SIGNAL(frameCreated(QWebFrame *)), SLOT(watch(QWebFrame *)));
        watchMainFrame(view, page);
    }
}

// The plugin has connected its own scripts already; they come after this now.
void BoxEngine::watchMainFrame(QObject *view, const QObject *page)
{
    const QObject *frame = childOf(page, "QWebFrame");
    if (!frame)
        return;
    const bool arePluginsConnected = disconnect(frame, newWindow, view, addScriptObjects);
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
    QMetaObject::invokeMethod(sender(), "evaluateJavaScript", Q_ARG(QString, m_script));
}
