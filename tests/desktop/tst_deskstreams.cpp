// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "Playing.h"
#include "RawServer.h"
#include "TestMedia.h"

#include "launcher/PageServer.h"

#include "tests/support/BoxFile.h"
#include "tests/support/HttpServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <QUdpSocket>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace {

constexpr char bars[] = "/mnt/stb/bars.ts";
constexpr char web[] = "/mnt/stb/web";
constexpr int barsSeconds = 12;
constexpr char brief[] = "/mnt/stb/brief.ts";
constexpr int briefSeconds = 5;
constexpr double framesPerSecond = 25;

// Counts the frames that each player shows, for as long as it lives.
class FrameCounter
{
public:
    FrameCounter()
    {
        DeskBox::setScreenHandler([this] { count(); });
    }
    ~FrameCounter() { DeskBox::setScreenHandler({}); }
    FrameCounter(const FrameCounter &) = delete;
    FrameCounter &operator=(const FrameCounter &) = delete;

    int of(KVR_ID id) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_shown.find(id);
        return found == m_shown.end() ? 0 : found->second.count;
    }

private:
    struct Shown
    {
        std::shared_ptr<const DeskBox::Frame> last;
        int count = 0;
    };

    void count()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (const DeskBox::PlayerWindow &window : DeskBox::playerWindows()) {
            Shown &shown = m_shown[window.id];
            if (window.frame && shown.last != window.frame)
                ++shown.count;
            shown.last = window.frame;
        }
    }

    mutable std::mutex m_mutex;
    std::map<KVR_ID, Shown> m_shown;
};

// PIDs and languages of a player's tracks.
QStringList tracks(KVR_ID id, int (*list)(KVR_ID, KVR_Track **, int *))
{
    QStringList result;
    KVR_Track *entries = nullptr;
    int count = 0;
    list(id, &entries, &count);
    for (int i = 0; i < count; ++i) {
        const QString description = QString::fromLatin1(entries[i].descr);
        const QString language = description.section(", ", 0, 0);
        const bool isLanguage = language == "rus" || language == "eng" || language == "deu";
        result += QString::number(entries[i].id) + (isLanguage ? ' ' + language : QString());
    }
    std::free(entries);
    return result;
}

// Makes a playlist of some tracks of the brief stream.
bool makePlaylist(const char *name, const QStringList &options)
{
    return TestMedia::ffmpeg(
        QStringList{"-i", brief} + options
        + QStringList{"-c", "copy", "-hls_time", "1", "-hls_list_size", "0", QString(web) + '/' + name + ".m3u8"});
}

// Sends the first quarter of a transport stream to ports of this PC, a little faster than it plays.
class Sender
{
public:
    Sender(const QByteArray &stream, bool isRtp)
        : m_stream(stream.left(stream.size() / 4))
        , m_header(isRtp ? QByteArray::fromHex("80210000 00000000 00000000") : QByteArray())
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { send(); });
    }

    /// A port that is sent to.
    int addPort()
    {
        m_ports += freeUdpPort();
        return m_ports.last();
    }
    void start() { m_timer.start(5); }

private:
    void send()
    {
        const QByteArray packet = m_stream.mid(m_sent, 7 * 188);
        for (const int port : qAsConst(m_ports))
            m_socket.writeDatagram(m_header + packet, QHostAddress(QHostAddress::LocalHost), quint16(port));
        m_sent += packet.size();
        if (m_sent == m_stream.size())
            m_timer.stop();
    }

    const QByteArray m_stream;
    const QByteArray m_header;
    QList<int> m_ports;
    QUdpSocket m_socket;
    QTimer m_timer;
    int m_sent = 0;
};

} // namespace

/// What players make of files and playlists from the network, and how many play side by side.
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
    void whatStallsIsOpeningAgain();
    void whatComesWholeHasEnded_data();
    void whatComesWholeHasEnded();
    void aConnectionThatBreaksOnceIsResumed();
    void aLivePlaylistThatEndsHasEnded();
    void aListOfPlaylistsEndsWithThem();
    void aPlaylistHasThePidsAndLanguagesOfItsSegments_data();
    void aPlaylistHasThePidsAndLanguagesOfItsSegments();
    void aPlayerBuffersAsLongAsItsBootParameterSays_data();
    void aPlayerBuffersAsLongAsItsBootParameterSays();
    void aBufferTimeThatIsNoneIsToldOnce_data();
    void aBufferTimeThatIsNoneIsToldOnce();
    void fourPlayersPlaySmoothlySideBySide();

private:
    void makePlaylists();
    void serveBeginning(HttpServer *server);

    KVR_ID m_id = -1;
};

void TestDeskStreams::initTestCase()
{
    QVERIFY(TestMedia::makeBars(bars, barsSeconds));
    QVERIFY(QDir().mkpath(web));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0", "-c", "copy", QString(web) + "/bars.mp4"}));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-map", "0:1", "-c", "copy", "-hls_time", "2",
                               "-hls_list_size", "0", QString(web) + "/bars.m3u8"}));
    makePlaylists();
}

void TestDeskStreams::makePlaylists()
{
    QVERIFY(TestMedia::makeBars(brief, briefSeconds, "320x180"));
    QVERIFY(makePlaylist("brief", {"-map", "0"}));
    QVERIFY(makePlaylist("low", {"-map", "0"}));
    QVERIFY(makePlaylist("picture", {"-map", "0:0"}));
    QVERIFY(makePlaylist("rus", {"-map", "0:1", "-hls_segment_options", "mpegts_start_pid=768"}));
    QVERIFY(makePlaylist("eng", {"-map", "0:2", "-hls_segment_options", "mpegts_start_pid=1024"}));
    const QString key = QString(web) + "/key";
    writeBoxFile(key, "0123456789abcdef");
    writeBoxFile("/mnt/stb/key.txt", "key\n" + key.toUtf8() + '\n');
    QVERIFY(makePlaylist("secret", {"-map", "0", "-hls_key_info_file", "/mnt/stb/key.txt"}));
}

void TestDeskStreams::init()
{
    m_id = KVR_CreatePlayer();
}

void TestDeskStreams::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskStreams::httpSendsTheHeadersOfTheOptions()
{
    HttpServer server;
    server.serve("/bars.ts", HttpServer::Page{boxFile(bars), "video/mp2t"});
    const QByteArray url = server.url("/bars.ts").toEncoded();
    QCOMPARE(KVR_PlayHttp(m_id, url, "User-Agent: Box/1.0, of a desk\r\nX-Token: a%2Fb,c=d\n", -1, -1, -1),
             int(KVR_OK));
    QVERIFY(comesToPlay(m_id));
    const auto requests = server.requestsFor("/bars.ts");
    QVERIFY(!requests.isEmpty());
    QCOMPARE(requests.first().headers.value("x-token"), QByteArray("a%2Fb,c=d"));
    QCOMPARE(requests.first().headers.value("user-agent"), QByteArray("Box/1.0, of a desk"));
}

void TestDeskStreams::httpPlaysAFileAndSeeksInIt()
{
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    QCOMPARE(KVR_PlayHttp(m_id, server.address("bars.mp4").toEncoded(), "", -1, -1, -1), int(KVR_OK));
    QVERIFY(comesToPlay(m_id));
    QVERIFY(qAbs(KVR_GetDuration(m_id) - barsSeconds * 1000) < 200);
    QCOMPARE(KVR_SetPosition(m_id, 9000), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) > 9100);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskStreams::httpPlaysAPlaylistOfSegments()
{
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    QCOMPARE(KVR_PlayHttp(m_id, server.address("bars.m3u8").toEncoded(), "", -1, -1, -1), int(KVR_OK));
    QVERIFY(comesToPlay(m_id));
    QVERIFY(qAbs(KVR_GetDuration(m_id) - barsSeconds * 1000) < 300);
    QCOMPARE(KVR_SetPosition(m_id, 10000), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskStreams::httpFollowsARedirect()
{
    HttpServer server;
    server.serve("/bars.ts", HttpServer::Page{boxFile(bars), "video/mp2t"});
    server.redirect("/moved", server.url("/bars.ts"));
    KVR_PlayHttp(m_id, server.url("/moved").toEncoded(), "", -1, -1, -1);
    QVERIFY(comesToPlay(m_id));
}

void TestDeskStreams::whatStallsIsOpeningAgain()
{
    const QByteArray stream = boxFile(bars);
    HttpServer server;
    server.serve("/stalls.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, stream.size() / 4});
    KVR_PlayHttp(m_id, server.url("/stalls.ts").toEncoded(), "", -1, -1, -1);
    QVERIFY(comesToPlay(m_id));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_OPENING));
}

void TestDeskStreams::whatComesWholeHasEnded_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("body");
    const QByteArray stream = boxFile(brief);
    const QByteArray length = "Content-Length: " + QByteArray::number(stream.size()) + "\r\n";
    const QByteArray packed = qCompress(stream).mid(4);
    QTest::newRow("its length") << length << stream;
    QTest::newRow("connection closed") << length + "Connection: close\r\n" << stream;
    QTest::newRow("no length") << QByteArray() << stream;
    QTest::newRow("in pieces") << QByteArray("Transfer-Encoding: chunked\r\n")
                               << QByteArray::number(stream.size(), 16) + "\r\n" + stream + "\r\n0\r\n\r\n";
    QTest::newRow("packed") << "Content-Encoding: deflate\r\nContent-Length: " + QByteArray::number(packed.size())
            + "\r\n" << packed;
}

void TestDeskStreams::whatComesWholeHasEnded()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, body);
    const RawServer server("HTTP/1.1 200 OK\r\nContent-Type: video/mp2t\r\n" + head + "\r\n" + body);
    QCOMPARE(KVR_PlayHttp(m_id, server.url().toUtf8(), "", -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING), 12000);
    QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPlayerState(m_id) != KVR_PLAYER_PLAYING, 12000);
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskStreams::aConnectionThatBreaksOnceIsResumed()
{
    const QByteArray stream = boxFile(brief);
    int requests = 0;
    const RawServer server([&](const QByteArray &request) {
        const int range = request.toLower().indexOf("range: bytes=");
        const int begin = range < 0 ? 0 : request.mid(range + 13, 12).split('-').first().toInt();
        const QByteArray rest = stream.mid(begin);
        const QByteArray size = QByteArray::number(stream.size());
        return "HTTP/1.1 206 Partial Content\r\nAccept-Ranges: bytes\r\nContent-Range: bytes "
            + QByteArray::number(begin) + '-' + QByteArray::number(stream.size() - 1) + '/' + size
            + "\r\nContent-Length: " + QByteArray::number(rest.size()) + "\r\n\r\n"
            + (++requests == 1 ? rest.left(stream.size() / 3) : rest);
    });
    QCOMPARE(KVR_PlayHttp(m_id, server.url().toUtf8(), "", -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED), 20000);
    QVERIFY(requests > 1);
}

void TestDeskStreams::aLivePlaylistThatEndsHasEnded()
{
    HttpServer server;
    const QByteArray whole = boxFile(QString(web) + "/brief.m3u8");
    for (int i = 0; i < briefSeconds; ++i) {
        const QByteArray name = "/brief" + QByteArray::number(i) + ".ts";
        server.serve(name, HttpServer::Page{boxFile(web + name), "video/mp2t"});
    }
    const auto serve = [&](const QByteArray &list) {
        server.serve("/brief.m3u8", HttpServer::Page{list, "application/x-mpegURL"});
    };
    serve(QByteArray(whole).replace("#EXT-X-ENDLIST\n", ""));
    QCOMPARE(KVR_PlayHttp(m_id, server.url("/brief.m3u8").toEncoded(), "", -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING), 12000);
    QCOMPARE(KVR_GetDuration(m_id), 0LL);
    serve(whole);
    QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPlayerState(m_id) != KVR_PLAYER_PLAYING, 12000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskStreams::aListOfPlaylistsEndsWithThem()
{
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    writeBoxFile(QString(web) + "/channels.m3u",
                 "#EXTM3U\n#EXTINF:-1,One\n" + server.address("brief.m3u8").toEncoded());
    QCOMPARE(KVR_PlayHttp(m_id, server.address("channels.m3u").toEncoded(), "", -1, -1, -1), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED), 20000);
}

void TestDeskStreams::aPlaylistHasThePidsAndLanguagesOfItsSegments_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::addColumn<QStringList>("video");
    QTest::addColumn<QStringList>("audio");
    const QByteArray head = "#EXTM3U\n#EXT-X-VERSION:4\n";
    QTest::newRow("of segments") << QByteArray("brief.m3u8") << QStringList{"256"} << QStringList{"257 rus", "258 eng"};
    writeBoxFile(QString(web) + "/variants.m3u8",
                 head
                     + "#EXT-X-STREAM-INF:BANDWIDTH=500000\nlow.m3u8\n"
                       "#EXT-X-STREAM-INF:BANDWIDTH=900000\nbrief.m3u8\n");
    QTest::newRow("of variants") << QByteArray("variants.m3u8") << QStringList{"256"}
                                 << QStringList{"257 rus", "258 eng"};
    writeBoxFile(QString(web) + "/renditions.m3u8",
                 head
                     + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"one\",DEFAULT=YES,URI=\"rus.m3u8\"\n"
                       "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",LANGUAGE=\"deu\",NAME=\"a, b\",URI=\"eng.m3u8\"\n"
                       "#EXT-X-STREAM-INF:BANDWIDTH=900000,AUDIO=\"a\"\npicture.m3u8\n");
    QTest::newRow("with sound of their own")
        << QByteArray("renditions.m3u8") << QStringList{"256"} << QStringList{"768 rus", "1024 deu"};
    QTest::newRow("of the box itself") << QByteArray("/mnt/stb/web/brief.m3u8") << QStringList{"256"}
                                       << QStringList{"257 rus", "258 eng"};
    QTest::newRow("encrypted") << QByteArray("secret.m3u8") << QStringList{"8192"} << QStringList{"8193", "8194"};
}

void TestDeskStreams::aPlaylistHasThePidsAndLanguagesOfItsSegments()
{
    QFETCH(QByteArray, playlist);
    QFETCH(QStringList, video);
    QFETCH(QStringList, audio);
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    const bool isFile = playlist.startsWith('/');
    const QByteArray address = server.address(playlist).toEncoded();
    const auto play = [&](int audioPid) {
        return isFile ? KVR_PlayFile(m_id, playlist, 0, 0, 0, "", -1, audioPid, -1)
                      : KVR_PlayHttp(m_id, address, "", -1, audioPid, -1);
    };
    QCOMPARE(play(-1), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING), 12000);
    QCOMPARE(tracks(m_id, KVR_GetVideoTrackList), video);
    QCOMPARE(tracks(m_id, KVR_GetAudioTrackList), audio);
    const int second = audio[1].section(' ', 0, 0).toInt();
    QVERIFY(KVR_GetAudioPid(m_id) != second);
    QCOMPARE(KVR_SetAudioPid(m_id, second), int(KVR_OK));
    QTRY_COMPARE(KVR_GetAudioPid(m_id), second);
    QCOMPARE(play(second), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetAudioPid(m_id), second, 12000);
}

// A quarter of the stream comes, which is three seconds, and nothing more.
void TestDeskStreams::serveBeginning(HttpServer *server)
{
    const QByteArray stream = boxFile(bars);
    server->serve("/bars.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, stream.size() / 4});
    server->serve("/bars.m3u8", HttpServer::Page{boxFile(QString(web) + "/bars.m3u8"), "application/x-mpegURL"});
    server->serve("/bars0.ts", HttpServer::Page{boxFile(QString(web) + "/bars0.ts"), "video/mp2t"});
    server->serve("/bars1.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, 0});
}

void TestDeskStreams::aPlayerBuffersAsLongAsItsBootParameterSays_data()
{
    QTest::addColumn<QByteArray>("parameter");
    QTest::addColumn<QByteArray>("address"); // of a port
    QTest::newRow("file over HTTP") << QByteArray("buf_time_http") << QByteArray("http://127.0.0.1:%1/bars.ts");
    QTest::newRow("playlist") << QByteArray("buf_time_hls") << QByteArray("http://127.0.0.1:%1/bars.m3u8");
    QTest::newRow("UDP") << QByteArray("buf_time_udp") << QByteArray("udp://127.0.0.1:%1");
    QTest::newRow("RTP") << QByteArray("buf_time_udp") << QByteArray("rtp://127.0.0.1:%1");
}

void TestDeskStreams::aPlayerBuffersAsLongAsItsBootParameterSays()
{
    QFETCH(QByteArray, parameter);
    QFETCH(QByteArray, address);
    const bool isHttp = address.startsWith("http:");
    HttpServer server;
    serveBeginning(&server);
    Sender sender(boxFile(bars), address.startsWith("rtp:"));
    const auto play = [&](KVR_ID id, const QByteArray &time) {
        const int port = isHttp ? server.port() : sender.addPort();
        const QByteArray url = QByteArray(address).replace("%1", QByteArray::number(port));
        QCOMPARE(KVR_SetBootParamValue(parameter, time), int(KVR_OK));
        QCOMPARE(KVR_PlayStream(id, url, -1, -1, -1), int(KVR_OK));
    };
    const KVR_ID other = KVR_CreatePlayer();
    play(m_id, "10000");
    play(other, "500");
    QTest::qWait(500); // until both listen
    sender.start();
    QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPosition(other) > 1000, 12000);
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_OPENING));
    QVERIFY(KVR_GetPosition(m_id) < 100);
    KVR_ClosePlayer(other);
    KVR_SetBootParamValue(parameter, "");
}

void TestDeskStreams::aBufferTimeThatIsNoneIsToldOnce_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("words") << QByteArray("long");
    QTest::newRow("below zero") << QByteArray("-1");
    QTest::newRow("more than is allowed") << QByteArray("30001");
    QTest::newRow("more than a number holds") << QByteArray("99999999999999999999");
    QTest::newRow("with its unit") << QByteArray("500ms");
    QTest::newRow("fraction") << QByteArray("0.5");
    QTest::newRow("longest") << QByteArray(255, '9');
}

void TestDeskStreams::aBufferTimeThatIsNoneIsToldOnce()
{
    QFETCH(QByteArray, value);
    HttpServer server;
    server.serve("/bars.ts", HttpServer::Page{boxFile(bars), "video/mp2t"});
    const ErrorOutput log;
    QCOMPARE(KVR_SetBootParamValue("buf_time_http", value), int(KVR_OK));
    for (int i = 0; i < 2; ++i)
        KVR_PlayHttp(m_id, server.url("/bars.ts").toEncoded(), "", -1, -1, -1);
    QVERIFY(comesToPlay(m_id));
    QCOMPARE(log.text().count("the boot parameter buf_time_http is no number of milliseconds from 0 to 30000"), 1);
    KVR_SetBootParamValue("buf_time_http", "");
}

void TestDeskStreams::fourPlayersPlaySmoothlySideBySide()
{
    constexpr char big[] = "/mnt/stb/big.ts";
    constexpr int measurement = 2000; // milliseconds
    constexpr int attempts = 5;       // since other tests may need the processor too
    QVERIFY(TestMedia::makeBars(big, 14, "1280x720"));
    KVR_SetCurrentLayout(1);
    const std::vector<KVR_ID> ids = {m_id, KVR_CreatePlayer(), KVR_CreatePlayer(), KVR_CreatePlayer()};
    const FrameCounter frames;
    for (const KVR_ID id : ids)
        KVR_PlayFile(id, big, 0, 0, 0, "", -1, -1, -1);
    for (const KVR_ID id : ids)
        QTRY_VERIFY(KVR_GetPlayerState(id) == KVR_PLAYER_PLAYING && !playerPicture(id).isNull());

    double worst = 0; // share of the frames that the worst player has shown
    for (int i = 0; i < attempts && worst < 0.9; ++i) {
        QElapsedTimer timer;
        timer.start();
        std::vector<int> before(ids.size());
        std::transform(ids.begin(), ids.end(), before.begin(), [&](KVR_ID id) { return frames.of(id); });
        QTest::qWait(measurement);
        const double expected = framesPerSecond * double(timer.elapsed()) / 1000;
        worst = 1;
        for (std::size_t player = 0; player < ids.size(); ++player)
            worst = std::min(worst, (frames.of(ids[player]) - before[player]) / expected);
        qInfo("the worst of four players shows %g of its frames", worst);
    }
    QVERIFY(worst >= 0.9);
    for (const KVR_ID id : ids) {
        QCOMPARE(playerPicture(id).size(), QSize(960, 540));
        if (id != m_id)
            KVR_ClosePlayer(id);
    }
    KVR_SetCurrentLayout(0);
}

QTEST_GUILESS_MAIN(TestDeskStreams)
#include "tst_deskstreams.moc"
