// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DialogRefuser.h"
#include "KeyScript.h"
#include "Options.h"
#include "PluginHost.h"
#include "Screen.h"
#include "ScreenWindow.h"
#include "UnixSignals.h"
#include "Watchdog.h"

#include <QElapsedTimer>

#include <memory>

class Channel;
class RemoteControl;

/// The desk box, inside its box: runs the plugin on a screen from its start until it is left, or the box restarts.
class DeskRun : public QObject
{
    Q_OBJECT

public:
    /// The channel must outlive it.
    DeskRun(const Options &options, Channel *channel);
    ~DeskRun() override;

    /// Returns when the desk box is left: an ExitStatus, or restart.
    int untilLeft();
    /// Saves the screenshot of a desk box that is still running. For a plugin that ends the process.
    void saveLastScreenshot();
    /// The options for the start that follows.
    Options optionsAfterRestart() const;

    static constexpr int restart = -1;

private:
    void connectParts();
    void openNetGate();
    void showWindow();
    void startPlugin();
    void showRemoteControl();
    void showInspector() const;
    void handleSignal(int signalNumber);
    void leave(int status);
    bool saveScreenshot();

    const Options m_options;
    Channel *m_channel;
    UnixSignals m_signals;
    DialogRefuser m_dialogRefuser;
    Watchdog m_watchdog;
    std::unique_ptr<Screen> m_screen;
    PluginHost m_plugin;
    std::unique_ptr<ScreenWindow> m_window;
    std::unique_ptr<RemoteControl> m_remote;
    KeyScript m_keys;
    QTimer m_longestWait; // for the first page
    QTimer m_end;         // of --exit-after
    QElapsedTimer m_sinceStart;
    bool m_left = false; // no more to be done but to destroy the plugin
};
