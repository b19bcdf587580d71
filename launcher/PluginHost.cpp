// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PluginHost.h"

#include "engine/WebView.h"

#include "shell/CStbApplication.h"

#include <QChildEvent>
#include <QJsonObject>
#include <QPluginLoader>
#include <QTimer>

PluginHost::PluginHost(bool hasBoxEngine)
    : m_hasBoxEngine(hasBoxEngine)
{
}

PluginHost::~PluginHost()
{
    destroy();
}

bool PluginHost::load(const QString &file, QString *error)
{
    QPluginLoader loader(file);
    m_instance = loader.instance();
    if (!m_instance) {
        *error = QString("the plugin cannot be loaded (%1)").arg(loader.errorString());
        return false;
    }
    // By name, since the plugin keeps its meta-objects to itself.
    if (loader.metaData().value("IID").toString() == KAVRO_STB_INTERFACE_ID)
        m_application = static_cast<CStbApplication *>(m_instance->qt_metacast("CStbApplication"));
    if (!m_application) {
        *error = QString("%1 is not a plugin for %2").arg(file, KAVRO_STB_INTERFACE_ID);
        delete m_instance;
        return false;
    }
    connect(m_instance, SIGNAL(exit()), this, SIGNAL(finished()), Qt::QueuedConnection);
    m_instance->installEventFilter(this);
    return true;
}

void PluginHost::start(const QString &directory)
{
    m_application->setFullPath(directory);
}

void PluginHost::destroy()
{
    // Hidden while it is whole: a proxy looks for the next widget to have the focus, which crashes among those of a
    // widget that is half gone.
    if (m_application)
        m_application->hide();
    m_application = nullptr;
    m_engineReport.reset();
    m_console.reset(); // what the page says from here on is about objects that have gone before it
    delete m_instance;
}

void PluginHost::warn(const QString &text)
{
    if (m_console)
        m_console->warn(text);
}

bool PluginHost::eventFilter(QObject *object, QEvent *event)
{
    // Before this event the child is not what it is going to be.
    if (object == m_instance && event->type() == QEvent::ChildPolished) {
        QObject *child = static_cast<QChildEvent *>(event)->child();
        if (child->inherits("QWebView")) {
            connect(child, SIGNAL(loadFinished(bool)), this, SIGNAL(pageLoaded()));
            connect(child, SIGNAL(urlChanged(QUrl)), this, SIGNAL(pageChanged(QUrl)));
            emit opening(WebView::mainFrame(WebView::page(child))->property("requestedUrl").toUrl());
            m_console = std::make_unique<PageConsole>(child);
            if (m_hasBoxEngine) {
                m_engine = std::make_unique<BoxEngine>(WebView::page(child));
                m_engineReport = std::make_unique<EngineReport>(child, m_console.get());
            }
            QTimer::singleShot(0, this, SIGNAL(started()));
        }
    }
    return QObject::eventFilter(object, event);
}
