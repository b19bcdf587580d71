// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "Playing.h"
#include "TestMedia.h"

#include <QElapsedTimer>
#include <QTest>

#include <climits>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr char bars[] = "/mnt/stb/bars.ts";
constexpr char fifo[] = "/mnt/stb/fifo";
constexpr int barsSeconds = 20;
constexpr auto manyPlayers = DeskBox::maximumPlayers - 1; // beside the one of each test
constexpr int patience = 30000;                           // milliseconds, for many players at once

int playFile(KVR_ID id, const char *path, const char *subtitles = "")
{
    return KVR_PlayFile(id, path, 0, 0, 0, subtitles, -1, -1, -1);
}

} // namespace

/// What players make of calls that no sensible page makes.
class TestDeskMisuse : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void numbersOutOfRangeDoNoHarm();
    void aSeekBeyondTheEndEndsThePlayback();
    void tracksThatAreNotThereAreRefused();
    void tracksToBeginWithThatAreNotThereAreSkipped();
    void aFileThatNobodyWritesIsAnErrorAtOnce();
    void subtitlesThatCannotBeReadDoNotHinderTheFilm_data();
    void subtitlesThatCannotBeReadDoNotHinderTheFilm();
    void whatTheBoxHasOpenIsNoStream_data();
    void whatTheBoxHasOpenIsNoStream();
    void manyOrdersAtOnceAreAllCarriedOut();
    void longTextsAreErrors();
    void aPlayerThatFindsNoFilesLeftPlaysLater_data();
    void aPlayerThatFindsNoFilesLeftPlaysLater();
    void aPlayerThatPlaysPlaysAgainAHundredTimes();
    void aHandlerMayCloseAPlayerThatPlays();
    void manyPlayersPlayAtOnce();

private:
    void checkPlaying(int timeout = 10000);

    KVR_ID m_id = -1;
};

void TestDeskMisuse::initTestCase()
{
    QVERIFY(TestMedia::makeBars(bars, barsSeconds, "320x180"));
    QCOMPARE(::mkfifo(fifo, 0600), 0);
}

void TestDeskMisuse::init()
{
    m_id = KVR_CreatePlayer();
    QVERIFY(m_id > 0);
}

void TestDeskMisuse::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskMisuse::checkPlaying(int timeout)
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING), timeout);
    const long long begin = KVR_GetPosition(m_id);
    QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPosition(m_id) > begin + 100, timeout);
}

void TestDeskMisuse::numbersOutOfRangeDoNoHarm()
{
    playFile(m_id, bars);
    checkPlaying();
    KVR_SetResolution(1280, 720);
    for (const int edge : {INT_MIN, INT_MAX}) {
        const KVR_Rect far = {edge, edge, 100, 100};
        QCOMPARE(KVR_SetPlayerViewPort(m_id, &far), int(KVR_OK));
        const KVR_Rect vast = {0, 0, edge, edge};
        QCOMPARE(KVR_SetPlayerViewPort(m_id, &vast), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetSpeed(m_id, edge), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetPlayerDisplayMode(m_id, edge), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetPlayerAlphaLevel(m_id, edge), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetTeletextPage(m_id, edge), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetZoom(m_id, edge), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetVolume(m_id, edge), int(KVR_OK));
    }
    KVR_SetResolution(1920, 1080);
    checkPlaying();
}

void TestDeskMisuse::aSeekBeyondTheEndEndsThePlayback()
{
    playFile(m_id, bars);
    checkPlaying();
    QCOMPARE(KVR_SetPosition(m_id, LLONG_MIN), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetPosition(m_id, LLONG_MAX), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
    QCOMPARE(KVR_PlayFile(m_id, bars, LLONG_MAX, 0, 0, "", -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskMisuse::tracksThatAreNotThereAreRefused()
{
    playFile(m_id, bars);
    checkPlaying();
    for (const int pid : {INT_MIN, -2, 0, 9999, INT_MAX}) {
        QCOMPARE(KVR_SetAudioPid(m_id, pid), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetSubtitlePid(m_id, pid), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(KVR_SetTeletextPid(m_id, pid), int(KVR_ERR_INVALID_ARGUMENT));
    }
    QCOMPARE(KVR_GetAudioPid(m_id), TestMedia::russianPid);
}

void TestDeskMisuse::tracksToBeginWithThatAreNotThereAreSkipped()
{
    const ErrorOutput log;
    QCOMPARE(KVR_PlayFile(m_id, bars, 0, 0, 0, "", INT_MAX, 9999, 77), int(KVR_OK));
    checkPlaying();
    QCOMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
    QCOMPARE(KVR_GetAudioPid(m_id), TestMedia::russianPid);
    QVERIFY2(log.text().contains("no track with PID 9999"), qPrintable(log.text()));
}

void TestDeskMisuse::aFileThatNobodyWritesIsAnErrorAtOnce()
{
    QCOMPARE(playFile(m_id, fifo), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR), 3000);
}

void TestDeskMisuse::subtitlesThatCannotBeReadDoNotHinderTheFilm_data()
{
    QTest::addColumn<QByteArray>("subtitles");
    QTest::newRow("not there") << QByteArray("/mnt/stb/missing.srt");
    QTest::newRow("a pipe") << QByteArray(fifo);
    QTest::newRow("a device without end") << QByteArray("/dev/zero");
    QTest::newRow("a folder") << QByteArray("/mnt/stb");
    QTest::newRow("a film") << QByteArray(bars);
    QTest::newRow("the box's own input") << QByteArray("-");
    QTest::newRow("a scheme of the core's own") << QByteArray("fdclose://0");
    QTest::newRow("a long name") << "/mnt/stb/" + QByteArray(100000, 's');
}

void TestDeskMisuse::subtitlesThatCannotBeReadDoNotHinderTheFilm()
{
    QFETCH(QByteArray, subtitles);
    const ErrorOutput log;
    QCOMPARE(playFile(m_id, bars, subtitles), int(KVR_OK));
    checkPlaying();
    QVERIFY2(log.text().contains("no subtitles in " + QString::fromUtf8(subtitles)), qPrintable(log.text().left(500)));
}

void TestDeskMisuse::whatTheBoxHasOpenIsNoStream_data()
{
    QTest::addColumn<QByteArray>("address");
    for (const char *address : {"-", "fd://%1", "fdclose://%1", "FDClose://%1", "lavf://fdclose://%1",
                                "ffmpeg://pipe:%1", "av://lavfi:testsrc", "memory://x", "file:///dev/zero"})
        QTest::newRow(address) << QByteArray(address);
}

void TestDeskMisuse::whatTheBoxHasOpenIsNoStream()
{
    QFETCH(QByteArray, address);
    QFile film(bars);
    QVERIFY(film.open(QIODevice::ReadOnly));
    address.replace("%1", QByteArray::number(film.handle()));
    const ErrorOutput log;
    QCOMPARE(KVR_PlayStream(m_id, address, -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR));
    QVERIFY2(log.text().contains("it is not a file or a stream of the network"), qPrintable(log.text()));
    QCOMPARE(::lseek(film.handle(), 0, SEEK_CUR), off_t(0));
}

void TestDeskMisuse::manyOrdersAtOnceAreAllCarriedOut()
{
    playFile(m_id, bars);
    checkPlaying();
    for (int i = 0; i < 5000; ++i)
        KVR_SetZoom(m_id, 1 + i % 2);
    QCOMPARE(KVR_Pause(m_id), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED), 60000);
    QTRY_VERIFY(holds(m_id));
    QCOMPARE(playFile(m_id, bars), int(KVR_OK));
    checkPlaying();
}

void TestDeskMisuse::longTextsAreErrors()
{
    const QByteArray text(1 << 20, 'x');
    const ErrorOutput log;
    QCOMPARE(playFile(m_id, "/mnt/stb/" + text), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR));
    QCOMPARE(KVR_PlayStream(m_id, "udp://" + text, -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR));
    QCOMPARE(KVR_PlayHttp(m_id, "http://127.0.0.1:9/", "X: " + text, -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR));
    QCOMPARE(KVR_PlayMagnet(m_id, "magnet:?xt=" + text, text, 0, 0, 0, 0, -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR));
}

void TestDeskMisuse::aPlayerThatFindsNoFilesLeftPlaysLater_data()
{
    QTest::addColumn<bool>("magnet");
    QTest::newRow("for a film") << false;
#if !defined(__SANITIZE_ADDRESS__) // which opens files itself there
    QTest::newRow("for a session of torrents") << true;
#endif
}

void TestDeskMisuse::aPlayerThatFindsNoFilesLeftPlaysLater()
{
    QFETCH(bool, magnet);
    rlimit limit = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit noMore = {3, limit.rlim_max};
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &noMore), 0);
    if (magnet)
        KVR_PlayMagnet(m_id, "magnet:?xt=urn:btih:0123456789abcdef0123456789abcdef01234567", "", 0, 0, 0, 0, -1, -1,
                       -1);
    else
        playFile(m_id, bars);
    const bool failed = QTest::qWaitFor([this] { return KVR_GetPlayerState(m_id) == KVR_PLAYER_ERROR; });
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    QVERIFY(failed);
    playFile(m_id, bars);
    checkPlaying();
}

void TestDeskMisuse::aPlayerThatPlaysPlaysAgainAHundredTimes()
{
    playFile(m_id, bars);
    checkPlaying();
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(KVR_PlayFile(m_id, bars, i % 10 * 1000, 0, 0, "", -1, -1, -1), int(KVR_OK));
        QTest::qWait(i % 7);
    }
    checkPlaying();
    QVERIFY(KVR_GetPosition(m_id) >= 9000);
}

void TestDeskMisuse::aHandlerMayCloseAPlayerThatPlays()
{
    static KVR_ID closed;
    closed = m_id;
    const DeskEvents events(m_id);
    DeskEvents::setReaction([](int type) {
        if (type == KVR_EVENT_POSITION)
            KVR_ClosePlayer(closed);
    });
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_ERR_INVALID_ID));
}

void TestDeskMisuse::manyPlayersPlayAtOnce()
{
    std::vector<KVR_ID> ids(manyPlayers);
    KVR_SetCurrentLayout(1);
    for (KVR_ID &id : ids) {
        id = KVR_CreatePlayer();
        QCOMPARE(playFile(id, bars), int(KVR_OK));
    }
    for (const KVR_ID id : ids)
        QTRY_VERIFY_WITH_TIMEOUT(!playerPicture(id).isNull(), patience);
    QElapsedTimer timer;
    timer.start();
    for (const KVR_ID id : ids)
        QCOMPARE(KVR_ClosePlayer(id), int(KVR_OK));
    QVERIFY(timer.elapsed() < 1000);
    KVR_SetCurrentLayout(0);
    QCOMPARE(KVR_GetPlayersCount(), 1);
}

QTEST_GUILESS_MAIN(TestDeskMisuse)
#include "tst_deskmisuse.moc"
