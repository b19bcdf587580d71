// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "PlayerPicture.h"
#include "RawServer.h"
#include "TestMedia.h"

#include "platform/desktop/DeskBox.h"

#include "tests/support/HttpServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <vector>

namespace {

constexpr char bars[] = "/mnt/stb/bars.ts";
constexpr int longestFailure = 15000; // milliseconds from the request to the error state
constexpr int grace = 10000;          // milliseconds more, because the test keeps the players busy
#ifdef __SANITIZE_ADDRESS__
constexpr int slowness = 10; // an instrumented program is slow, and keeps for a while what it has freed
#else
constexpr int slowness = 1;
#endif
constexpr double longestCall = 20 * slowness;   // milliseconds, for 99 of 100 calls
constexpr int largestGrowth = 30000 * slowness; // KiB

constexpr char nobodysMagnet[] = "magnet:?xt=urn:btih:0123456789abcdef0123456789abcdef01234567";

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

int entriesOf(const char *folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

// Resident memory of this process, in KiB.
int residentMemory()
{
    const QList<QByteArray> lines = contentOf("/proc/self/status").split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toInt();
    }
    return 0;
}

void play(KVR_ID id, const QByteArray &address)
{
    if (address.startsWith('/'))
        KVR_PlayFile(id, address, 0, 0, 0, "", -1, -1, -1);
    else if (address.startsWith("magnet:"))
        KVR_PlayMagnet(id, address, "", 0, 0, 0, 0, -1, -1, -1);
    else if (address.startsWith("rtsp:"))
        KVR_PlayRtsp(id, address, 0, 1, -1, -1, -1);
    else if (address.startsWith("http:"))
        KVR_PlayHttp(id, address, "", -1, -1, -1);
    else
        KVR_PlayStream(id, address, -1, -1, -1);
}

struct Attempt
{
    QByteArray name;
    QByteArray address;
    QByteArray reason; // a part of what the log says
    KVR_ID id = -1;
};

} // namespace

/// What players do with sources that fail, and that no call ever waits for one.
class TestDeskFailures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void noCallWaits();
    void cleanup();
    void aSourceThatFailsIsAnErrorInTime_data();
    void aSourceThatFailsIsAnErrorInTime();
    void closingReturnsAtOnceAndLeavesNothing_data();
    void closingReturnsAtOnceAndLeavesNothing();
    void aPlayerInErrorPlaysAgain();

private:
    void prepareSources();
    QByteArray address(const char *page) const { return m_server.url(page).toEncoded(); }

    HttpServer m_server;
    HttpServer m_silent;
    HttpServer m_refusing;
    std::unique_ptr<RawServer> m_truncating;
    std::unique_ptr<RawServer> m_closing;
    std::vector<Attempt> m_attempts;
    QElapsedTimer m_sinceStart;
    ErrorOutput m_log;
    KVR_ID m_done = -1; // player of the row
    int m_tasks = 0;    // of a process without players
};

void TestDeskFailures::prepareSources()
{
    QVERIFY(TestMedia::makeBars(bars, 6));
    constexpr char whole[] = "/mnt/stb/whole.mp4";
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", "-movflags", "faststart", whole}));
    const QByteArray film = contentOf(whole);
    const QByteArray garbage = QByteArray("\x13\x99garbage\0\xfe\x01", 12).repeated(20000);
    QVERIFY(writeFile("/mnt/stb/cut.mp4", film.left(film.size() / 3)));
    QVERIFY(writeFile("/mnt/stb/garbage.ts", garbage));
    QVERIFY(writeFile("/mnt/stb/empty.ts", {}));

    const QByteArray stream = contentOf(bars);
    m_server.serve("/stalled.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, stream.size() / 3});
    m_server.serve("/stalled-early.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, 1000});
    m_server.serve("/garbage", HttpServer::Page{garbage, "video/mp2t"});
    m_server.serve("/nothing", HttpServer::Page{"", "video/mp2t"});
    m_server.serve("/page", "<html><body>a page</body></html>");
    m_server.redirect("/circle", m_server.url("/circle"));
    m_silent.fallSilent();
    m_refusing.refuse();
    m_truncating = std::make_unique<RawServer>(RawServer::cutOff(film.left(film.size() / 3), film.size()));
    m_closing = std::make_unique<RawServer>(QByteArray());
}

void TestDeskFailures::initTestCase()
{
    for (const char *proxy : {"http_proxy", "HTTP_PROXY", "all_proxy"})
        qunsetenv(proxy);
    prepareSources();
    KVR_SetVolume(KVR_CreatePlayer(), 50);
    KVR_ClosePlayer(1); // what delivers events is there now
    m_tasks = entriesOf("/proc/self/task");
    const QByteArray port = QByteArray::number(freeUdpPort());
    const QByteArray groupPort = QByteArray::number(freeUdpPort());
    const QByteArray rtpPort = QByteArray::number(freeUdpPort());
    m_attempts = {
        {"refused", m_refusing.url().toEncoded(), "refused"},
        {"no such host", "http://no-such-host.invalid/a.ts", "loading failed"},
        {"never answers", m_silent.url("/a.ts").toEncoded(), "nothing arrives"},
        {"not found", address("/missing.ts"), "404"},
        {"stalls while it plays", address("/stalled.ts"), "nothing arrives"},
        {"stalls at once", address("/stalled-early.ts"), "nothing arrives"},
        {"endless redirect", address("/circle"), "loading failed"},
        {"garbage over HTTP", address("/garbage"), "unrecognized file format"},
        {"nothing over HTTP", address("/nothing"), "unrecognized file format"},
        {"a web page", address("/page"), "unrecognized file format"},
        {"cut off over HTTP", m_truncating->url().toUtf8(), "breaks off at"},
        {"closes at once", m_closing->url().toUtf8(), "loading failed"},
        {"missing file", "/mnt/stb/missing.ts", "No such file"},
        {"folder", "/mnt/stb", "not a file"},
        {"device", "/dev/zero", "not a file"},
        {"garbage file", "/mnt/stb/garbage.ts", "unrecognized file format"},
        {"empty file", "/mnt/stb/empty.ts", "unrecognized file format"},
        {"cut off file", "/mnt/stb/cut.mp4", "breaks off at"},
        {"silent UDP port", "udp://127.0.0.1:" + port, "nothing arrives"},
        {"silent multicast group", "udp://239.255.77.2:" + groupPort + "?localaddr=127.0.0.1", "nothing arrives"},
        {"silent RTP port", "rtp://127.0.0.1:" + rtpPort, "nothing arrives"},
        {"RTSP refused", "rtsp://127.0.0.1:" + QByteArray::number(m_refusing.port()) + "/a", "refused"},
        {"RTSP silent", "rtsp://127.0.0.1:" + QByteArray::number(m_silent.port()) + "/a", "nothing arrives"},
        {"unknown scheme", "gopher-tv://127.0.0.1/a", "loading failed"},
        {"not a magnet link", "magnet:?xt=nothing", "not a magnet link"},
        {"a torrent of nobody", nobodysMagnet, "nothing arrives"},
    };
    m_sinceStart.start();
    for (Attempt &attempt : m_attempts) {
        attempt.id = KVR_CreatePlayer();
        play(attempt.id, attempt.address);
    }
}

void TestDeskFailures::cleanup()
{
    KVR_ClosePlayer(m_done);
}

void TestDeskFailures::noCallWaits()
{
    // Every call of an interface, on players of all kinds of trouble at once.
    using Call = void (*)(KVR_ID);
    static constexpr Call calls[] = {
        [](KVR_ID id) { KVR_GetPlayerState(id); },
        [](KVR_ID id) { KVR_GetPosition(id); },
        [](KVR_ID id) { KVR_GetDuration(id); },
        [](KVR_ID id) { KVR_SetVolume(id, 50); },
        [](KVR_ID id) { KVR_SetMute(id, 0); },
        [](KVR_ID id) { KVR_SetZoom(id, 1.1); },
        [](KVR_ID id) { KVR_Pause(id); },
        [](KVR_ID id) { KVR_SetPosition(id, 1000); },
        [](KVR_ID id) { KVR_SetSpeed(id, 2); },
        [](KVR_ID id) { KVR_Continue(id); },
        [](KVR_ID id) { KVR_SetSubtitlesVisible(id, 1); },
        [](KVR_ID id) { KVR_SetTeletextPage(id, 100); },
        [](KVR_ID id) { KVR_SetPlayerDisplayMode(id, KVR_DISPLAY_CROP); },
        [](KVR_ID id) { KVR_SetPlayerVisible(id, 1); },
        [](KVR_ID id) {
            const KVR_Rect window = {0, 0, 640, 360};
            KVR_SetPlayerViewPort(id, &window);
        },
        [](KVR_ID id) {
            KVR_Track *tracks = nullptr;
            int count = 0;
            KVR_GetAudioTrackList(id, &tracks, &count);
            free(tracks);
        },
        [](KVR_ID) {
            const KVR_ID id = KVR_CreatePlayer();
            play(id, bars);
            KVR_Stop(id);
            KVR_ClosePlayer(id);
        },
    };
    std::vector<double> times;
    QElapsedTimer timer;
    while (m_sinceStart.elapsed() < 5000) {
        for (const Attempt &attempt : m_attempts) {
            for (const Call call : calls) {
                timer.start();
                call(attempt.id);
                times.push_back(double(timer.nsecsElapsed()) / 1e6);
            }
            QTest::qWait(5); // the test's own servers
        }
    }
    std::sort(times.begin(), times.end());
    const double worst = times[times.size() * 99 / 100];
    QVERIFY2(times.size() > 1000, "enough calls for a percentile");
    QVERIFY2(worst <= longestCall, qPrintable(QString("99th percentile %1 ms").arg(worst)));
}

void TestDeskFailures::aSourceThatFailsIsAnErrorInTime_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < m_attempts.size(); ++i)
        QTest::newRow(m_attempts[i].name) << int(i);
}

void TestDeskFailures::aSourceThatFailsIsAnErrorInTime()
{
    QFETCH(int, index);
    const Attempt &attempt = m_attempts[std::size_t(index)];
    m_done = attempt.id;
    const qint64 rest = longestFailure + grace - m_sinceStart.elapsed();
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(attempt.id), int(KVR_PLAYER_ERROR), int(std::max(rest, qint64(1))));
    const QString start = QString("player %1: cannot play").arg(attempt.id);
    QString told;
    const QStringList lines = m_log.text().split('\n');
    for (const QString &line : lines) {
        if (line.contains(start))
            told = line;
    }
    QVERIFY2(told.contains(attempt.reason), qPrintable(told));
    QVERIFY(playerPicture(attempt.id).isNull());
}

void TestDeskFailures::closingReturnsAtOnceAndLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("state"); // in which it is closed
    QTest::newRow("never used") << QByteArray() << int(KVR_PLAYER_IDLE);
    QTest::newRow("opening a file") << QByteArray(bars) << int(KVR_PLAYER_OPENING);
    QTest::newRow("playing a file") << QByteArray(bars) << int(KVR_PLAYER_PLAYING);
    QTest::newRow("in error") << QByteArray("/mnt/stb/empty.ts") << int(KVR_PLAYER_ERROR);
    QTest::newRow("waiting for a server") << QByteArray(m_silent.url("/a").toEncoded()) << int(KVR_PLAYER_OPENING);
    QTest::newRow("waiting for packets") << QByteArray("udp://127.0.0.1:45454") << int(KVR_PLAYER_OPENING);
    QTest::newRow("waiting for peers") << QByteArray(nobodysMagnet) << int(KVR_PLAYER_OPENING);
}

void TestDeskFailures::closingReturnsAtOnceAndLeavesNothing()
{
    QFETCH(QByteArray, address);
    QFETCH(int, state);
    constexpr int rounds = 12;
    int files = 0;
    int memory = 0;
    double longest = 0;
    for (int i = 0; i < rounds; ++i) {
        if (i == rounds / 3) { // after what is made only once
            QTRY_VERIFY_WITH_TIMEOUT(entriesOf("/proc/self/task") <= m_tasks, 10000);
            files = entriesOf("/proc/self/fd");
            memory = residentMemory();
        }
        const KVR_ID id = KVR_CreatePlayer();
        if (!address.isEmpty())
            play(id, address);
        QTRY_COMPARE(KVR_GetPlayerState(id), state);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(KVR_ClosePlayer(id), int(KVR_OK));
        longest = std::max(longest, double(timer.nsecsElapsed()) / 1e6);
        QTest::qWait(10);
    }
    QVERIFY2(longest < longestCall, qPrintable(QString::number(longest)));
    QTRY_VERIFY_WITH_TIMEOUT(entriesOf("/proc/self/task") <= m_tasks, 10000);
    QTRY_VERIFY_WITH_TIMEOUT(entriesOf("/proc/self/fd") <= files, 10000);
    const int growth = residentMemory() - memory;
    QVERIFY2(growth < largestGrowth, qPrintable(QString("%1 KiB").arg(growth)));
    QVERIFY(!QDir("/home/user/torrents").exists() || entriesOf("/home/user/torrents") == 0);
}

void TestDeskFailures::aPlayerInErrorPlaysAgain()
{
    const KVR_ID id = KVR_CreatePlayer();
    play(id, "/mnt/stb/empty.ts");
    QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_PLAYER_ERROR));
    play(id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_PLAYER_PLAYING));
    KVR_ClosePlayer(id);
}

QTEST_GUILESS_MAIN(TestDeskFailures)
#include "tst_deskfailures.moc"
