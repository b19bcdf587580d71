// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TestMedia.h"

#include "platform/stbapi.h"

#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QTest>

#include <condition_variable>
#include <cstring>
#include <dlfcn.h>
#include <mpv/client.h>
#include <mutex>
#include <thread>

namespace {

// What the player core was told, and how far it is with it.
struct Core
{
    std::mutex mutex; // of all that follows
    QStringList orders;
    int seeks = 0; // that were not carried out yet
    int mostSeeks = 0;
    bool isHeld = false; // with the next position that it tells, until that is released
    bool hasPosition = false;
    std::condition_variable released;
};

Core &core()
{
    static Core instance;
    return instance;
}

QStringList orders()
{
    const std::lock_guard<std::mutex> lock(core().mutex);
    return core().orders;
}

QString lastOrder()
{
    const QStringList all = orders();
    return all.value(all.size() - 1);
}

void forgetOrders()
{
    const std::lock_guard<std::mutex> lock(core().mutex);
    core().orders.clear();
    core().seeks = core().mostSeeks = 0;
}

void add(const QString &order)
{
    const std::lock_guard<std::mutex> lock(core().mutex);
    core().orders += order;
    if (order.startsWith("seek "))
        core().mostSeeks = std::max(core().mostSeeks, ++core().seeks);
}

bool tellsPosition(const mpv_event &event)
{
    return event.event_id == MPV_EVENT_PROPERTY_CHANGE
        && !std::strcmp(static_cast<mpv_event_property *>(event.data)->name, "time-pos");
}

// Has the core tell a position, which arrives at release() only.
void holdPosition()
{
    {
        const std::lock_guard<std::mutex> lock(core().mutex);
        core().isHeld = true;
        core().hasPosition = false;
    }
    QTRY_VERIFY([] {
        const std::lock_guard<std::mutex> lock(core().mutex);
        return core().hasPosition;
    }());
}

void releasePosition()
{
    const std::lock_guard<std::mutex> lock(core().mutex);
    core().isHeld = false;
    core().released.notify_all();
}

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

QString text(mpv_format format, const void *data)
{
    if (format == MPV_FORMAT_FLAG)
        return *static_cast<const int *>(data) ? "yes" : "no";
    if (format == MPV_FORMAT_DOUBLE)
        return QString::number(*static_cast<const double *>(data));
    return QString::fromUtf8(*static_cast<const char *const *>(data));
}

} // namespace

// In place of the library's.
extern "C" {

int mpv_set_property_async(mpv_handle *handle, uint64_t tag, const char *name, mpv_format format, void *data)
{
    add(QString("%1=%2").arg(name, text(format, data)));
    return next<decltype(mpv_set_property_async)>(__func__)(handle, tag, name, format, data);
}

int mpv_command_async(mpv_handle *handle, uint64_t tag, const char **words)
{
    QStringList texts;
    for (const char **word = words; *word; ++word)
        texts += QString::fromUtf8(*word);
    add(texts.join(' '));
    return next<decltype(mpv_command_async)>(__func__)(handle, tag, words);
}

int mpv_command_node_async(mpv_handle *handle, uint64_t tag, mpv_node *command)
{
    QStringList texts;
    for (int i = 0; i < command->u.list->num; ++i) {
        const mpv_node &word = command->u.list->values[i];
        if (word.format == MPV_FORMAT_STRING)
            texts += QString::fromUtf8(word.u.string);
        for (int option = 0; word.format == MPV_FORMAT_NODE_MAP && option < word.u.list->num; ++option)
            texts += QString("%1=%2").arg(word.u.list->keys[option], word.u.list->values[option].u.string);
    }
    add(texts.join(' '));
    return next<decltype(mpv_command_node_async)>(__func__)(handle, tag, command);
}

mpv_event *mpv_wait_event(mpv_handle *handle, double timeout)
{
    mpv_event *event = next<decltype(mpv_wait_event)>(__func__)(handle, timeout);
    std::unique_lock<std::mutex> lock(core().mutex);
    if (event->event_id == MPV_EVENT_PLAYBACK_RESTART)
        core().seeks = 0;
    if (core().isHeld && tellsPosition(*event)) {
        core().hasPosition = true;
        core().released.wait(lock, [] { return !core().isHeld; });
    }
    return event;
}

} // extern "C"

using Call = int (*)(KVR_ID);
Q_DECLARE_METATYPE(Call)

/// What players order of the player core that plays for them.
class TestDeskCore : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void whatWasSetBeforeIsToldFirst();
    void whatIsSetWhileItPlaysIsTold_data();
    void whatIsSetWhileItPlaysIsTold();
    void aRequestIsLoadedWithItsOptions_data();
    void aRequestIsLoadedWithItsOptions();
    void aNewRequestPlaysAtNormalSpeed();
    void playingBackwardsSeeksOnceAtATime();
    void aPositionFromBeforeASeekIsNotTold_data();
    void aPositionFromBeforeASeekIsNotTold();

private:
    void play();
    QString loadOrder() const { return "loadfile " + m_bars + " replace"; }

    QTemporaryDir m_folder;
    QString m_bars;
    KVR_ID m_id = -1;
};

void TestDeskCore::initTestCase()
{
    m_bars = m_folder.filePath("bars.ts");
    QVERIFY(TestMedia::makeBars(m_bars, 12));
}

void TestDeskCore::init()
{
    m_id = KVR_CreatePlayer();
    forgetOrders();
}

void TestDeskCore::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskCore::play()
{
    QCOMPARE(KVR_PlayFile(m_id, m_bars.toUtf8(), 0, 0, 0, "", -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
}

void TestDeskCore::whatWasSetBeforeIsToldFirst()
{
    KVR_SetVolume(m_id, 35);
    KVR_SetMute(m_id, 1);
    KVR_SetZoom(m_id, 2);
    KVR_SetSubtitlesVisible(m_id, 0);
    KVR_SetPlayerDisplayMode(m_id, KVR_DISPLAY_CROP);
    play();
    QCOMPARE(orders(),
             QStringList({"volume=35", "mute=yes", "video-zoom=1", "sub-visibility=no", "keepaspect=yes", "panscan=1",
                          "pause=no", "speed=1", loadOrder()}));
}

void TestDeskCore::whatIsSetWhileItPlaysIsTold_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QStringList>("told");
    const auto row = [](const char *name, Call call, const QStringList &told) { QTest::newRow(name) << call << told; };
    row("volume", [](KVR_ID id) { return KVR_SetVolume(id, 20); }, {"volume=20"});
    row("mute", [](KVR_ID id) { return KVR_SetMute(id, 1); }, {"mute=yes"});
    row("no longer mute", [](KVR_ID id) { return KVR_SetMute(id, 0); }, {"mute=no"});
    row("zoom", [](KVR_ID id) { return KVR_SetZoom(id, 0.5); }, {"video-zoom=-1"});
    row("letter box", [](KVR_ID id) { return KVR_SetPlayerDisplayMode(id, KVR_DISPLAY_LETTERBOX); },
        {"keepaspect=yes", "panscan=0"});
    row("stretched", [](KVR_ID id) { return KVR_SetPlayerDisplayMode(id, KVR_DISPLAY_STRETCH); },
        {"keepaspect=no", "panscan=0"});
    row("cropped", [](KVR_ID id) { return KVR_SetPlayerDisplayMode(id, KVR_DISPLAY_CROP); },
        {"keepaspect=yes", "panscan=1"});
    row("subtitles shown", [](KVR_ID id) { return KVR_SetSubtitlesVisible(id, 1); }, {"sub-visibility=yes"});
    row("subtitles hidden", [](KVR_ID id) { return KVR_SetSubtitlesVisible(id, 0); }, {"sub-visibility=no"});
    row("other sound", [](KVR_ID id) { return KVR_SetAudioPid(id, TestMedia::englishPid); }, {"aid=2"});
    row("no sound", [](KVR_ID id) { return KVR_SetAudioPid(id, -1); }, {"aid=no"});
    row("no subtitles", [](KVR_ID id) { return KVR_SetSubtitlePid(id, -1); }, {"sid=no"});
    row("teletext page", [](KVR_ID id) { return KVR_SetTeletextPage(id, 333); },
        {"teletext-page=333", "secondary-sid=no"});
    row("pause", KVR_Pause, {"pause=yes"});
    row("continue", KVR_Continue, {"speed=1", "pause=no"});
    row("next frame", KVR_NextFrame, {"frame-step"});
    row("speed", [](KVR_ID id) { return KVR_SetSpeed(id, 4); }, {"speed=4", "pause=no"});
    row("position", [](KVR_ID id) { return KVR_SetPosition(id, 2500); }, {"seek 2.500000 absolute+exact"});
    row("stop", KVR_Stop, {"stop"});
}

void TestDeskCore::whatIsSetWhileItPlaysIsTold()
{
    QFETCH(Call, call);
    play();
    forgetOrders();
    QCOMPARE(call(m_id), int(KVR_OK));
    QTRY_VERIFY(!orders().isEmpty());
    // Orders are carried out one after the other.
    KVR_SetVolume(m_id, 7);
    QTRY_COMPARE(lastOrder(), QString("volume=7"));
    QTEST(QStringList(orders().mid(0, orders().size() - 1)), "told");
}

void TestDeskCore::aRequestIsLoadedWithItsOptions_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("order");
    const auto row = [](const char *name, Call call, const char *order) {
        QTest::newRow(name) << call << QString(order);
    };
    row(
        "a file", [](KVR_ID id) { return KVR_PlayFile(id, "/none/a b.ts", 0, 0, 0, "", -1, -1, -1); },
        "/none/a b.ts replace");
    row(
        "from a position", [](KVR_ID id) { return KVR_PlayFile(id, "/none/a.ts", 4500, 0, 0, "", -1, -1, -1); },
        "/none/a.ts replace start=4.500000");
    row(
        "with subtitles",
        [](KVR_ID id) { return KVR_PlayFile(id, "/none/a.ts", 0, 0, 0, "/none/a,b.srt", -1, -1, -1); },
        "/none/a.ts replace sub-files-append=/none/a,b.srt");
    row(
        "subtitles of no file", [](KVR_ID id) { return KVR_PlayFile(id, "/none/a.ts", 0, 0, 0, "-", -1, -1, -1); },
        "/none/a.ts replace");
    row(
        "RTSP", [](KVR_ID id) { return KVR_PlayRtsp(id, "rtsp://127.0.0.1:9/a", 0, 0, -1, -1, -1); },
        "rtsp://127.0.0.1:9/a replace rtsp-transport=udp");
    row(
        "RTSP over TCP, from a position",
        [](KVR_ID id) { return KVR_PlayRtsp(id, "rtsp://127.0.0.1:9/a", 7000, 1, -1, -1, -1); },
        "rtsp://127.0.0.1:9/a replace start=7.000000 rtsp-transport=tcp");
    row(
        "HTTP with headers",
        [](KVR_ID id) { return KVR_PlayHttp(id, "http://127.0.0.1:9/a", "A: 1,2\r\n\nB: 3", -1, -1, -1); },
        "http://127.0.0.1:9/a replace http-header-fields-append=A: 1,2 http-header-fields-append=B: 3");
    row(
        "UDP", [](KVR_ID id) { return KVR_PlayStream(id, "UDP://127.0.0.1:9", -1, -1, -1); },
        "udp://127.0.0.1:9 replace");
    row(
        "RTP", [](KVR_ID id) { return KVR_PlayStream(id, "Rtp://127.0.0.1:10?ttl=1", -1, -1, -1); },
        "kavro-rtp://127.0.0.1:10?ttl=1 replace");
}

void TestDeskCore::aRequestIsLoadedWithItsOptions()
{
    QFETCH(Call, call);
    QFETCH(QString, order);
    QCOMPARE(call(m_id), int(KVR_OK));
    QTRY_VERIFY2(orders().contains("loadfile " + order), qPrintable(orders().join('\n')));
}

void TestDeskCore::aNewRequestPlaysAtNormalSpeed()
{
    play();
    KVR_SetSpeed(m_id, 4);
    KVR_Pause(m_id);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    forgetOrders();
    play();
    QCOMPARE(orders(), QStringList({"stop", "pause=no", "speed=1", loadOrder()}));
}

void TestDeskCore::playingBackwardsSeeksOnceAtATime()
{
    play();
    QCOMPARE(KVR_SetPosition(m_id, 10000), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) > 10000);
    forgetOrders();
    QCOMPARE(KVR_SetSpeed(m_id, -8), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
    QCOMPARE(orders().value(0), QString("pause=yes"));
    QVERIFY(orders().filter("seek ").size() > 1);
    const std::lock_guard<std::mutex> lock(core().mutex);
    QCOMPARE(core().mostSeeks, 1);
}

void TestDeskCore::aPositionFromBeforeASeekIsNotTold_data()
{
    QTest::addColumn<int>("speed");
    QTest::newRow("playing") << 1;
    QTest::newRow("playing backwards") << -1;
}

void TestDeskCore::aPositionFromBeforeASeekIsNotTold()
{
    QFETCH(int, speed);
    play();
    QCOMPARE(KVR_SetPosition(m_id, 6000), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) > 6100);
    QCOMPARE(KVR_SetSpeed(m_id, speed), int(KVR_OK));
    for (const long long target : {10000LL, 3000LL}) {
        holdPosition();
        QCOMPARE(KVR_SetPosition(m_id, target), int(KVR_OK));
        releasePosition();
        // What is told is looked at all the time, until it has moved on.
        long long distance = 0;
        long long farthest = 0;
        const QDeadlineTimer deadline(5000);
        while (distance * speed <= 200 && !deadline.hasExpired()) {
            distance = KVR_GetPosition(m_id) - target;
            farthest = std::max(farthest, std::abs(distance));
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        QVERIFY(!deadline.hasExpired());
        QVERIFY2(farthest < 1000, qPrintable(QString("%1 ms").arg(farthest)));
    }
}

QTEST_GUILESS_MAIN(TestDeskCore)

#include "tst_deskcore.moc"
