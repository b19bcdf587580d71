// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "LiveSource.h"
#include "OpenFiles.h"
#include "RecordedFile.h"
#include "TestMedia.h"

#include "launcher/PageServer.h"

#include "tests/support/BoxFile.h"
#include "tests/support/HttpServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr char web[] = "/mnt/stb/web";
constexpr char bars[] = "/mnt/stb/web/bars.ts";
constexpr int barsSeconds = 5;
constexpr int patience = 20000; // milliseconds, for a recording of some seconds

uint32_t now()
{
    return static_cast<uint32_t>(std::time(nullptr));
}

QString inStorage(const QByteArray &name)
{
    return "/mnt/stb/" + QString::fromUtf8(name);
}

// "identifier file duration state", one a line.
QByteArray list()
{
    KVR_Record *records = nullptr;
    int count = 0;
    if (KVR_GetRecordsList(&records, &count) != KVR_OK)
        return "failed";
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray::number(records[i].id) + ' ' + QByteArray(records[i].file) + ' '
            + QByteArray::number(records[i].duration) + ' ' + QByteArray::number(records[i].state) + '\n';
    free(records);
    return text;
}

// A stream on a multicast group of its own, for a test's lifetime.
struct Channel
{
    Channel()
        : address(QString("udp://239.255.77.3:%1?localaddr=127.0.0.1").arg(freeUdpPort()).toUtf8())
        , source(bars, "mpegts", address + "&pkt_size=1316")
    {
    }

    const QByteArray address;
    LiveSource source;
};

} // namespace

/// Recordings of the desk box, while it is on.
class TestDeskRecordings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void aRecordingRunsAtItsTime();
    void aRecordingWhoseTimeHasBegunStartsAtOnce();
    void aRecordingIsPlayedWhileItRuns();
    void recordingsRunSideBySide();
    void aScheduledRecordingCanBeChanged();
    void aRunningRecordingCanChangeItsDurationOnly();
    void wrongArgumentsAreRefused();
    void longTextsAreCutOffInTheList();
    void deletingStopsARecordingAndKeepsItsFile();
    void cleaningUpRemovesTheFilesOfThoseThatFailed();
    void aFileThatIsAnothersByNowIsKept_data();
    void aFileThatIsAnothersByNowIsKept();
    void theSharedCallbackHearsOfRecordings();
    void noCallWaitsForARecording();
};

void TestDeskRecordings::initTestCase()
{
    for (const char *proxy : {"http_proxy", "HTTP_PROXY", "all_proxy"})
        qunsetenv(proxy);
    QVERIFY(QDir().mkpath(web));
    QVERIFY(TestMedia::makeBars(bars, barsSeconds));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0", "-c", "copy", QString(web) + "/bars.mp4"}));
}

void TestDeskRecordings::cleanup()
{
    KVR_Record *records = nullptr;
    int count = 0;
    QCOMPARE(KVR_GetRecordsList(&records, &count), int(KVR_OK));
    for (int i = 0; i < count; ++i)
        KVR_DeleteRecord(records[i].id);
    free(records);
    QDir storage("/mnt/stb");
    const QStringList files = storage.entryList(QDir::Files | QDir::System);
    for (const QString &file : files)
        storage.remove(file);
}

void TestDeskRecordings::aRecordingRunsAtItsTime()
{
    const Channel channel;
    const DeskEvents events(KVR_BOX);
    const uint32_t start = now() + 2;
    const KVR_ID id = KVR_AddRecord(channel.address, "evening.ts", start, 3);
    QVERIFY(id >= 0);
    QCOMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_SCHEDULED));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 1);
    QVERIFY(!QFile::exists("/mnt/stb/evening.ts"));

    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 2);
    QVERIFY(now() >= start && now() <= start + 1);
    QCOMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_RUNNING));
    QVERIFY(QFile::exists("/mnt/stb/evening.ts"));

    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 3);
    QVERIFY(now() >= start + 3 && now() <= start + 4);
    QCOMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_DONE));
    const QList<DeskEvents::Event> all = DeskEvents::of(KVR_EVENT_RECORDS);
    for (const DeskEvents::Event &event : all)
        QCOMPARE(event.argument, id);

    const RecordedFile file("/mnt/stb/evening.ts");
    QCOMPARE(file.format, QString("mpegts"));
    QCOMPARE(file.pids, TestMedia::barsPids());
    // It begins with what arrives first, and that may be in the middle of a second.
    QVERIFY2(file.seconds > 1.2 && file.seconds < 4, qPrintable(QString::number(file.seconds)));
}

void TestDeskRecordings::aRecordingWhoseTimeHasBegunStartsAtOnce()
{
    const Channel channel;
    const KVR_ID id = KVR_AddRecord(channel.address, "/mnt/stb/films/of/today.ts", now() - 3600, 4);
    QTRY_COMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_RUNNING));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(id), int(KVR_RECORD_DONE), 20000);
    QCOMPARE(RecordedFile("/mnt/stb/films/of/today.ts").pids, TestMedia::barsPids());
}

void TestDeskRecordings::aRecordingIsPlayedWhileItRuns()
{
    constexpr char file[] = "/mnt/stb/running.ts";
    constexpr int length = 16; // seconds
    const Channel channel;
    const KVR_ID record = KVR_AddRecord(channel.address, file, now(), length);
    QTRY_VERIFY(QFile(file).size() > 300000);
    const KVR_ID player = KVR_CreatePlayer();
    KVR_PlayFile(player, file, 0, 0, 0, "", -1, -1, -1);
    QTRY_COMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_PLAYING));

    // The duration follows.
    const DeskEvents events(player);
    QElapsedTimer timer;
    timer.start();
    const long long before = KVR_GetDuration(player);
    QTRY_VERIFY(KVR_GetDuration(player) > before + 3000);
    QVERIFY(timer.elapsed() > 2000);
    const int told = DeskEvents::count(KVR_EVENT_METADATA);
    QVERIFY2(told > 2 && told <= timer.elapsed() / 500 + 1, qPrintable(QString::number(told)));

    // To now, where it goes on, and back.
    const long long end = KVR_GetDuration(player);
    QCOMPARE(KVR_SetPosition(player, LLONG_MAX), int(KVR_OK));
    QVERIFY(KVR_GetPosition(player) >= end);
    QTRY_VERIFY(KVR_GetPosition(player) > end + 1000);
    QCOMPARE(KVR_Pause(player), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_PAUSED));
    QCOMPARE(KVR_SetPosition(player, 1000), int(KVR_OK));
    const long long paused = KVR_GetDuration(player);
    QTRY_VERIFY(KVR_GetDuration(player) > paused + 1000);
    QVERIFY(KVR_GetPosition(player) >= 1000 && KVR_GetPosition(player) < 1100);
    QCOMPARE(KVR_Continue(player), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(player) > 1500);
    QCOMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_PLAYING));

    // Its end.
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(record), int(KVR_RECORD_DONE), patience);
    const RecordedFile recorded(file);
    QTRY_VERIFY2(qAbs(KVR_GetDuration(player) - recorded.seconds * 1000) < 500,
                 qPrintable(QString("%1 of %2 s").arg(KVR_GetDuration(player)).arg(recorded.seconds)));
    QCOMPARE(KVR_SetPosition(player, KVR_GetDuration(player) - 1000), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_ENDED));
    KVR_ClosePlayer(player);
}

void TestDeskRecordings::recordingsRunSideBySide()
{
    const Channel channel;
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    const KVR_ID player = KVR_CreatePlayer();
    KVR_PlayStream(player, channel.address, -1, -1, -1);
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(player), int(KVR_PLAYER_PLAYING), patience);

    const KVR_ID first = KVR_AddRecord(channel.address, "first.ts", 0, 5);
    const KVR_ID second = KVR_AddRecord(channel.address, "second.ts", now() + 1, 3);
    const KVR_ID third = KVR_AddRecord(server.address("bars.mp4").toEncoded(), "third.ts", now() + 1, 3);
    QTRY_VERIFY(KVR_GetRecordStatus(first) == KVR_RECORD_RUNNING && KVR_GetRecordStatus(second) == KVR_RECORD_RUNNING
                && KVR_GetRecordStatus(third) == KVR_RECORD_RUNNING);
    for (const KVR_ID id : {first, second, third})
        QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(id), int(KVR_RECORD_DONE), patience);
    QCOMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_PLAYING));
    KVR_ClosePlayer(player);
    for (const char *name : {"first.ts", "second.ts", "third.ts"}) {
        const RecordedFile file(inStorage(name));
        QVERIFY2(file.seconds > 1.2 && file.longestStep < 0.1, name);
        QCOMPARE(file.pids.size(), 3);
    }
}

void TestDeskRecordings::aScheduledRecordingCanBeChanged()
{
    const DeskEvents events(KVR_BOX);
    const KVR_ID id = KVR_AddRecord("udp://239.1.1.1:5000", "old.ts", now() + 3600, 60);
    QCOMPARE(KVR_SetRecordFilename(id, "new.ts"), int(KVR_OK));
    QCOMPARE(KVR_SetRecordUrl(id, "udp://239.1.1.2:5000"), int(KVR_OK));
    QCOMPARE(KVR_SetRecordDuration(id, 90), int(KVR_OK));
    QCOMPARE(KVR_SetRecordStartTime(id, 4294967295U), int(KVR_OK));
    QCOMPARE(KVR_GetRecordFilename(id), "new.ts");
    KVR_Record *records = nullptr;
    int count = 0;
    QCOMPARE(KVR_GetRecordsList(&records, &count), int(KVR_OK));
    const std::unique_ptr<KVR_Record, decltype(&free)> freed(records, free);
    QCOMPARE(count, 1);
    QCOMPARE(records[0].id, id);
    QCOMPARE(records[0].addr, "udp://239.1.1.2:5000");
    QCOMPARE(records[0].file, "new.ts");
    QCOMPARE(records[0].start, 4294967295U);
    QCOMPARE(records[0].duration, 90);
    QCOMPARE(records[0].state, int(KVR_RECORD_SCHEDULED));
    QCOMPARE(KVR_SetRecordStartTime(id, now()), int(KVR_OK));
    QTRY_COMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_RUNNING));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 2);
}

void TestDeskRecordings::aRunningRecordingCanChangeItsDurationOnly()
{
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    const KVR_ID id = KVR_AddRecord(server.address("bars.ts").toEncoded(), "running.ts", 0, 60);
    QTRY_COMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_RUNNING));
    QCOMPARE(KVR_SetRecordFilename(id, "other.ts"), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_SetRecordUrl(id, "udp://239.1.1.1:5000"), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_SetRecordStartTime(id, 0), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_SetRecordDuration(id, 2), int(KVR_OK));
    QTRY_COMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_DONE));
    QVERIFY(RecordedFile("/mnt/stb/running.ts").seconds < 3);
    QCOMPARE(KVR_SetRecordDuration(id, 60), int(KVR_ERR_INVALID_STATE));
}

void TestDeskRecordings::wrongArgumentsAreRefused()
{
    QCOMPARE(KVR_AddRecord(nullptr, "a.ts", 0, 1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_AddRecord("", "a.ts", 0, 1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_AddRecord("udp://239.1.1.1:5000", nullptr, 0, 1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_AddRecord("udp://239.1.1.1:5000", "a.ts", 0, 0), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_AddRecord("udp://239.1.1.1:5000", "a.ts", 0, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_GetRecordsList(nullptr, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(list(), QByteArray());

    const KVR_ID id = KVR_AddRecord("udp://239.1.1.1:5000", "a.ts", now() + 3600, 60);
    const QByteArray before = list();
    QCOMPARE(KVR_SetRecordDuration(id, 0), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetRecordUrl(id, ""), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetRecordUrl(id, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    for (const char *name : {"", "..", "../a.ts", "films/../../a.ts", "films/", "/a.ts", "/mnt/stb", "/mnt/stbs/a.ts"})
        QVERIFY2(KVR_SetRecordFilename(id, name) == KVR_ERR_INVALID_ARGUMENT, name);
    QCOMPARE(KVR_SetRecordFilename(id, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(list(), before);
    {
        const ErrorOutput log;
        QCOMPARE(KVR_SetRecordFilename(id, QByteArray("n/").repeated(9) + "a.ts"), int(KVR_ERR_INVALID_ARGUMENT));
        QCOMPARE(log.text().count("the file name has more than 8 folders\n"), 1);
    }
    QCOMPARE(list(), before);
    QCOMPARE(KVR_SetRecordFilename(id, QByteArray("n/").repeated(8) + "a.ts"), int(KVR_OK));

    const KVR_ID nobody = id + 1;
    QCOMPARE(KVR_GetRecordStatus(nobody), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_SetRecordStartTime(nobody, 0), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_SetRecordDuration(nobody, 1), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_SetRecordFilename(nobody, "a.ts"), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_SetRecordUrl(nobody, "udp://239.1.1.1:5000"), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_DeleteRecord(nobody), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetRecordFilename(nobody), "");
    QCOMPARE(KVR_GetRecordStatus(-1), int(KVR_ERR_INVALID_ID));
}

void TestDeskRecordings::longTextsAreCutOffInTheList()
{
    const QByteArray url = "udp://239.1.1.1:5000?" + QByteArray(500, 'u');
    const QByteArray name = QByteArray(500, 'n');
    const KVR_ID id = KVR_AddRecord(url, name, now() + 3600, 60);
    QCOMPARE(KVR_GetRecordFilename(id), name.constData());
    KVR_Record *records = nullptr;
    int count = 0;
    QCOMPARE(KVR_GetRecordsList(&records, &count), int(KVR_OK));
    const std::unique_ptr<KVR_Record, decltype(&free)> freed(records, free);
    QCOMPARE(count, 1);
    QCOMPARE(records[0].addr, url.left(127).constData());
    QCOMPARE(records[0].file, name.left(255).constData());
}

void TestDeskRecordings::deletingStopsARecordingAndKeepsItsFile()
{
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    const DeskEvents events(KVR_BOX);
    const KVR_ID id = KVR_AddRecord(server.address("bars.ts").toEncoded(), "deleted.ts", 0, 60);
    QTRY_VERIFY(QFile("/mnt/stb/deleted.ts").size() > 200000);
    QCOMPARE(KVR_DeleteRecord(id), int(KVR_OK));
    QCOMPARE(KVR_GetRecordStatus(id), int(KVR_ERR_INVALID_ID));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 3); // added, running, deleted
    QTRY_VERIFY(!isOpen("/mnt/stb/deleted.ts"));
    QVERIFY(RecordedFile("/mnt/stb/deleted.ts").pictures > 5);
    QCOMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 3);
}

void TestDeskRecordings::cleaningUpRemovesTheFilesOfThoseThatFailed()
{
    HttpServer server;
    server.serve("/garbage", HttpServer::Page{QByteArray("garbage\n").repeated(10000), "video/mp2t"});
    server.serve("/bars.ts", HttpServer::Page{boxFile(bars), "video/mp2t"});
    const KVR_ID failed = KVR_AddRecord(server.url("/garbage").toEncoded(), "films/failed.ts", 0, 60);
    const KVR_ID existing = KVR_AddRecord(server.url("/bars.ts").toEncoded(), "web/bars.ts", 0, 60);
    const KVR_ID done = KVR_AddRecord(server.url("/bars.ts").toEncoded(), "done.ts", 0, 2);
    const KVR_ID running = KVR_AddRecord(server.url("/bars.ts").toEncoded(), "running.ts", 0, 60);
    const KVR_ID scheduled = KVR_AddRecord(server.url("/bars.ts").toEncoded(), "later.ts", now() + 3600, 60);
    for (const KVR_ID id : {failed, existing})
        QTRY_COMPARE(KVR_GetRecordStatus(id), int(KVR_RECORD_FAILED));
    QTRY_COMPARE(KVR_GetRecordStatus(done), int(KVR_RECORD_DONE));
    const DeskEvents events(KVR_BOX);
    QCOMPARE(KVR_CleanUpRecords(), int(KVR_OK));
    for (const KVR_ID id : {failed, existing, done})
        QCOMPARE(KVR_GetRecordStatus(id), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetRecordStatus(running), int(KVR_RECORD_RUNNING));
    QCOMPARE(KVR_GetRecordStatus(scheduled), int(KVR_RECORD_SCHEDULED));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 3);
    QVERIFY(!QFile::exists("/mnt/stb/films/failed.ts"));
    QVERIFY(QFile::exists(bars));
    QVERIFY(QFile::exists("/mnt/stb/done.ts"));
    QVERIFY(QFile::exists("/mnt/stb/running.ts"));
}

void TestDeskRecordings::aFileThatIsAnothersByNowIsKept_data()
{
    QTest::addColumn<bool>("isForgotten");
    QTest::newRow("the other is in the list") << false;
    QTest::newRow("the other is forgotten") << true;
}

void TestDeskRecordings::aFileThatIsAnothersByNowIsKept()
{
    QFETCH(bool, isForgotten);
    HttpServer server;
    server.serve("/garbage", HttpServer::Page{QByteArray("garbage\n").repeated(10000), "video/mp2t"});
    server.serve("/bars.ts", HttpServer::Page{boxFile(bars), "video/mp2t"});
    const KVR_ID failed = KVR_AddRecord(server.url("/garbage").toEncoded(), "name.ts", 0, 60);
    QTRY_COMPARE(KVR_GetRecordStatus(failed), int(KVR_RECORD_FAILED));
    QVERIFY(QFile::remove("/mnt/stb/name.ts"));
    const KVR_ID done = KVR_AddRecord(server.url("/bars.ts").toEncoded(), "/mnt/stb/name.ts", 0, 2);
    QTRY_COMPARE(KVR_GetRecordStatus(done), int(KVR_RECORD_DONE));
    if (isForgotten)
        QCOMPARE(KVR_DeleteRecord(done), int(KVR_OK));
    QCOMPARE(KVR_CleanUpRecords(), int(KVR_OK));
    QVERIFY(QFile::exists("/mnt/stb/name.ts"));
}

void TestDeskRecordings::theSharedCallbackHearsOfRecordings()
{
    static std::atomic<int> heard;
    heard = -1;
    const auto hear = [](int id) {
        heard = id;
        return 0;
    };
    QCOMPARE(KVR_SetRecordsSharedCallback(nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetRecordsSharedCallback([](int) { return 0; }), int(KVR_OK));
    QCOMPARE(KVR_SetRecordsSharedCallback(hear), int(KVR_OK));
    const KVR_ID id = KVR_AddRecord("udp://239.1.1.1:5000", "a.ts", now() + 3600, 60);
    QTRY_COMPARE(int(heard), id);
    QCOMPARE(KVR_CleanRecordsSharedCallback(), int(KVR_OK));
    heard = -1;
    const DeskEvents events(KVR_BOX);
    KVR_DeleteRecord(id);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 1);
    QCOMPARE(int(heard), -1);
}

void TestDeskRecordings::noCallWaitsForARecording()
{
    HttpServer silent;
    silent.fallSilent();
    PageServer server;
    QString error;
    QVERIFY2(server.start(web, 0, &error), qPrintable(error));
    for (int i = 0; i < 4; ++i) {
        KVR_AddRecord(silent.url("/a.ts").toEncoded(), QByteArray("silent%1.ts").replace("%1", QByteArray::number(i)),
                      0, 60);
        KVR_AddRecord(server.address("bars.ts").toEncoded(),
                      QByteArray("running%1.ts").replace("%1", QByteArray::number(i)), 0, 60);
    }
    std::vector<double> times;
    QElapsedTimer total;
    total.start();
    while (total.elapsed() < 2000 || times.size() < 400) {
        KVR_ID id = -1;
        const std::array<std::function<void()>, 4> calls = {
            [&] { id = KVR_AddRecord("udp://127.0.0.1:45455", "new.ts", now() + 3600, 60); },
            [&] { KVR_SetRecordDuration(id, 61); },
            [&] { list(); },
            [&] { KVR_DeleteRecord(id); },
        };
        for (const auto &call : calls) {
            QElapsedTimer timer;
            timer.start();
            call();
            times.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
        QTest::qWait(5);
    }
    std::sort(times.begin(), times.end());
    const double worst = times[times.size() * 99 / 100];
    QVERIFY2(worst <= 20, qPrintable(QString("99th percentile %1 ms").arg(worst)));
}

QTEST_GUILESS_MAIN(TestDeskRecordings)

#include "tst_deskrecordings.moc"
