// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskRun.h"

#include "Channel.h"
#include "ExitStatus.h"
#include "Manifest.h"
#include "Places.h"
#include "RemoteControl.h"
#include "Report.h"
#include "ScreenshotFile.h"
#include "TraceLevel.h"
#include "net/NetGate.h"
#include "platform/desktop/DeskBox.h"
#include "shell/CStbApplication.h"

#include <QApplication>
#include <QIcon>

#include <csignal>

namespace {

const int longestWaitForPage = 10000; // ms, before the keys start without one
const int longestAddress = 2000;      // characters; a page's may hold the page itself
const QSize inspectorSize(1280, 720);

} // namespace

DeskRun::DeskRun(const Options &options, Channel *channel)
    : m_options(options)
    , m_channel(channel)
    , m_signals({SIGINT, SIGTERM, SIGHUP})
    , m_screen(std::make_unique<Screen>())
    , m_plugin(options.boxEngine)
    , m_keys(*KeyScript::parse(options.keys, nullptr))
{
    DeskBox::setDeviceModel(options.model.toStdString());
}

DeskRun::~DeskRun() = default;

int DeskRun::untilLeft()
{
    connectParts();
    if (m_options.trace && !TraceLevel::switchOn())
        report(QString("%1 cannot be written, so nothing is traced").arg(Places::traceLevel));
    QString error;
    if (!Manifest::checkResolution(Places::manifest, Places::userManifest, &error))
        report(error);
    openNetGate();
    if (!m_plugin.load(Places::plugin(), &error)) {
        report(error);
        return ExitStatus::NoPlugin;
    }
    showWindow();
    startPlugin();
    const int status = QApplication::exec();
    m_plugin.destroy();
    return status;
}

Options DeskRun::optionsAfterRestart() const
{
    Options options = m_options;
    options.keys = m_keys.remaining();
    if (options.exitAfter)
        options.exitAfter = qMax(*options.exitAfter - double(m_sinceStart.elapsed()) / 1000, 0.0);
    return options;
}

void DeskRun::connectParts()
{
    connect(&m_signals, &UnixSignals::received, this, &DeskRun::handleSignal);
    connect(&m_plugin, &PluginHost::finished, this, [this] { leave(ExitStatus::Done); });
    connect(&m_plugin, &PluginHost::started, this, &DeskRun::showInspector);
    connect(&m_plugin, &PluginHost::pageChanged, this, [this](const QUrl &address) {
        m_channel->tellPage(address.toDisplayString().left(longestAddress).toUtf8());
    });
    connect(&m_plugin, &PluginHost::pageLoaded, &m_keys, &KeyScript::start);
    m_longestWait.setSingleShot(true);
    connect(&m_longestWait, &QTimer::timeout, &m_keys, &KeyScript::start);
    m_end.setSingleShot(true);
    connect(&m_end, &QTimer::timeout, this, [this] { leave(ExitStatus::Done); });
    connect(&m_keys, &KeyScript::pressed, this, [this](const Key &key) { m_window->press(key); });
}

void DeskRun::openNetGate()
{
    NetGate *guard = NetGate::start(m_options.allowNet);
    connect(&m_plugin, &PluginHost::opening, guard, &NetGate::setFirstPage);
    connect(guard, &NetGate::refused, &m_plugin, &PluginHost::warn, Qt::QueuedConnection);
    connect(&m_plugin, &PluginHost::pageLoaded, guard, &NetGate::tellAgain);
}

void DeskRun::showWindow()
{
    m_screen->setPlugin(m_plugin.application());
    m_window = std::make_unique<ScreenWindow>(m_screen.get(), m_options.size);
    connect(m_window.get(), &ScreenWindow::closed, this, [this] { leave(ExitStatus::Done); });
    m_window->show();
    m_window->activateWindow();
    if (m_options.remote)
        showRemoteControl();
}

void DeskRun::startPlugin()
{
    m_sinceStart.start();
    m_plugin.start(Places::pluginDirectory);
    // Only now does the plugin know its manifest, where its name is.
    m_window->setWindowTitle(m_plugin.application()->appName());
    m_window->setWindowIcon(QIcon(m_plugin.application()->appLogo()));

    m_longestWait.start(longestWaitForPage);
    if (m_options.exitAfter) {
        const std::chrono::milliseconds time(qRound(*m_options.exitAfter * 1000));
        m_end.start(time);
        m_watchdog.expectEndAfter(time, m_options.screenshot.isEmpty() ? ExitStatus::Done : ExitStatus::Failed);
    }
}

void DeskRun::showRemoteControl()
{
    m_remote = std::make_unique<RemoteControl>();
    connect(m_remote.get(), &RemoteControl::pressed, m_window.get(), &ScreenWindow::press);
    m_remote->show();
}

void DeskRun::showInspector() const
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (m_options.inspector && window->inherits("QWebInspector")) {
            window->resize(inspectorSize);
            window->setAttribute(Qt::WA_ShowWithoutActivating); // the keys are the page's
            window->show();
        }
    }
}

void DeskRun::handleSignal(int signalNumber)
{
    leave(signalNumber == SIGHUP ? restart : int(ExitStatus::Done));
}

// The plugin is destroyed when all event loops have ended: a dialog of its own may be in one.
void DeskRun::leave(int status)
{
    if (m_left)
        return;
    if (status != restart && !saveScreenshot())
        status = ExitStatus::Failed;
    m_left = true;
    m_watchdog.expectEndAfter(std::chrono::milliseconds(0), status == restart ? int(ExitStatus::Failed) : status);
    QApplication::exit(status);
}

bool DeskRun::saveScreenshot()
{
    if (m_options.screenshot.isEmpty() || ScreenshotFile::save(m_screen->picture(), m_options.screenshotDescriptor))
        return true;
    report(QString("the screenshot %1 cannot be written; free some space or choose another file")
               .arg(m_options.screenshot));
    return false;
}

void DeskRun::saveLastScreenshot()
{
    if (!m_left)
        saveScreenshot();
}
