// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "EngineReport.h"
#include "PageConsole.h"
#include "engine/BoxEngine.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

#include <memory>

class CStbApplication;

/// The launcher's side of the plugin's interface: loads the plugin, starts it, learns that it has finished, destroys
/// it.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    /// Pages find the web engine of a box, or the PC's.
    explicit PluginHost(bool hasBoxEngine);
    ~PluginHost() override;

    /// False, and the reason in *error, if the file is no such plugin.
    bool load(const QString &file, QString *error);
    /// The loaded plugin, null when it is destroyed.
    CStbApplication *application() const { return m_application; }
    /// Tells the plugin where it is, which starts it.
    void start(const QString &directory);
    void destroy();

public slots:
    /// Writes a warning to the page's console.
    void warn(const QString &text);

signals:
    /// The plugin wants to be left. Sent from the event loop, so that it can be destroyed at once.
    void finished();
    /// The address of the first page, before anything of it has come.
    void opening(const QUrl &page);
    /// The plugin has set itself up, and begins to load its first page.
    void started();
    /// A page is there, or has failed.
    void pageLoaded();
    /// The address is that of another page, or of another part of it.
    void pageChanged(const QUrl &address);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    const bool m_hasBoxEngine;
    QPointer<QObject> m_instance;
    std::unique_ptr<BoxEngine> m_engine;
    std::unique_ptr<PageConsole> m_console;
    std::unique_ptr<EngineReport> m_engineReport;
    CStbApplication *m_application = nullptr;
};
