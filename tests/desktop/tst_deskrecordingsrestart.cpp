// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordedFile.h"
#include "TestMedia.h"
#include "tests/support/BoxFile.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OddFile.h"

#include "launcher/PageServer.h"

#include "platform/stbapi.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>

namespace {

constexpr char web[] = "/mnt/stb/web";
constexpr char bars[] = "/mnt/stb/web/bars.ts";
constexpr char schedule[] = "/home/user/config/records.sqlite";
constexpr char listRecords[] = "list";
constexpr char addRecord[] = "add";
constexpr char editRecords[] = "edit";
constexpr char recordOnFullDisk[] = "full";
constexpr char callNothing[] = "idle";

uint32_t now()
{
    return static_cast<uint32_t>(std::time(nullptr));
}

QByteArray list()
{
    KVR_Record *records = nullptr;
    int count = 0;
    if (KVR_GetRecordsList(&records, &count) != KVR_OK)
        return "failed\n";
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const KVR_Record &record = records[i];
        for (const QByteArray &column :
             {QByteArray::number(record.id), QByteArray(record.addr), QByteArray(record.file),
              QByteArray::number(record.start), QByteArray::number(record.duration), QByteArray::number(record.state)})
            text += column + ' ';
        text += '\n';
    }
    free(records);
    return text;
}

void tell(const QByteArray &text)
{
    std::fputs(text.constData(), stdout);
    std::fflush(stdout);
}

// Tells what it is given and goes on until it is killed.
int tellForever(const QByteArray &first)
{
    tell(first);
    for (;;)
        QTest::qSleep(1000);
}

int edit()
{
    const uint32_t later = now() + 100000;
    const KVR_ID first = KVR_AddRecord("udp://239.1.1.1:5000", "films/фильм.ts", later, 60);
    const KVR_ID second = KVR_AddRecord("http://example.invalid/a?b=c&d='e'", "second.ts", 4294967295U, 2147483647);
    const KVR_ID third = KVR_AddRecord("udp://239.1.1.3:5000", "third.ts", later, 60);
    KVR_SetRecordStartTime(first, later + 1);
    KVR_SetRecordDuration(first, 61);
    KVR_SetRecordFilename(second, "renamed.ts");
    KVR_SetRecordUrl(second, "udp://239.1.1.2:5000");
    KVR_DeleteRecord(third);
    return tellForever(list());
}

// Recordings that begin and are to be deleted while nothing can be written, which then changes. One is deleted before
// its state is written.
int recordWithoutRoom(const char *url)
{
    const KVR_ID gone = KVR_AddRecord(url, "gone.ts", 0, 60);
    const KVR_ID id = KVR_AddRecord(url, "full.ts", 0, 60);
    {
        const FileSizeLimit limit(0);
        while (KVR_GetRecordStatus(gone) != KVR_RECORD_FAILED || KVR_GetRecordStatus(id) != KVR_RECORD_FAILED)
            QTest::qSleep(10);
        if (KVR_DeleteRecord(id) != KVR_ERR_FAILED || KVR_CleanUpRecords() != KVR_ERR_FAILED)
            return 1;
        QTest::qSleep(50); // so that the last attempt to write is over
    }
    if (KVR_DeleteRecord(gone) != KVR_OK)
        return 1;
    QTest::qSleep(2500);
    return tellForever(list());
}

// The desk box in a process of its own.
class Box
{
public:
    explicit Box(const QStringList &arguments) { m_process.start(QCoreApplication::applicationFilePath(), arguments); }

    QByteArray firstWords()
    {
        if (!m_process.waitForReadyRead(60000))
            qWarning() << m_process.arguments() << m_process.errorString() << log();
        return m_process.readAllStandardOutput();
    }

    QByteArray allWords()
    {
        if (!m_process.waitForFinished(60000) || m_process.exitStatus() != QProcess::NormalExit)
            qWarning() << m_process.arguments() << m_process.errorString() << log();
        return m_process.readAllStandardOutput();
    }

    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    QByteArray log() { return m_process.readAllStandardError(); }

private:
    QProcess m_process;
};

} // namespace

Q_DECLARE_METATYPE(std::optional<OddFile::Kind>)

/// Recordings of the desk box over its restarts. Each box is a process of its own.
class TestDeskRecordingsRestart : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void theScheduleSurvivesAKill();
    void whatWasRecordedBeforeAKillPlays();
    void aRecordingIsInterruptedWhenTheBoxIsLeft();
    void aBoxThatIsBackInTimeRecordsTheRest_data();
    void aBoxThatIsBackInTimeRecordsTheRest();
    void aRecordingThatTheBoxSleptThroughHasFailed();
    void whatAFullDiskDoesNotTakeIsWrittenLater();
    void aScheduleThatCannotBeReadSaysSo_data();
    void aScheduleThatCannotBeReadSaysSo();

private:
    PageServer m_server;
};

void TestDeskRecordingsRestart::initTestCase()
{
    QVERIFY(QDir().mkpath(web));
    QVERIFY(TestMedia::makeBars(bars, 10));
    QString error;
    QVERIFY2(m_server.start(web, 0, &error), qPrintable(error));
}

void TestDeskRecordingsRestart::init()
{
    for (const char *suffix : {"", "-wal", "-shm"})
        QFile::remove(QString(schedule) + suffix);
}

void TestDeskRecordingsRestart::theScheduleSurvivesAKill()
{
    Box first({editRecords});
    const QByteArray before = first.firstWords();
    QCOMPARE(before.count('\n'), 2);
    QVERIFY(before.contains(" udp://239.1.1.1:5000 films/фильм.ts "));
    QVERIFY(before.contains(" udp://239.1.1.2:5000 renamed.ts 4294967295 2147483647 0 \n"));
    first.kill();
    QCOMPARE(Box({listRecords}).allWords(), before);

    // The identifier of what was deleted does not come back.
    const QByteArray url = "udp://239.1.1.4:5000";
    Box second({addRecord, url, "fourth.ts", QString::number(now() + 100000), "60"});
    QVERIFY(second.firstWords().contains("\n4 udp://239.1.1.4:5000 "));
    second.kill();
}

void TestDeskRecordingsRestart::whatWasRecordedBeforeAKillPlays()
{
    Box box({addRecord, m_server.address("bars.ts").toEncoded(), "killed.ts", "0", "60"});
    QVERIFY(!box.firstWords().isEmpty());
    QTRY_VERIFY(QFile("/mnt/stb/killed.ts").size() > 300000);
    box.kill();

    const RecordedFile file("/mnt/stb/killed.ts");
    QCOMPARE(file.pids, QList<int>({TestMedia::videoPid, TestMedia::russianPid, TestMedia::englishPid}));
    QVERIFY2(file.pictures > 20, qPrintable(QString::number(file.pictures)));
    QProcess decoder;
    decoder.start("ffprobe",
                  {"-v", "error", "-select_streams", "v", "-count_frames", "-show_entries", "stream=nb_read_frames",
                   "-of", "csv=p=0", "/mnt/stb/killed.ts"});
    QVERIFY(decoder.waitForFinished());
    QVERIFY(decoder.readAllStandardOutput().trimmed().split('\n').first().toInt() >= file.pictures - 2);

    const KVR_ID player = KVR_CreatePlayer();
    KVR_PlayFile(player, "/mnt/stb/killed.ts", 0, 0, 0, "", -1, -1, -1);
    QTRY_COMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_PLAYING));
    QTRY_COMPARE(KVR_GetPlayerState(player), int(KVR_PLAYER_ENDED));
    KVR_ClosePlayer(player);

    Box next({listRecords});
    QVERIFY(next.allWords().endsWith(" killed.ts 0 60 4 \n"));
    QVERIFY(next.log().contains("into killed.ts was interrupted: the box went off"));
}

void TestDeskRecordingsRestart::aRecordingIsInterruptedWhenTheBoxIsLeft()
{
    Box box({addRecord, m_server.address("bars.ts").toEncoded(), "left.ts", "0", "60", "leave"});
    QVERIFY(!box.allWords().isEmpty());
    QVERIFY(RecordedFile("/mnt/stb/left.ts").pictures > 5);
    QVERIFY(Box({listRecords}).allWords().endsWith(" left.ts 0 60 4 \n"));
}

void TestDeskRecordingsRestart::aBoxThatIsBackInTimeRecordsTheRest_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("without any call") << "rest.ts" << QStringList(callNothing);
    QTest::newRow("with other recordings")
        << "rest-too.ts"
        << QStringList{addRecord, "udp://127.0.0.1:45456", "other.ts", QString::number(now() + 100000), "1"};
}

void TestDeskRecordingsRestart::aBoxThatIsBackInTimeRecordsTheRest()
{
    QFETCH(QString, file);
    QFETCH(QStringList, arguments);
    const QString path = "/mnt/stb/" + file;
    const uint32_t start = now() + 4;
    Box first({addRecord, m_server.address("bars.ts").toEncoded(), file, QString::number(start), "5"});
    QVERIFY(first.firstWords().endsWith(" 5 0 \n"));
    first.kill();
    QTRY_VERIFY_WITH_TIMEOUT(now() >= start + 2, 20000);
    QVERIFY(!QFile::exists(path));
    Box second(arguments);
    QTRY_VERIFY_WITH_TIMEOUT(now() > start + 5, 20000);
    second.kill();
    const QByteArray expected = ' ' + file.toUtf8() + ' ' + QByteArray::number(start) + " 5 2 \n";
    const QByteArray words = Box({listRecords}).allWords();
    QVERIFY2(words.contains(expected), words);
    const RecordedFile recorded(path);
    QVERIFY2(recorded.seconds > 0.5 && recorded.seconds < 3.5, qPrintable(QString::number(recorded.seconds)));
}

void TestDeskRecordingsRestart::aRecordingThatTheBoxSleptThroughHasFailed()
{
    const uint32_t start = now() + 4;
    Box first({addRecord, m_server.address("bars.ts").toEncoded(), "slept.ts", QString::number(start), "1"});
    QVERIFY(!first.firstWords().isEmpty());
    first.kill();
    QTRY_VERIFY_WITH_TIMEOUT(now() >= start + 1, 20000);
    Box second({listRecords});
    const QByteArray words = second.allWords();
    QVERIFY2(words.endsWith(" 1 3 \n"), words);
    QVERIFY(second.log().contains("into slept.ts failed: the box was off at its time"));
    QVERIFY(!QFile::exists("/mnt/stb/slept.ts"));
}

void TestDeskRecordingsRestart::whatAFullDiskDoesNotTakeIsWrittenLater()
{
    Box box({recordOnFullDisk, m_server.address("bars.ts").toEncoded()});
    const QByteArray words = box.firstWords();
    QVERIFY2(words.endsWith(" full.ts 0 60 3 \n") && words.count('\n') == 1, words);
    QCOMPARE(box.log().count("recording schedule "), 1);
    box.kill();
    QVERIFY(Box({listRecords}).allWords().endsWith(" full.ts 0 60 3 \n"));
}

void TestDeskRecordingsRestart::aScheduleThatCannotBeReadSaysSo_data()
{
    QTest::addColumn<std::optional<OddFile::Kind>>("kind");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("a file of another kind")
        << std::optional<OddFile::Kind>()
        << QByteArray("stbapi: recording schedule /home/user/config/records.sqlite: ");
    for (const OddFile::Row &row : OddFile::all) {
        QTest::newRow(row.name) << std::make_optional(row.kind)
                                << QByteArray("stbapi: no recording schedule: /home/user/config/records.sqlite is ");
    }
}

void TestDeskRecordingsRestart::aScheduleThatCannotBeReadSaysSo()
{
    QFETCH(std::optional<OddFile::Kind>, kind);
    QFETCH(QByteArray, line);
    if (kind)
        QVERIFY(OddFile::put(schedule, *kind));
    else
        writeBoxFile(schedule, QByteArray("no schedule\n").repeated(1000));
    Box box({addRecord, "udp://127.0.0.1:45456", "new.ts", QString::number(now() + 1000), "1", "leave"});
    QCOMPARE(box.allWords(), QByteArray());
    const QByteArray log = box.log();
    QVERIFY2(log.contains(line), log);
    if (kind)
        QCOMPARE(log.count('\n'), 1);
    QDir().rmdir(schedule);
}

int main(int argc, char *argv[])
{
    const QByteArray role = argc > 1 ? argv[1] : "";
    if (role == listRecords) {
        tell(list());
        return 0;
    }
    if (role == editRecords)
        return edit();
    if (role == callNothing)
        return tellForever({});
    if (role == recordOnFullDisk && argc == 3)
        return recordWithoutRoom(argv[2]);
    if (role == addRecord && argc >= 6) {
        const KVR_ID id = KVR_AddRecord(argv[2], argv[3], static_cast<uint32_t>(std::strtoul(argv[4], nullptr, 10)),
                                        std::atoi(argv[5]));
        if (argc == 6)
            return tellForever(list());
        tell(list());
        QTest::qSleep(1500);
        return id < 0;
    }
    QCoreApplication application(argc, argv);
    TestDeskRecordingsRestart test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_deskrecordingsrestart.moc"
