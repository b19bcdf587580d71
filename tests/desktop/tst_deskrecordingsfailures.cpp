// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "RawServer.h"
#include "RecordedFile.h"
#include "TestMedia.h"

#include "tests/support/BoxFile.h"
#include "tests/support/HttpServer.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>
#include <vector>

namespace {

constexpr char web[] = "/mnt/stb/web";
constexpr char bars[] = "/mnt/stb/web/bars.ts";
constexpr char precious[] = "/home/user/precious"; // a folder outside the storage
constexpr char treasure[] = "what was there before";
constexpr int longestFailure = 20000; // milliseconds

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

struct Attempt
{
    QByteArray name;
    QByteArray address;
    QByteArray file;
    QByteArray reason; // a part of what the log says
    KVR_ID id = -1;
};

} // namespace

/// Recordings that cannot be made, or not to their end.
class TestDeskRecordingsFailures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aRecordingThatCannotBeMadeSaysWhy_data();
    void aRecordingThatCannotBeMadeSaysWhy();
    void whatIsNotItsOwnIsNeverTouched();
    void whatArrivedBeforeTheFailurePlays_data();
    void whatArrivedBeforeTheFailurePlays();

private:
    void prepareSources();
    QByteArray address(const char *page) const { return m_server.url(page).toEncoded(); }

    HttpServer m_server;
    HttpServer m_silent;
    HttpServer m_refusing;
    std::unique_ptr<RawServer> m_endingTransportStream;
    std::unique_ptr<RawServer> m_endingFilm;
    std::unique_ptr<RawServer> m_endless;
    std::vector<Attempt> m_attempts;
    ErrorOutput m_log;
};

void TestDeskRecordingsFailures::prepareSources()
{
    QVERIFY(QDir().mkpath(web));
    QVERIFY(TestMedia::makeBars(bars, 6));
    const QString film = QString(web) + "/film.mp4";
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", "-movflags", "faststart", film}));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-i", film, "-map", "1", "-c", "copy", QString(web) + "/film.mkv"}));
    QVERIFY(TestMedia::makeSubtitles(QString(web) + "/text.srt", "text"));

    const QByteArray stream = boxFile(bars);
    m_server.serve("/bars.ts", HttpServer::Page{stream, "video/mp2t"});
    m_server.serve("/garbage", HttpServer::Page{QByteArray("garbage\n").repeated(10000), "video/mp2t"});
    m_server.serve("/nothing", HttpServer::Page{"", "video/mp2t"});
    m_server.serve("/text.srt", HttpServer::Page{boxFile(QString(web) + "/text.srt"), "text/plain"});
    m_server.serve("/stalled.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, stream.size() / 2});
    const QByteArray matroska = boxFile(QString(web) + "/film.mkv");
    m_server.serve("/cut.mkv", HttpServer::Page{matroska.left(matroska.size() / 3), "video/x-matroska"});
    m_server.serve("/box.m3u8",
                   HttpServer::Page{"#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nfile://" + QByteArray(bars)
                                        + "\n#EXT-X-ENDLIST\n",
                                    "application/vnd.apple.mpegurl"});
    m_server.redirect("/circle", m_server.url("/circle"));
    m_silent.fallSilent();
    m_refusing.refuse();
    m_endingTransportStream =
        std::make_unique<RawServer>(RawServer::cutOff(stream.left(stream.size() / 2), stream.size()));
    const QByteArray whole = boxFile(film);
    m_endingFilm = std::make_unique<RawServer>(RawServer::cutOff(whole.left(whole.size() / 2), whole.size()));
    m_endless = std::make_unique<RawServer>("HTTP/1.0 200 OK\r\nContent-Type: video/mp2t\r\nConnection: close\r\n\r\n"
                                            + stream.left(stream.size() / 2));
}

void TestDeskRecordingsFailures::initTestCase()
{
    for (const char *proxy : {"http_proxy", "HTTP_PROXY", "all_proxy"})
        qunsetenv(proxy);
    prepareSources();
    if (QTest::currentTestFailed())
        return;
    QVERIFY(QDir().mkpath(precious));
    writeBoxFile(QString(precious) + "/file.ts", treasure);
    writeBoxFile("/mnt/stb/existing.ts", treasure);
    QVERIFY(QDir().mkpath("/mnt/stb/folder"));
    QVERIFY(QFile::link(precious, "/mnt/stb/way-out"));
    QVERIFY(QFile::link(QString(precious) + "/file.ts", "/mnt/stb/link.ts"));
    QVERIFY(QFile::link(QString(precious) + "/new.ts", "/mnt/stb/dangling.ts"));

    const QByteArray good = address("/bars.ts");
    const QByteArray port = QByteArray::number(freeUdpPort());
    m_attempts = {
        {"outside", good, QByteArray(precious) + "/new.ts", "below /mnt/stb"},
        {"outside, existing", good, QByteArray(precious) + "/file.ts", "below /mnt/stb"},
        {"outside, through the parent", good, "../../home/user/precious/new.ts", "below /mnt/stb"},
        {"outside, further down", good, "folder/../../../home/user/precious/new.ts", "below /mnt/stb"},
        {"outside, from the root", good, "/mnt/stb/../../home/user/precious/new.ts", "below /mnt/stb"},
        {"outside, similar name", good, "/mnt/stbs/new.ts", "below /mnt/stb"},
        {"no name", good, "", "below /mnt/stb"},
        {"the storage itself", good, "/mnt/stb", "below /mnt/stb"},
        {"a folder to be", good, "films/", "names a folder"},
        {"too many folders", good, QByteArray("n/").repeated(9) + "new.ts", "more than 8 folders"},
        {"a folder", good, "folder", "File exists"},
        {"a file that exists", good, "existing.ts", "File exists"},
        {"a file that exists, in full", good, "/mnt/stb/existing.ts", "File exists"},
        {"a link to a file", good, "link.ts", "File exists"},
        {"a link to nothing", good, "dangling.ts", "File exists"},
        {"through a link", good, "way-out/new.ts", "its folder"},
        {"below a file", good, "existing.ts/new.ts", "its folder"},
        {"too long", good, QByteArray(300, 'n'), "too long"},
        {"refused", m_refusing.url("/a.ts").toEncoded(), "refused.ts", "refused"},
        {"no such host", "http://no-such-host.invalid/a.ts", "nohost.ts", "no-such-host.invalid"},
        {"never answers", m_silent.url("/a.ts").toEncoded(), "silent.ts", "nothing arrives"},
        {"not found", address("/missing.ts"), "missing.ts", "404"},
        {"endless redirect", address("/circle"), "circle.ts", "/circle: "},
        {"garbage", address("/garbage"), "garbage.ts", "Invalid data"},
        {"nothing", address("/nothing"), "nothing.ts", "nothing: "},
        {"neither picture nor sound", address("/text.srt"), "text.ts", "neither picture nor sound"},
        {"silent port", "udp://127.0.0.1:" + port, "port.ts", "nothing arrives"},
        {"a file of the box", bars, "box.ts", "no stream of the network"},
        {"a file of the box, as address", "file://" + QByteArray(bars), "address.ts", "no stream of the network"},
        {"a file of the box, in a playlist", address("/box.m3u8"), "playlist.ts", "box.m3u8: "},
        {"unknown scheme", "gopher-tv://127.0.0.1/a", "scheme.ts", "Protocol not found"},
        {"stalls", address("/stalled.ts"), "stalled.ts", "nothing arrives"},
        {"breaks off", m_endingTransportStream->url().toUtf8(), "broken.ts", "breaks off after"},
        {"breaks off, as film", m_endingFilm->url().toUtf8(), "brokenfilm.ts", "Invalid data"},
        {"cut off file", address("/cut.mkv"), "cut.ts", "breaks off after"},
        {"ends", m_endless->url().toUtf8(), "ended.ts", "has ended"},
    };
    for (Attempt &attempt : m_attempts)
        attempt.id = KVR_AddRecord(attempt.address, attempt.file, 0, 60);
}

void TestDeskRecordingsFailures::aRecordingThatCannotBeMadeSaysWhy_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < m_attempts.size(); ++i)
        QTest::newRow(m_attempts[i].name) << int(i);
}

void TestDeskRecordingsFailures::aRecordingThatCannotBeMadeSaysWhy()
{
    QFETCH(int, index);
    const Attempt &attempt = m_attempts[std::size_t(index)];
    QVERIFY(attempt.id >= 0);
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(attempt.id), int(KVR_RECORD_FAILED), longestFailure);
    QString told;
    const QStringList lines = m_log.text().split('\n');
    for (const QString &line : lines) {
        if (line.startsWith(QString("stbapi: recording %1 of ").arg(attempt.id)) && line.contains(" failed: "))
            told += line;
    }
    QVERIFY2(told.section(" failed: ", 1).contains(attempt.reason), qPrintable(told));
}

void TestDeskRecordingsFailures::whatIsNotItsOwnIsNeverTouched()
{
    QCOMPARE(entriesOf(precious), QStringList("file.ts"));
    QCOMPARE(boxFile(QString(precious) + "/file.ts"), QByteArray(treasure));
    QCOMPARE(boxFile("/mnt/stb/existing.ts"), QByteArray(treasure));
    QCOMPARE(entriesOf("/mnt/stb/folder"), QStringList());
    QVERIFY(!QFile::exists("/mnt/stbs"));
    QVERIFY(!QFile::exists("/mnt/stb/films"));
    QCOMPARE(QFile::symLinkTarget("/mnt/stb/link.ts"), QString(precious) + "/file.ts");
    QVERIFY(QFile::exists(bars));
}

void TestDeskRecordingsFailures::whatArrivedBeforeTheFailurePlays_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<double>("seconds");
    QTest::newRow("stalled") << "stalled.ts" << 3.0;
    QTest::newRow("broken off") << "broken.ts" << 3.0;
    QTest::newRow("broken off, as film") << "brokenfilm.ts" << 3.0;
    QTest::newRow("cut off") << "cut.ts" << 2.0;
    QTest::newRow("ended") << "ended.ts" << 3.0;
}

void TestDeskRecordingsFailures::whatArrivedBeforeTheFailurePlays()
{
    QFETCH(QString, file);
    QFETCH(double, seconds);
    const RecordedFile recorded("/mnt/stb/" + file);
    QVERIFY2(recorded.seconds > seconds - 1 && recorded.seconds < seconds + 1,
             qPrintable(QString::number(recorded.seconds)));
}

QTEST_GUILESS_MAIN(TestDeskRecordingsFailures)
#include "tst_deskrecordingsfailures.moc"
