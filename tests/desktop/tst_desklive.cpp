// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "Playing.h"
#include "TestMedia.h"

#include "tests/support/BoxFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QNetworkInterface>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QUdpSocket>
#include <QUrl>

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr char bars[] = "/mnt/stb/bars.ts";
constexpr char film[] = "/mnt/stb/film.mkv";
constexpr char other[] = "/mnt/stb/other.ts"; // whose picture has another PID
constexpr int barsSeconds = 12;
constexpr char small[] = "/mnt/stb/small.ts";
constexpr int smallSeconds = 60;

constexpr int transportPacketSize = 188;

// The packet of a transport stream that says which tracks there are.
QByteArray trackTable(const QByteArray &stream)
{
    constexpr int pid = 0x1000; // FFmpeg's
    for (int begin = 0; begin + transportPacketSize <= stream.size(); begin += transportPacketSize) {
        const QByteArray packet = stream.mid(begin, transportPacketSize);
        if (((packet[1] & 0x1f) << 8 | quint8(packet[2])) == pid)
            return packet;
    }
    return {};
}

// With all that a header may have: two sources, an extension and padding. Both of these have a table that would be
// believed if it were taken for a part of the stream.
QByteArray rtpPacket(int number, const QByteArray &payload, const QByteArray &table)
{
    const auto byte = [](int value) { return QByteArray(1, char(value)); };
    return QByteArray::fromHex("b221") + byte(number >> 8) + byte(number) + QByteArray::fromHex("00000000 01020304")
        + QByteArray::fromHex("05060708 090a0b0c abcd00") + byte(table.size() / 4) + table + payload + table.chopped(1)
        + byte(table.size());
}

QString multicast(KVR_ID id)
{
    KVR_MulticastEvent event = {};
    if (KVR_GetLastMulticastEvent(id, &event) != KVR_OK)
        return "failed";
    return QString("%1 %2").arg(QString::fromLatin1(event.ip_port)).arg(event.join);
}

// Sends a small picture in real time, some of it at once each time.
class BurstSource
{
public:
    explicit BurstSource(const QString &address)
        : m_stream(boxFile(small))
        , m_host(QUrl(address).host())
        , m_port(quint16(QUrl(address).port()))
    {
        m_socket.bind(QHostAddress(QHostAddress::LocalHost));
        m_socket.setMulticastInterface(QNetworkInterface::interfaceFromName("lo"));
        QObject::connect(&m_timer, &QTimer::timeout, &m_socket, [this] { send(); });
        m_clock.start();
        m_timer.start(interval);
    }

private:
    static constexpr int interval = 600; // milliseconds
    static constexpr int payload = 7 * transportPacketSize;

    void send()
    {
        const qint64 due = m_clock.elapsed() * m_stream.size() / (smallSeconds * 1000);
        for (; m_sent < due && m_sent < m_stream.size(); m_sent += payload)
            m_socket.writeDatagram(m_stream.mid(int(m_sent), payload), m_host, m_port);
    }

    const QByteArray m_stream;
    const QHostAddress m_host;
    const quint16 m_port;
    QUdpSocket m_socket;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_sent = 0;
};

KVR_ID player = -1;
Q_GLOBAL_STATIC(QList<int>, states) // that events told

void noteState(int type)
{
    if (type == KVR_EVENT_STATE)
        *states += KVR_GetPlayerState(player);
}

} // namespace

/// What players make of streams that are sent as they happen.
class TestDeskLive : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void packetsPlayUnicast_data();
    void packetsPlayUnicast();
    void rtpHeadersAreTakenOff_data();
    void rtpHeadersAreTakenOff();
    void multicastIsJoinedAndLeft_data();
    void multicastIsJoinedAndLeft();
    void aLiveStreamHasNoDurationAndNoWayBack();
    void aLiveStreamThatStopsIsAnError();
    void aZapIsOneOpeningAndOnePlaying_data();
    void aZapIsOneOpeningAndOnePlaying();
    void rtspPlays_data();
    void rtspPlays();

private:
    KVR_ID m_id = -1;
};

void TestDeskLive::initTestCase()
{
    QVERIFY(TestMedia::makeBars(bars, barsSeconds));
    QVERIFY(TestMedia::makeBars(small, smallSeconds, "160x90"));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", film}));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", "-streamid", "0:600", other}));
}

void TestDeskLive::init()
{
    m_id = KVR_CreatePlayer();
}

void TestDeskLive::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskLive::packetsPlayUnicast_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<QString>("format");
    QTest::newRow("UDP") << "udp"
                         << "mpegts";
    QTest::newRow("RTP") << "rtp"
                         << "rtp_mpegts";
}

void TestDeskLive::packetsPlayUnicast()
{
    QFETCH(QString, scheme);
    QFETCH(QString, format);
    const QString address = QString("%1://127.0.0.1:%2").arg(scheme).arg(freeUdpPort());
    const DeskEvents events(m_id);
    QCOMPARE(KVR_PlayStream(m_id, address.toUtf8(), -1, TestMedia::englishPid, -1), int(KVR_OK));
    const LiveSource source(bars, format, address + "?pkt_size=1316");
    QVERIFY(comesToPlay(m_id));
    QCOMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
    QTRY_COMPARE(KVR_GetAudioPid(m_id), TestMedia::englishPid);
    QCOMPARE(DeskEvents::count(KVR_EVENT_MULTICAST), 0);
    QCOMPARE(multicast(m_id), QString(" 0"));
}

void TestDeskLive::rtpHeadersAreTakenOff_data()
{
    QTest::addColumn<int>("step"); // between the numbers of packets
    QTest::addColumn<bool>("hasAnotherVersion");
    QTest::newRow("one after the other") << 1 << false;
    QTest::newRow("gaps in the numbers") << 3 << false; // what comes is what there is
    QTest::newRow("all of one number") << 0 << false;
    QTest::newRow("another version between them") << 1 << true;
}

void TestDeskLive::rtpHeadersAreTakenOff()
{
    QFETCH(int, step);
    QFETCH(bool, hasAnotherVersion);
    constexpr int payload = 7 * transportPacketSize;
    constexpr int interval = 20; // milliseconds
    const QByteArray stream = boxFile(bars);
    const QByteArray table = trackTable(boxFile(other));
    QVERIFY(!table.isEmpty());
    const auto port = quint16(freeUdpPort());
    const QByteArray anotherVersion = QByteArray::fromHex("40210000 00000000 00000000");
    QUdpSocket socket;
    QTimer timer;
    int sent = 0;
    int number = 0;
    connect(&timer, &QTimer::timeout, this, [&] {
        for (const int end = sent + stream.size() / (barsSeconds * 1000 / interval); sent < end; sent += payload) {
            socket.writeDatagram(rtpPacket(number, stream.mid(sent % stream.size(), payload), table),
                                 QHostAddress::LocalHost, port);
            if (hasAnotherVersion)
                socket.writeDatagram(anotherVersion + table, QHostAddress::LocalHost, port);
            number += step;
        }
    });
    timer.start(interval);
    KVR_PlayStream(m_id, "rtp://127.0.0.1:" + QByteArray::number(port), -1, -1, -1);
    QVERIFY(comesToPlay(m_id));
    KVR_Track *tracks = nullptr;
    int count = 0;
    QCOMPARE(KVR_GetVideoTrackList(m_id, &tracks, &count), int(KVR_OK));
    QList<int> pids;
    std::transform(tracks, tracks + count, std::back_inserter(pids), [](const KVR_Track &track) { return track.id; });
    free(tracks);
    QCOMPARE(pids, QList<int>{TestMedia::videoPid});
}

void TestDeskLive::multicastIsJoinedAndLeft_data()
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

void TestDeskLive::multicastIsJoinedAndLeft()
{
    QFETCH(QString, scheme);
    QFETCH(QString, format);
    QFETCH(QString, pattern);
    const QString port = QString::number(freeUdpPort());
    const LiveSource source(bars, format, scheme + "://239.255.77.1:" + port + "?localaddr=127.0.0.1");
    const DeskEvents events(m_id);
    KVR_PlayStream(m_id, pattern.arg(port).toUtf8(), -1, -1, -1);
    QVERIFY(comesToPlay(m_id));
    QCOMPARE(DeskEvents::count(KVR_EVENT_MULTICAST), 1);
    QCOMPARE(multicast(m_id), "239.255.77.1:" + port + " 1");
    KVR_Stop(m_id);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_MULTICAST), 2);
    QCOMPARE(multicast(m_id), "239.255.77.1:" + port + " 0");
}

void TestDeskLive::aLiveStreamHasNoDurationAndNoWayBack()
{
    const QString address = QString("udp://127.0.0.1:%1").arg(freeUdpPort());
    KVR_PlayStream(m_id, address.toUtf8(), -1, -1, -1);
    const LiveSource source(bars, "mpegts", address + "?pkt_size=1316");
    QVERIFY(comesToPlay(m_id));
    QCOMPARE(KVR_GetDuration(m_id), 0LL);
    QCOMPARE(KVR_SetPosition(m_id, 0), int(KVR_ERR_NOT_SUPPORTED));
    QCOMPARE(KVR_SetSpeed(m_id, -1), int(KVR_ERR_NOT_SUPPORTED));
    QCOMPARE(KVR_GetSpeed(m_id), 1);
}

void TestDeskLive::aLiveStreamThatStopsIsAnError()
{
    const QString address = QString("udp://127.0.0.1:%1").arg(freeUdpPort());
    KVR_PlayStream(m_id, address.toUtf8(), -1, -1, -1);
    LiveSource source(bars, "mpegts", address + "?pkt_size=1316");
    QVERIFY(comesToPlay(m_id));
    const ErrorOutput log;
    source.stop();
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR), 17000);
    QVERIFY2(log.text().contains("nothing arrives"), qPrintable(log.text()));
}

void TestDeskLive::aZapIsOneOpeningAndOnePlaying_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("unicast") << "udp://127.0.0.1:%1";
    QTest::newRow("multicast") << "udp://239.255.77.3:%1?localaddr=127.0.0.1";
}

// Networks deliver what is sent as it happens in bursts.
void TestDeskLive::aZapIsOneOpeningAndOnePlaying()
{
    QFETCH(QString, address);
    constexpr int zaps = 4;
    constexpr int watched = 2500; // milliseconds
    const QStringList channels = {address.arg(freeUdpPort()), address.arg(freeUdpPort())};
    const std::array<BurstSource, 2> sources = {BurstSource(channels[0]), BurstSource(channels[1])};
    const DeskEvents events(m_id);
    player = m_id;
    DeskEvents::setReaction(noteState);
    for (int zap = 0; zap < zaps; ++zap) {
        DeskEvents::clear();
        states->clear();
        QCOMPARE(KVR_PlayStream(m_id, channels[zap % channels.size()].toUtf8(), -1, -1, -1), int(KVR_OK));
        QVERIFY(comesToPlay(m_id));
        QTest::qWait(watched);
        DeskEvents::clear();
        QCOMPARE(*states, QList<int>({KVR_PLAYER_OPENING, KVR_PLAYER_PLAYING}));
    }
}

void TestDeskLive::rtspPlays_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("transport"); // the only one of the server
    QTest::newRow("over UDP") << 0 << "udp";
    QTest::newRow("over TCP") << 1 << "tcp";
}

void TestDeskLive::rtspPlays()
{
    QFETCH(int, mode);
    QFETCH(QString, transport);
    QProcess server;
    server.start(QCoreApplication::applicationDirPath() + "/rtspserver", {film, transport});
    QVERIFY(server.waitForReadyRead());
    const QByteArray address = server.readLine().trimmed();
    QCOMPARE(KVR_PlayRtsp(m_id, address, 0, mode, -1, -1, -1), int(KVR_OK));
    QVERIFY(comesToPlay(m_id));
    KVR_Stop(m_id);
    server.kill();
    server.waitForFinished();
}

QTEST_GUILESS_MAIN(TestDeskLive)
#include "tst_desklive.moc"
