// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "tests/support/BoxFile.h"
#include "tests/support/FileSizeLimit.h"

#include <QTest>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <sqlite3.h>

namespace {

constexpr char schedule[] = "/home/user/config/records.sqlite";
constexpr char url[] = "udp://239.1.1.1:5000";

uint32_t later()
{
    return static_cast<uint32_t>(std::time(nullptr)) + 3600;
}

// Another program that has the schedule open.
class OtherProgram
{
public:
    OtherProgram() { sqlite3_open(schedule, &m_database); }
    ~OtherProgram() { sqlite3_close(m_database); }
    OtherProgram(const OtherProgram &) = delete;
    OtherProgram &operator=(const OtherProgram &) = delete;

    bool execute(const char *statement)
    {
        return sqlite3_exec(m_database, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
    }

    // "file duration state" of each recording, one a line.
    QByteArray content()
    {
        QByteArray text;
        sqlite3_stmt *query = nullptr;
        sqlite3_prepare_v2(m_database, "SELECT file || ' ' || duration || ' ' || state FROM records ORDER BY id", -1,
                           &query, nullptr);
        while (sqlite3_step(query) == SQLITE_ROW)
            text += QByteArray(reinterpret_cast<const char *>(sqlite3_column_text(query, 0))) + '\n';
        sqlite3_finalize(query);
        return text;
    }

private:
    sqlite3 *m_database = nullptr;
};

// The same as the box tells it.
QByteArray list()
{
    KVR_Record *records = nullptr;
    int count = 0;
    if (KVR_GetRecordsList(&records, &count) != KVR_OK)
        return "failed";
    const std::unique_ptr<KVR_Record, decltype(&std::free)> freed(records, std::free);
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray(records[i].file) + ' ' + QByteArray::number(records[i].duration) + ' '
            + QByteArray::number(records[i].state) + '\n';
    return text;
}

} // namespace

/// Recordings while another program has the schedule's database open, and mostly locked, so that nothing can be
/// written.
class TestDeskRecordingsLocked : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void noCallWaitsForTheLock();
    void whatWasOrderedIsWrittenAfterIt();
    void whatIsRefusedAfterItHasFailed();
    void whatIsWrittenDoesNotPileUpBesideTheDatabase();

private:
    KVR_ID m_kept = -1;
    KVR_ID m_removed = -1;
};

void TestDeskRecordingsLocked::init()
{
    m_kept = KVR_AddRecord(url, "kept.ts", later(), 60);
    m_removed = KVR_AddRecord(url, "removed.ts", later(), 60);
    QTRY_COMPARE(OtherProgram().content(), QByteArray("kept.ts 60 0\nremoved.ts 60 0\n"));
}

void TestDeskRecordingsLocked::cleanup()
{
    KVR_Record *records = nullptr;
    int count = 0;
    QCOMPARE(KVR_GetRecordsList(&records, &count), int(KVR_OK));
    const std::unique_ptr<KVR_Record, decltype(&std::free)> freed(records, std::free);
    for (int i = 0; i < count; ++i)
        KVR_DeleteRecord(records[i].id);
    QTRY_COMPARE(OtherProgram().content(), QByteArray());
}

// The lock is held until the test releases it: a call that waited for it would not return.
void TestDeskRecordingsLocked::noCallWaitsForTheLock()
{
    OtherProgram other;
    QVERIFY(other.execute("BEGIN EXCLUSIVE"));
    const ErrorOutput log;
    const DeskEvents events(KVR_BOX);
    const KVR_ID added = KVR_AddRecord(url, "added.ts", later(), 60);
    QVERIFY(added > m_removed);
    QCOMPARE(KVR_SetRecordDuration(m_kept, 61), int(KVR_OK));
    QCOMPARE(KVR_SetRecordStartTime(m_kept, later()), int(KVR_OK));
    QCOMPARE(KVR_SetRecordUrl(added, "udp://239.1.1.2:5000"), int(KVR_OK));
    QCOMPARE(KVR_SetRecordFilename(added, "renamed.ts"), int(KVR_OK));
    QCOMPARE(KVR_DeleteRecord(m_removed), int(KVR_OK));
    QCOMPARE(KVR_CleanUpRecords(), int(KVR_OK));
    QCOMPARE(list(), QByteArray("kept.ts 61 0\nrenamed.ts 60 0\n"));
    QCOMPARE(KVR_GetRecordStatus(added), int(KVR_RECORD_SCHEDULED));
    QCOMPARE(KVR_GetRecordStatus(m_removed), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetRecordFilename(added), "renamed.ts");
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 2);
    // Nobody had given up yet.
    QCOMPARE(log.text(), QString());
    QCOMPARE(OtherProgram().content(), QByteArray("kept.ts 60 0\nremoved.ts 60 0\n"));
    QVERIFY(other.execute("ROLLBACK"));
}

void TestDeskRecordingsLocked::whatWasOrderedIsWrittenAfterIt()
{
    OtherProgram other;
    QVERIFY(other.execute("BEGIN EXCLUSIVE"));
    const ErrorOutput log;
    QVERIFY(KVR_AddRecord(url, "added.ts", later(), 60) > m_removed);
    QCOMPARE(KVR_SetRecordDuration(m_kept, 61), int(KVR_OK));
    QCOMPARE(KVR_DeleteRecord(m_removed), int(KVR_OK));
    // It is tried again also when the lock lasts longer than a write waits for it.
    QTRY_VERIFY_WITH_TIMEOUT(log.text().contains("database is locked"), 30000);
    QCOMPARE(list(), QByteArray("kept.ts 61 0\nadded.ts 60 0\n"));
    QVERIFY(other.execute("ROLLBACK"));
    QTRY_COMPARE_WITH_TIMEOUT(other.content(), list(), 30000);
    QCOMPARE(log.text().count("recording schedule "), 1);
}

void TestDeskRecordingsLocked::whatIsRefusedAfterItHasFailed()
{
    OtherProgram other;
    QVERIFY(other.execute("BEGIN EXCLUSIVE"));
    const ErrorOutput log;
    const KVR_ID added = KVR_AddRecord(url, "added.ts", later(), 60);
    QVERIFY(added > m_removed);
    QCOMPARE(KVR_SetRecordDuration(m_kept, 61), int(KVR_OK));
    const DeskEvents events(KVR_BOX);
    {
        const FileSizeLimit limit(2000); // the log is shorter
        QVERIFY(other.execute("ROLLBACK"));
        QTRY_COMPARE_WITH_TIMEOUT(KVR_GetRecordStatus(added), int(KVR_RECORD_FAILED), 30000);
        QTRY_COMPARE(DeskEvents::count(KVR_EVENT_RECORDS), 1);
        QCOMPARE(DeskEvents::of(KVR_EVENT_RECORDS).constFirst().argument, added);
    }
    QVERIFY2(log.text().contains("into added.ts failed: the recording schedule cannot be written"),
             qPrintable(log.text()));
    // What was in the schedule before is still to be recorded, and as it was ordered.
    QCOMPARE(list(), QByteArray("kept.ts 61 0\nremoved.ts 60 0\nadded.ts 60 3\n"));
    QTRY_COMPARE_WITH_TIMEOUT(other.content(), list(), 30000);
}

void TestDeskRecordingsLocked::whatIsWrittenDoesNotPileUpBesideTheDatabase()
{
    QCOMPARE(KVR_SetRecordFilename(m_kept, "brought-in.ts"), int(KVR_OK));
    QVERIFY(!boxFile(schedule).contains("brought-in.ts"));
    for (int i = 1; i <= 2000; ++i)
        QCOMPARE(KVR_SetRecordDuration(m_kept, i), int(KVR_OK));
    QTRY_VERIFY(boxFile(schedule).contains("brought-in.ts"));
}

QTEST_GUILESS_MAIN(TestDeskRecordingsLocked)

#include "tst_deskrecordingslocked.moc"
