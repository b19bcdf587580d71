// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageFuzzer.h"

#include "FuzzedBox.h"
#include "tests/platform/RecordingPlatform.h"

#include <QApplication>
#include <QFile>
#include <QTest>
#include <QThread>
#include <QWebFrame>
#include <QWebView>

#include <array>

namespace {

const int firstLoadTimeout = 20000; // ms
const int patience = 500;           // ms
const int timeOfDialogs = 20;       // ms
const char *const levelFile = "/etc/stbjsapi_debug";

QByteArray resource(const char *name)
{
    QFile file(QString(":/page/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("There is no %s in the program", name);
    return file.readAll();
}

template <typename T, std::size_t size>
T anyOf(const std::array<T, size> &list, QRandomGenerator &random)
{
    return list[random.bounded(int(size))];
}

RecordingPlatform::Event anyEvent(QRandomGenerator &random)
{
    static constexpr std::array ofPlayers = {KVR_EVENT_STATE,     KVR_EVENT_METADATA,     KVR_EVENT_POSITION,
                                             KVR_EVENT_AUDIO,     KVR_EVENT_VIDEO,        KVR_EVENT_SUBTITLES,
                                             KVR_EVENT_VOLUME,    KVR_EVENT_ZOOM,         KVR_EVENT_MUTE,
                                             KVR_EVENT_MULTICAST, KVR_EVENT_TELETEXT_PID, KVR_EVENT_TELETEXT_PAGE};
    static constexpr std::array ofBox = {KVR_EVENT_SYNC_DONE, KVR_EVENT_RECORDS, KVR_EVENT_HDMI};
    if (random.bounded(4) == 0)
        return {KVR_BOX, anyOf(ofBox, random), int(random.generate())};
    const KVR_ID player = random.bounded(1, FuzzedBox::players + 1);
    return {player, anyOf(ofPlayers, random), player};
}

} // namespace

PageFuzzer::PageFuzzer(quint32 seed, ActionLog *log)
    : m_seed(seed)
    , m_log(log)
{
    FuzzedBox::fill();
    start();
    if (!QTest::qWaitFor([this] { return pageState() == Ready; }, firstLoadTimeout))
        qFatal("The plugin shows no page");
    m_writer = std::make_unique<ScriptWriter>(QString::fromUtf8(resource("scripts.txt")), members());
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &PageFuzzer::step);
    connect(&m_closer, &QTimer::timeout, this, [] {
        if (QWidget *dialog = QApplication::activeModalWidget())
            dialog->close();
    });
}

void PageFuzzer::start()
{
    m_server = std::make_unique<HttpServer>();
    for (const char *query : {"", "?2"}) {
        m_server->serve(QByteArray("/page.html") + query, resource("page.html"));
        m_server->serve(QByteArray("/frame.html") + query, resource("frame.html"));
    }
    m_server->serve("/hostile.js", HttpServer::Page{resource("hostile.js"), "text/javascript; charset=utf-8"});
    PluginManifest manifest;
    manifest.homePage = manifest.errorPage = m_server->url("/page.html").toString();
    HostedPlugin::writeManifest(manifest);
    m_plugin = std::make_unique<HostedPlugin>();
    if (!m_plugin->start())
        qFatal("The plugin does not start");
    m_plugin->application()->show(); // so that pages are painted
}

QStringList PageFuzzer::members()
{
    return m_plugin
        ->evaluate("(function () { var members = [];"
                   "['StbMedia', 'StbDisplay', 'StbPVR', 'stb_media', 'stb_display'].forEach(function (object) {"
                   "for (var name in window[object]) members.push(object + '.' + name); });"
                   "return members; })()")
        .toStringList();
}

void PageFuzzer::run(int milliseconds)
{
    QTimer::singleShot(milliseconds, this, &QCoreApplication::quit);
    m_next.start();
    m_closer.start(timeOfDialogs);
    QCoreApplication::exec();
    m_next.stop();
    m_log->begin("the end");
    m_plugin.reset();
}

void PageFuzzer::step()
{
    // A launcher does nothing with a page either that waits for a dialog's end.
    if (QThread::currentThread()->loopLevel() > 1) {
        m_next.start();
        return;
    }
    const PageState state = pageState();
    if (state == Ready) {
        m_waiting.invalidate();
        m_patience = patience;
        act();
        RecordingPlatform::takeCalls();
    } else if (!m_waiting.isValid()) {
        m_waiting.start();
        if (state == Other)
            openPage();
    } else if (m_waiting.elapsed() > m_patience) {
        m_waiting.start();
        m_patience *= 2; // on a slow computer
        m_log->begin("the page anew, which does not get ready");
        openPage();
    }
    m_next.start();
}

PageFuzzer::PageState PageFuzzer::pageState()
{
    return PageState(
        m_plugin
            ->evaluate(QString("document.readyState != 'complete' ? %1 : typeof hostile != 'object' ? %2 : %3")
                           .arg(Loading)
                           .arg(Other)
                           .arg(Ready))
            .toInt());
}

void PageFuzzer::openPage()
{
    m_plugin->browser()->setUrl(m_server->url("/page.html"));
}

void PageFuzzer::act()
{
    struct Choice
    {
        int weight;
        Action action;
    };
    static constexpr std::array choices = {Choice{900, &PageFuzzer::runScript},   Choice{70, &PageFuzzer::fireEvents},
                                           Choice{80, &PageFuzzer::pressKey},     Choice{10, &PageFuzzer::navigate},
                                           Choice{3, &PageFuzzer::setTraceLevel}, Choice{1, &PageFuzzer::restart}};
    const std::array<quint32, 2> seed = {m_seed, m_actions++};
    QRandomGenerator random(seed.data(), seed.size());
    int total = 0;
    for (const Choice &choice : choices)
        total += choice.weight;
    int ticket = random.bounded(total);
    for (const Choice &choice : choices) {
        ticket -= choice.weight;
        if (ticket < 0) {
            (this->*choice.action)(random);
            return;
        }
    }
}

void PageFuzzer::runScript(QRandomGenerator &random)
{
    FuzzedBox::changePlayer(random);
    const QString script = m_writer->script(random);
    m_log->begin(script.toUtf8());
    // The last value is what the engine brings out of the page; the fuzzer's own way of calling is not to be tested.
    m_plugin->evaluate("try {\n" + script + "\n} catch (thrown) {\n}\n0");
}

void PageFuzzer::fireEvents(QRandomGenerator &random)
{
    const int perThread = 5;
    std::array<RecordingPlatform::Event, 2 *perThread> events = {};
    for (RecordingPlatform::Event &event : events)
        event = anyEvent(random);
    m_log->begin("events of the platform, from two threads");
    RecordingPlatform::waitUntilFired();
    RecordingPlatform::fireFromThreads(2, perThread,
                                       [events](int thread, int index) { return events[thread * perThread + index]; });
}

void PageFuzzer::pressKey(QRandomGenerator &random)
{
    struct Press
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    };
    static constexpr std::array presses = {
        Press{Qt::Key_Down, Qt::NoModifier},      Press{Qt::Key_Return, Qt::NoModifier},
        Press{Qt::Key_Backspace, Qt::NoModifier}, Press{Qt::Key_Backspace, Qt::ControlModifier},
        Press{Qt::Key_Delete, Qt::NoModifier},    Press{Qt::Key_Tab, Qt::NoModifier},
        Press{Qt::Key_A, Qt::NoModifier},         Press{Qt::Key_Space, Qt::NoModifier},
        Press{Qt::Key_Return, Qt::ShiftModifier}, Press{Qt::Key_Left, Qt::ShiftModifier},
        Press{Qt::Key_Right, Qt::ShiftModifier},  Press{Qt::Key_Up, Qt::ShiftModifier},
        Press{Qt::Key_End, Qt::ShiftModifier},    Press{Qt::Key_A, Qt::ControlModifier},
        Press{Qt::Key_X, Qt::ControlModifier},    Press{Qt::Key_V, Qt::ControlModifier},
        Press{Qt::Key_B, Qt::ControlModifier},    Press{Qt::Key_Z, Qt::ControlModifier},
        Press{Qt::Key_Y, Qt::ControlModifier},    Press{Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier}};
    const Press press = anyOf(presses, random);
    m_log->begin("the key " + QKeySequence(press.key | int(press.modifiers)).toString().toUtf8());
    QTest::keyClick(m_plugin->browser(), press.key, press.modifiers);
}

void PageFuzzer::navigate(QRandomGenerator &random)
{
    static constexpr std::array actions = {QWebPage::Reload, QWebPage::Stop, QWebPage::Back, QWebPage::Forward,
                                           QWebPage::ReloadAndBypassCache};
    const QWebPage::WebAction action = anyOf(actions, random);
    m_log->begin("the browser's action " + QByteArray::number(action));
    m_plugin->browser()->page()->triggerAction(action);
}

void PageFuzzer::setTraceLevel(QRandomGenerator &random)
{
    static constexpr std::array levels = {"1", "0", "1\n", "-5", "99999999999", "one", "\0"};
    const char *const level = anyOf(levels, random);
    m_log->begin(QByteArray("the trace level ") + level);
    QFile file(levelFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(level) < 0)
        qFatal("Cannot write %s: %s", levelFile, qPrintable(file.errorString()));
}

void PageFuzzer::restart(QRandomGenerator &)
{
    m_log->begin("the key that leaves, and a new start of the plugin");
    QTest::keyClick(m_plugin->browser(), Qt::Key_F1);
    m_plugin.reset();
    start();
}
