// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "PlayerPicture.h"
#include "TestMedia.h"

#include "launcher/PageServer.h"

#include "tests/support/HttpServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

namespace {

constexpr char bars[] = "/mnt/stb/bars.ts";
constexpr char film[] = "/mnt/stb/film.mkv";
constexpr char web[] = "/mnt/stb/web";
constexpr int barsSeconds = 12;
constexpr int patience = 12000; // milliseconds, for what has to buffer first

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString multicast(KVR_ID id)
{
    KVR_MulticastEvent event = {};
    if (KVR_GetLastMulticastEvent(id, &event) != KVR_OK)
        return "failed";
    return QString("%1 %2").arg(QString::fromLatin1(event.ip_port)).arg(event.join);
}

} // namespace

/// What players make of streams from the network.
class TestDeskStreams : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void httpSendsTheHeadersOfTheOptions();
    void httpPlaysAFileAndSeeksInIt();
    void httpPlaysAPlaylistOfSegments();
    void httpFollowsARedirect();
    void udpPlaysUnicast();
    void multicastIsJoinedAndLeft_data();
    void multicastIsJoinedAndLeft();
    void aLiveStreamHasNoDuration();
    void aLiveStreamThatStopsIsAnError();
    void rtspPlays_data();
    void rtspPlays();
    void fourPlayersPlaySideBySide();

private:
    void checkPlaying();

    KVR_ID m_id = -1;
};

void TestDeskStreams::initTestCase()
{
    QVERIFY(TestMedia::makeBars(bars, barsSeconds));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", film}));
    QVERIFY(QDir().mkpath(web));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0", "-c", "copy", QString(web) + "/bars.mp4"}));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-map", "0:1", "-c", "copy", "-hls_time", "2",
                               "-hls_list_size", "0", QString(web) + "/bars.m3u8"}));
}

void TestDeskStreams::init()
{
    m_id = KVR_CreatePlayer();
}

void TestDeskStreams::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskStreams::checkPlaying()
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING), patience);
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    const long long begin = KVR_GetPosition(m_id);
    QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPosition(m_id) > begin + 300, patience);
}

void TestDeskStreams::httpSendsTheHeadersOfTheOptions()
{
    HttpServer server;
    server.serve("/bars.ts", HttpServer::Page{contentOf(bars), "video/mp2t"});
    const QByteArray url = server.url("/bars.ts").toEncoded();
    QCOMPARE(KVR_PlayHttp(m_id, url, "User-Agent: Box/1.0, of a desk\r\nX-Token: a%2Fb,c=d\n", -1, -1, -1),
             int(KVR_OK));
    checkPlaying();
    const auto requests = server.requestsFor("/bars.ts");
    QVERIFY(!requests.isEmpty());
    QCOMPARE(requests.first().headers.value("x-token"), QByteArray("a%2Fb,c=d"));
    QCOMPARE(requests.first().headers.value("user-agent"), QByteArray("Box/1.0, of a desk"));
}

void TestDeskStreams::httpPlaysAFileAndSeeksInIt()
{
    PageServer server;
    QVERIFY(server.start(web, 0));
    QCOMPARE(KVR_PlayHttp(m_id, server.address("bars.mp4").toEncoded(), "", -1, -1, -1), int(KVR_OK));
    checkPlaying();
    QVERIFY(qAbs(KVR_GetDuration(m_id) - barsSeconds * 1000) < 200);
    QCOMPARE(KVR_SetPosition(m_id, 9000), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) > 9100);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskStreams::httpPlaysAPlaylistOfSegments()
{
    PageServer server;
    QVERIFY(server.start(web, 0));
    QCOMPARE(KVR_PlayHttp(m_id, server.address("bars.m3u8").toEncoded(), "", -1, -1, -1), int(KVR_OK));
    checkPlaying();
    QVERIFY(qAbs(KVR_GetDuration(m_id) - barsSeconds * 1000) < 300);
    QCOMPARE(KVR_SetPosition(m_id, 10000), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskStreams::httpFollowsARedirect()
{
    HttpServer server;
    server.serve("/bars.ts", HttpServer::Page{contentOf(bars), "video/mp2t"});
    server.redirect("/moved", server.url("/bars.ts"));
    KVR_PlayHttp(m_id, server.url("/moved").toEncoded(), "", -1, -1, -1);
    checkPlaying();
}

void TestDeskStreams::udpPlaysUnicast()
{
    const QString address = QString("udp://127.0.0.1:%1").arg(freeUdpPort());
    const DeskEvents events(m_id);
    QCOMPARE(KVR_PlayStream(m_id, address.toUtf8(), -1, TestMedia::englishPid, -1), int(KVR_OK));
    const LiveSource source(bars, "mpegts", address + "?pkt_size=1316");
    checkPlaying();
    QCOMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
    QTRY_COMPARE(KVR_GetAudioPid(m_id), TestMedia::englishPid);
    QCOMPARE(DeskEvents::count(KVR_EVENT_MULTICAST), 0);
    QCOMPARE(multicast(m_id), QString(" 0"));
}

void TestDeskStreams::multicastIsJoinedAndLeft_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("pattern");
    QTest::newRow("UDP") << "udp"
                         << "mpegts"
                         << "udp://239.255.77.1:%1?localaddr=127.0.0.1";
    QTest::newRow("UDP, with an at sign") << "udp"
                                          << "mpegts"
                                          << "udp://@239.255.77.1:%1?localaddr=127.0.0.1";
    QTest::newRow("RTP") << "rtp"
                         << "rtp_mpegts"
                         << "rtp://239.255.77.1:%1?localaddr=127.0.0.1";
}

void TestDeskStreams::multicastIsJoinedAndLeft()
{
    QFETCH(QString, scheme);
    QFETCH(QString, format);
    QFETCH(QString, pattern);
    const QString port = QString::number(freeUdpPort());
    const LiveSource source(bars, format, scheme + "://239.255.77.1:" + port + "?localaddr=127.0.0.1");
    const DeskEvents events(m_id);
    KVR_PlayStream(m_id, pattern.arg(port).toUtf8(), -1, -1, -1);
    checkPlaying();
    QCOMPARE(DeskEvents::count(KVR_EVENT_MULTICAST), 1);
    QCOMPARE(multicast(m_id), "239.255.77.1:" + port + " 1");
    KVR_Stop(m_id);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_MULTICAST), 2);
    QCOMPARE(multicast(m_id), "239.255.77.1:" + port + " 0");
}

void TestDeskStreams::aLiveStreamHasNoDuration()
{
    const QString address = QString("udp://127.0.0.1:%1").arg(freeUdpPort());
    KVR_PlayStream(m_id, address.toUtf8(), -1, -1, -1);
    const LiveSource source(bars, "mpegts", address + "?pkt_size=1316");
    checkPlaying();
    QCOMPARE(KVR_GetDuration(m_id), 0LL);
}

void TestDeskStreams::aLiveStreamThatStopsIsAnError()
{
    const QString address = QString("udp://127.0.0.1:%1").arg(freeUdpPort());
    KVR_PlayStream(m_id, address.toUtf8(), -1, -1, -1);
    LiveSource source(bars, "mpegts", address + "?pkt_size=1316");
    checkPlaying();
    const ErrorOutput log;
    source.stop();
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR), 17000);
    QVERIFY2(log.text().contains("nothing arrives"), qPrintable(log.text()));
}

void TestDeskStreams::rtspPlays_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("over UDP") << 0;
    QTest::newRow("over TCP") << 1;
}

void TestDeskStreams::rtspPlays()
{
    QFETCH(int, mode);
    QProcess server;
    server.start(QCoreApplication::applicationDirPath() + "/rtspserver", {film});
    QVERIFY(server.waitForReadyRead());
    const QByteArray address = server.readLine().trimmed();
    QCOMPARE(KVR_PlayRtsp(m_id, address, 0, mode, -1, -1, -1), int(KVR_OK));
    checkPlaying();
    KVR_Stop(m_id);
    server.kill();
    server.waitForFinished();
}

void TestDeskStreams::fourPlayersPlaySideBySide()
{
    constexpr char big[] = "/mnt/stb/big.ts";
    QVERIFY(TestMedia::makeBars(big, 8, "1280x720"));
    KVR_SetCurrentLayout(1);
    QList<KVR_ID> ids = {m_id, KVR_CreatePlayer(), KVR_CreatePlayer(), KVR_CreatePlayer()};
    for (const KVR_ID id : ids)
        KVR_PlayFile(id, big, 0, 0, 0, "", -1, -1, -1);
    for (const KVR_ID id : ids)
        QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_PLAYER_PLAYING));
    QTest::qWait(2000);
    for (const KVR_ID id : ids) {
        QVERIFY2(KVR_GetPosition(id) > 1500, qPrintable(QString::number(KVR_GetPosition(id))));
        QCOMPARE(playerPicture(id).size(), QSize(960, 540));
        if (id != m_id)
            KVR_ClosePlayer(id);
    }
    KVR_SetCurrentLayout(0);
}

QTEST_GUILESS_MAIN(TestDeskStreams)
#include "tst_deskstreams.moc"
