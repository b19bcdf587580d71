// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "ActionLog.h"
#include "ScriptWriter.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"

#include <QElapsedTimer>
#include <QTimer>
#include <memory>

/// Does to the plugin, in a box, whatever a page, a remote control and the platform can do at bad times: one action
/// after the other, between them the event loop. Which action, its seed and number decide.
class PageFuzzer : public QObject
{
    Q_OBJECT

public:
    PageFuzzer(quint32 seed, ActionLog *log);

    /// Returns after so many milliseconds, when the plugin has been destroyed.
    void run(int milliseconds);

private:
    /// Other: than the page that is fuzzed.
    enum PageState { Loading, Other, Ready };
    using Action = void (PageFuzzer::*)(QRandomGenerator &random);

    void start();
    QStringList members();
    void step();
    PageState pageState();
    void openPage();
    void act();

    void runScript(QRandomGenerator &random);
    void fireEvents(QRandomGenerator &random);
    void pressKey(QRandomGenerator &random);
    void navigate(QRandomGenerator &random);
    void setTraceLevel(QRandomGenerator &random);
    void restart(QRandomGenerator &random);

    const quint32 m_seed;
    ActionLog *const m_log;
    quint32 m_actions = 0;
    std::unique_ptr<HttpServer> m_server;
    std::unique_ptr<HostedPlugin> m_plugin;
    std::unique_ptr<ScriptWriter> m_writer;
    QElapsedTimer m_waiting; ///< for a page; invalid while one is there
    int m_patience = 0;      ///< how long to wait, in milliseconds
    QTimer m_next;
    QTimer m_closer; ///< of dialogs that pages open
};
