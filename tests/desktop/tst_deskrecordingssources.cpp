// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "RecordedFile.h"
#include "TestMedia.h"

#include "launcher/PageServer.h"

#include "tests/support/BoxFile.h"
#include "tests/support/HttpServer.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <iterator>
#include <memory>

namespace {

constexpr char web[] = "/mnt/stb/web";
constexpr char bars[] = "/mnt/stb/web/bars.ts";
constexpr int barsSeconds = 5;
// Seconds that a recording may lose to the opening of its source.
#if defined(__SANITIZE_THREAD__)
constexpr double lateStart = 2.5;
#else
constexpr double lateStart = 1.5;
#endif
constexpr int patience = 30000; // milliseconds, for a recording of some seconds

struct Recording
{
    const char *name;
    const char *file;
    bool hasRanges; // whether the server sends parts of files
    int duration;
    double expected; // seconds
};

constexpr Recording recordings[] = {
    {"transport stream, to the time", "bars.ts", false, 3, 3},
    {"transport stream, to its end", "bars.ts", true, 60, barsSeconds},
    {"transport stream without ranges, to its end", "bars.ts", false, 60, barsSeconds},
    {"MP4, to the time", "bars.mp4", true, 3, 3},
    {"Matroska, to its end", "bars.mkv", true, 60, barsSeconds},
    {"playlist, to the time", "bars.m3u8", true, 3, 3},
    {"playlist, to its end", "bars.m3u8", true, 60, barsSeconds},
};
constexpr int fileCount = std::size(recordings);

// Schemes of addresses whose letters are no matter.
constexpr const char *capitalSchemes[] = {"HTTP", "UDP"};

QString fileOf(int number)
{
    return QString("/mnt/stb/%1.ts").arg(number);
}

// Milliseconds from the first event of a recording's time to the last one, its end.
qint64 lengthOf(KVR_ID id)
{
    qint64 running = -1;
    qint64 last = -1;
    const QList<DeskEvents::Event> events = DeskEvents::of(KVR_EVENT_RECORDS);
    for (const DeskEvents::Event &event : events) {
        if (event.argument != id)
            continue;
        if (running < 0)
            running = event.time;
        last = event.time;
    }
    return last - running;
}

} // namespace

/// Recordings of all kinds of sources, which run side by side.
class TestDeskRecordingsSources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aServersFileIsRecordedAsItPlays_data();
    void aServersFileIsRecordedAsItPlays();
    void aStreamThatStartsAgainGoesOn();
    void aSourceWhosePidsChangeGoesOn();
    void theSchemeMayHaveCapitalLetters_data();
    void theSchemeMayHaveCapitalLetters();

private:
    void makeMedia();

    PageServer m_folder;
    HttpServer m_plain;
    std::unique_ptr<DeskEvents> m_events;
    KVR_ID m_files[fileCount] = {};
    std::unique_ptr<LiveSource> m_live;
    QString m_liveAddress;
    KVR_ID m_liveRecording = -1;
    KVR_ID m_changing = -1;
    std::unique_ptr<LiveSource> m_capitalSource;
    KVR_ID m_capitals[std::size(capitalSchemes)] = {};
};

void TestDeskRecordingsSources::makeMedia()
{
    QVERIFY(QDir().mkpath(web));
    const QString folder = QString(web) + '/';
    QVERIFY(TestMedia::makeBars(bars, barsSeconds));
    for (const char *name : {"bars.mp4", "bars.mkv"})
        QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0", "-c", "copy", folder + name}));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-map", "0:1", "-c", "copy", "-hls_time", "2",
                               "-hls_list_size", "0", folder + "bars.m3u8"}));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0", "-c", "copy", "-t", "2", "-streamid", "0:100", "-streamid",
                               "1:101", "-streamid", "2:102", folder + "other.ts"}));
}

void TestDeskRecordingsSources::initTestCase()
{
    for (const char *proxy : {"http_proxy", "HTTP_PROXY", "all_proxy"})
        qunsetenv(proxy);
    makeMedia();
    if (QTest::currentTestFailed())
        return;
    const auto contentOf = [](const char *name) { return boxFile(QString(web) + '/' + name); };
    QString error;
    QVERIFY2(m_folder.start(web, 0, &error), qPrintable(error));
    m_plain.serve("/bars.ts", HttpServer::Page{contentOf("bars.ts"), "video/mp2t"});
    m_plain.serve("/both.ts", HttpServer::Page{contentOf("bars.ts") + contentOf("other.ts"), "video/mp2t"});

    m_events = std::make_unique<DeskEvents>(KVR_BOX);
    m_liveAddress = QString("udp://127.0.0.1:%1").arg(freeUdpPort());
    m_live = std::make_unique<LiveSource>(bars, "mpegts", m_liveAddress + "?pkt_size=1316");
    m_liveRecording = KVR_AddRecord(m_liveAddress.toUtf8(), "live.ts", 0, 9);
    for (int i = 0; i < fileCount; ++i) {
        const QString file = recordings[i].file;
        const QUrl url = recordings[i].hasRanges ? m_folder.address(file) : m_plain.url('/' + file);
        m_files[i] = KVR_AddRecord(url.toEncoded(), QFile::encodeName(fileOf(i)), 0, recordings[i].duration);
    }
    m_changing = KVR_AddRecord(m_plain.url("/both.ts").toEncoded(), "both.ts", 0, 60);
    const QByteArray port = QByteArray::number(freeUdpPort());
    m_capitalSource = std::make_unique<LiveSource>(bars, "mpegts", "udp://127.0.0.1:" + port + "?pkt_size=1316");
    m_capitals[0] = KVR_AddRecord(m_plain.url("/bars.ts").toEncoded().replace("http:", "HTTP:"), "HTTP.ts", 0, 60);
    m_capitals[1] = KVR_AddRecord("UDP://127.0.0.1:" + port, "UDP.ts", 0, 6);
    QTRY_VERIFY_WITH_TIMEOUT(QFile("/mnt/stb/live.ts").size() > 200000, patience);
    m_live = std::make_unique<LiveSource>(bars, "mpegts", m_liveAddress + "?pkt_size=1316");
}

void TestDeskRecordingsSources::aServersFileIsRecordedAsItPlays_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < fileCount; ++i)
        QTest::newRow(recordings[i].name) << i;
}

void TestDeskRecordingsSources::aServersFileIsRecordedAsItPlays()
{
    QFETCH(int, index);
    const KVR_ID id = m_files[index];
    const double expected = recordings[index].expected;
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(id), int(KVR_RECORD_DONE), patience);
    const RecordedFile file(fileOf(index));
    QCOMPARE(file.format, QString("mpegts"));
    QVERIFY2(file.seconds > expected - lateStart && file.seconds < expected + 0.2,
             qPrintable(QString::number(file.seconds)));
    QVERIFY2(file.longestStep < 0.1, qPrintable(QString::number(file.longestStep)));
    QTRY_VERIFY(lengthOf(id) > 0);
    const double took = double(lengthOf(id)) / 1000;
    QVERIFY2(took > expected - lateStart, qPrintable(QString::number(took)));
    if (QByteArray(recordings[index].file).endsWith(".ts"))
        QCOMPARE(file.pids, TestMedia::barsPids());
}

void TestDeskRecordingsSources::aStreamThatStartsAgainGoesOn()
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(m_liveRecording), int(KVR_RECORD_DONE), patience);
    const RecordedFile file("/mnt/stb/live.ts");
    QCOMPARE(file.pids, TestMedia::barsPids());
    QVERIFY2(file.seconds > 5, qPrintable(QString::number(file.seconds)));
    // As many pictures as that time has, so both parts have kept their own times.
    const double rate = file.pictures / file.seconds;
    QVERIFY2(rate > 20 && rate < 30, qPrintable(QString::number(rate)));
}

void TestDeskRecordingsSources::aSourceWhosePidsChangeGoesOn()
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(m_changing), int(KVR_RECORD_DONE), patience);
    const RecordedFile file("/mnt/stb/both.ts");
    QCOMPARE(file.pids, TestMedia::barsPids());
    QVERIFY2(file.pictures > (barsSeconds + 1) * 25, qPrintable(QString::number(file.pictures)));
}

void TestDeskRecordingsSources::theSchemeMayHaveCapitalLetters_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < std::size(capitalSchemes); ++i)
        QTest::newRow(capitalSchemes[i]) << int(i);
}

void TestDeskRecordingsSources::theSchemeMayHaveCapitalLetters()
{
    QFETCH(int, index);
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(m_capitals[index]), int(KVR_RECORD_DONE), patience);
    const RecordedFile file(QString("/mnt/stb/%1.ts").arg(capitalSchemes[index]));
    QCOMPARE(file.pids, TestMedia::barsPids());
    QVERIFY2(file.pictures > 25, qPrintable(QString::number(file.pictures)));
}

QTEST_GUILESS_MAIN(TestDeskRecordingsSources)
#include "tst_deskrecordingssources.moc"
