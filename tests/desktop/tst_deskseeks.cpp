// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "Playing.h"
#include "TestMedia.h"

#include "launcher/PageServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <climits>

namespace {

constexpr char folder[] = "/mnt/stb/web";
constexpr char film[] = "/mnt/stb/web/film.mkv";
constexpr int filmSeconds = 60;
constexpr int patience = 12000; // milliseconds
constexpr int leadIn = 1500;    // milliseconds, by which a server may begin before what it was asked for

KVR_ID player = -1;
std::atomic<long long> lowest; // position that was told since a seek, by a call or at an event
std::atomic<long long> highest;

void note(int type)
{
    if (type != KVR_EVENT_POSITION)
        return;
    const long long position = KVR_GetPosition(player);
    lowest = std::min<long long>(lowest, position);
    highest = std::max<long long>(highest, position);
}

} // namespace

/// What a page is told of the position after it has changed it.
class TestDeskSeeks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();
    void aSeekIsNotTakenBack_data();
    void aSeekIsNotTakenBack();

private:
    bool begin(const QByteArray &address);

    KVR_ID m_id = -1;
    PageServer m_server;
    QProcess m_rtspServer;
    QByteArray m_rtspAddress;
};

void TestDeskSeeks::initTestCase()
{
    QVERIFY(QDir().mkpath(folder));
    constexpr char bars[] = "/mnt/stb/bars.ts";
    QVERIFY(TestMedia::makeBars(bars, filmSeconds, "320x180"));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", film}));
    QString error;
    QVERIFY2(m_server.start(folder, 0, &error), qPrintable(error));
    m_rtspServer.start(QCoreApplication::applicationDirPath() + "/rtspserver", {film, "tcp"});
    QVERIFY(m_rtspServer.waitForReadyRead());
    m_rtspAddress = m_rtspServer.readLine().trimmed();
}

void TestDeskSeeks::cleanupTestCase()
{
    m_rtspServer.kill();
    m_rtspServer.waitForFinished();
}

void TestDeskSeeks::init()
{
    m_id = player = KVR_CreatePlayer();
}

void TestDeskSeeks::cleanup()
{
    KVR_ClosePlayer(m_id);
}

bool TestDeskSeeks::begin(const QByteArray &address)
{
    if (address.startsWith('/'))
        KVR_PlayFile(m_id, address, 0, 0, 0, "", -1, -1, -1);
    else if (address.startsWith("http:"))
        KVR_PlayHttp(m_id, address, "", -1, -1, -1);
    else
        KVR_PlayRtsp(m_id, address, 0, 1, -1, -1, -1);
    return comesToPlay(m_id);
}

void TestDeskSeeks::aSeekIsNotTakenBack_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("seeks");
    QTest::addColumn<bool>("inHurry"); // the next seek comes before this one is over
    QTest::newRow("file") << QByteArray(film) << 10 << false;
    QTest::newRow("file, many seeks") << QByteArray(film) << 40 << true;
    QTest::newRow("HTTP") << m_server.address("film.mkv").toEncoded() << 10 << false;
    QTest::newRow("HTTP, many seeks") << m_server.address("film.mkv").toEncoded() << 40 << true;
    QTest::newRow("RTSP") << m_rtspAddress << 10 << false;
}

void TestDeskSeeks::aSeekIsNotTakenBack()
{
    QFETCH(QByteArray, address);
    QFETCH(int, seeks);
    QFETCH(bool, inHurry);
    constexpr int progress = 200; // milliseconds
    QVERIFY(begin(address));
    const DeskEvents events(m_id);
    DeskEvents::setReaction(note);
    for (int i = 0; i < seeks; ++i) {
        const bool isLast = i + 1 == seeks;
        const long long target = (i % 2 ? 5000 : 35000) + i * 170 % 4000;
        lowest = LLONG_MAX;
        highest = 0;
        QCOMPARE(KVR_SetPosition(m_id, target), int(KVR_OK));
        for (const QDeadlineTimer deadline(20 + i * 37 % 400); !deadline.hasExpired();)
            note(KVR_EVENT_POSITION);
        // It goes on from there.
        if (!inHurry || isLast)
            QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPosition(m_id) > target + progress, patience);
        note(KVR_EVENT_POSITION);
        QVERIFY2(lowest >= target - leadIn && highest < target + 10000,
                 qPrintable(QString("seek %1 to %2: %3 to %4").arg(i).arg(target).arg(lowest).arg(highest)));
    }
}

QTEST_GUILESS_MAIN(TestDeskSeeks)
#include "tst_deskseeks.moc"
