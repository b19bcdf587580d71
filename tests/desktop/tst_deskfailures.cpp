// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BadSources.h"
#include "DeskEvents.h"
#include "LiveSource.h"
#include "PlayerPicture.h"

#include "platform/desktop/DeskBox.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <climits>
#include <malloc.h>
#include <memory>
#include <vector>

namespace {

// Milliseconds until the error state. Many sources begin together, which takes a while by itself where threads are
// watched.
#if defined(__SANITIZE_THREAD__)
constexpr int longestFailure = 40000;
#else
constexpr int longestFailure = 15000;
#endif
constexpr int patience = 12000;                             // milliseconds, of a player to which nothing comes
constexpr std::size_t atOnce = DeskBox::maximumPlayers - 3; // one is for a row that is run alone
constexpr int mostGrowth = 16 * 1024; // KiB in eight players: two frames, since a busy computer may keep one
constexpr double longestClosing = 20; // milliseconds

// The sanitizers keep what is freed for a while, and find what is lost by themselves.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool freedMemoryIsKept = true;
#else
constexpr bool freedMemoryIsKept = false;
#endif

int entriesOf(const char *folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

// Memory of this process, in KiB, without what only waits to be used again, and without what libraries read of their
// files whenever they first need it.
int memoryInUse()
{
    ::malloc_trim(0);
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("RssAnon:"))
            return line.mid(8).trimmed().split(' ').first().toInt();
    }
    return 0;
}

} // namespace

/// What players do with sources that fail.
class TestDeskFailures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void aSourceThatFailsIsAnErrorInTime_data();
    void aSourceThatFailsIsAnErrorInTime();
    void aPlayersLineHasNothingOfOthers();
    void aPauseIsNoFailureHoweverLong();
    void aSourceThatComesLateIsNoFailure();
    void closingReturnsAtOnceAndLeavesNothing_data();
    void closingReturnsAtOnceAndLeavesNothing();
    void aPlayerInErrorPlaysAgain();

private:
    struct Attempt
    {
        KVR_ID player = -1;
        QElapsedTimer sinceStart;
    };

    void begin(Attempt *attempt);
    void beginNext();
    void beginFirst();
    void beginWhatDoesNotFail();

    BadSources m_sources;
    std::vector<BadSource> m_all;
    std::vector<Attempt> m_attempts; // of each source
    ErrorOutput m_log;
    KVR_ID m_done = -1; // player of the row
    KVR_ID m_first = -1;
    const QByteArray m_silent = "udp://127.0.0.1:" + QByteArray::number(freeUdpPort());
    KVR_ID m_paused = -1;
    QElapsedTimer m_sincePause;
    KVR_ID m_late = -1;
    std::unique_ptr<LiveSource> m_lateSource;
    int m_tasks = 0; // of a process without players
};

void TestDeskFailures::initTestCase()
{
    // Each thread's own share of the free memory would hide what is lost.
    ::mallopt(M_ARENA_MAX, 1);
    ::mallopt(M_MMAP_THRESHOLD, 1 << 20); // nor does a frame come from there
    QVERIFY(m_sources.prepare());
    m_all = m_sources.all();
    KVR_SetVolume(KVR_CreatePlayer(), 50);
    KVR_ClosePlayer(1); // what delivers events is there now
    m_tasks = entriesOf("/proc/self/task");
    m_attempts.resize(m_all.size());
    beginFirst();
    beginWhatDoesNotFail();
    for (std::size_t i = 0; i < atOnce; ++i)
        beginNext();
}

// What libraries say of all players, they say to the one that was there first.
void TestDeskFailures::beginFirst()
{
    m_first = KVR_CreatePlayer();
    BadSources::play(m_first, m_silent);
}

// Meanwhile others fail.
void TestDeskFailures::beginWhatDoesNotFail()
{
    m_paused = KVR_CreatePlayer();
    BadSources::play(m_paused, BadSources::bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_paused), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_Pause(m_paused), int(KVR_OK));
    m_sincePause.start();

    const QByteArray address = "udp://127.0.0.1:" + QByteArray::number(freeUdpPort());
    m_late = KVR_CreatePlayer();
    BadSources::play(m_late, address);
    QTimer::singleShot(patience * 3 / 4, this, [this, address] {
        m_lateSource = std::make_unique<LiveSource>(BadSources::bars, "mpegts", address + "?pkt_size=1316");
    });
}

void TestDeskFailures::begin(Attempt *attempt)
{
    attempt->player = KVR_CreatePlayer();
    attempt->sinceStart.start();
    QCOMPARE(BadSources::play(attempt->player, m_all[std::size_t(attempt - m_attempts.data())].address), int(KVR_OK));
}

void TestDeskFailures::beginNext()
{
    const auto next =
        std::find_if(m_attempts.begin(), m_attempts.end(), [](const Attempt &attempt) { return attempt.player < 0; });
    if (next != m_attempts.end())
        begin(&*next);
}

void TestDeskFailures::cleanup()
{
    KVR_ClosePlayer(m_done);
    beginNext();
}

void TestDeskFailures::aSourceThatFailsIsAnErrorInTime_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < m_all.size(); ++i)
        QTest::newRow(m_all[i].name) << int(i);
}

void TestDeskFailures::aSourceThatFailsIsAnErrorInTime()
{
    QFETCH(int, index);
    const BadSource &source = m_all[std::size_t(index)];
    Attempt &attempt = m_attempts[std::size_t(index)];
    if (attempt.player < 0)
        begin(&attempt);
    const KVR_ID id = attempt.player;
    m_done = id;
    // It began while others were waited for.
    const int rest = int(std::max(source.playable + longestFailure - attempt.sinceStart.elapsed(), qint64(1)));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(id), int(KVR_PLAYER_ERROR), rest);
    const QString start = QString("player %1: cannot play").arg(id);
    QString told;
    const QStringList lines = m_log.text().split('\n');
    for (const QString &line : lines) {
        if (line.contains(start))
            told = line;
    }
    QVERIFY2(told.contains(source.reason), qPrintable(told));
    QVERIFY(playerPicture(id).isNull());
}

void TestDeskFailures::aPlayersLineHasNothingOfOthers()
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_first), int(KVR_PLAYER_ERROR), int(longestFailure));
    const QString line = QString("player %1: cannot play %2: nothing arrives\n").arg(m_first).arg(QString(m_silent));
    QVERIFY2(m_log.text().contains(line), qPrintable(m_log.text()));
    QCOMPARE(KVR_ClosePlayer(m_first), int(KVR_OK));
}

void TestDeskFailures::aPauseIsNoFailureHoweverLong()
{
    QTRY_VERIFY_WITH_TIMEOUT(m_sincePause.hasExpired(patience + 2000), patience + 3000);
    QCOMPARE(KVR_GetPlayerState(m_paused), int(KVR_PLAYER_PAUSED));
    QCOMPARE(KVR_ClosePlayer(m_paused), int(KVR_OK));
}

void TestDeskFailures::aSourceThatComesLateIsNoFailure()
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_late), int(KVR_PLAYER_PLAYING), patience);
    QCOMPARE(KVR_ClosePlayer(m_late), int(KVR_OK));
    m_lateSource.reset();
}

void TestDeskFailures::closingReturnsAtOnceAndLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("state"); // in which it is closed
    QTest::newRow("never used") << QByteArray() << int(KVR_PLAYER_IDLE);
    QTest::newRow("opening a file") << QByteArray(BadSources::bars) << int(KVR_PLAYER_OPENING);
    QTest::newRow("playing a file") << QByteArray(BadSources::bars) << int(KVR_PLAYER_PLAYING);
    QTest::newRow("paused") << QByteArray(BadSources::bars) << int(KVR_PLAYER_PAUSED);
    QTest::newRow("at its end") << QByteArray(BadSources::bars) << int(KVR_PLAYER_ENDED);
    QTest::newRow("in error") << QByteArray("/mnt/stb/empty.ts") << int(KVR_PLAYER_ERROR);
    QTest::newRow("waiting for a server") << m_sources.silentServer() << int(KVR_PLAYER_OPENING);
    QTest::newRow("waiting for packets") << QByteArray(BadSources::silentPort) << int(KVR_PLAYER_OPENING);
    QTest::newRow("waiting for peers") << QByteArray(BadSources::nobodysMagnet) << int(KVR_PLAYER_OPENING);
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
            memory = memoryInUse();
        }
        const KVR_ID id = KVR_CreatePlayer();
        if (!address.isEmpty())
            BadSources::play(id, address);
        if (state == KVR_PLAYER_PAUSED || state == KVR_PLAYER_ENDED) {
            QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_PLAYER_PLAYING));
            QCOMPARE(state == KVR_PLAYER_PAUSED ? KVR_Pause(id) : KVR_SetPosition(id, LLONG_MAX), int(KVR_OK));
        }
        QTRY_COMPARE(KVR_GetPlayerState(id), state);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(KVR_ClosePlayer(id), int(KVR_OK));
        longest = std::max(longest, double(timer.nsecsElapsed()) / 1e6);
    }
    QVERIFY(memory > 0);
    QVERIFY2(longest < longestClosing, qPrintable(QString::number(longest)));
    QTRY_VERIFY_WITH_TIMEOUT(entriesOf("/proc/self/task") <= m_tasks, 10000);
    QTRY_VERIFY_WITH_TIMEOUT(entriesOf("/proc/self/fd") <= files, 10000);
    const int growth = memoryInUse() - memory;
    QVERIFY2(freedMemoryIsKept || growth < mostGrowth, qPrintable(QString("%1 KiB").arg(growth)));
    QVERIFY(!QDir("/home/user/torrents").exists() || entriesOf("/home/user/torrents") == 0);
}

void TestDeskFailures::aPlayerInErrorPlaysAgain()
{
    const KVR_ID id = KVR_CreatePlayer();
    BadSources::play(id, "/mnt/stb/empty.ts");
    QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_PLAYER_ERROR));
    BadSources::play(id, BadSources::bars);
    QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_PLAYER_PLAYING));
    KVR_ClosePlayer(id);
}

QTEST_GUILESS_MAIN(TestDeskFailures)
#include "tst_deskfailures.moc"
