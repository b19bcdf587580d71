// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/RecordClock.h"

#include <QTest>

#include <map>
#include <vector>

using Desk::Record;
using Milliseconds = std::chrono::milliseconds;

namespace {

constexpr std::int64_t noon = 1773000000; // seconds since 1970, as any
constexpr int hour = 3600;

// The time of day, so many milliseconds after noon.
std::chrono::system_clock::time_point after(qint64 milliseconds)
{
    return std::chrono::system_clock::time_point(std::chrono::seconds(noon) + Milliseconds(milliseconds));
}

Record record(KVR_ID id, KVR_RecordState state, std::int64_t begin, int duration)
{
    Record record;
    record.id = id;
    record.state = state;
    record.begin = noon + begin;
    record.duration = duration;
    return record;
}

QList<KVR_ID> listOf(const std::vector<KVR_ID> &ids)
{
    return QList<KVR_ID>(ids.begin(), ids.end());
}

using Ids = QList<KVR_ID>;
using Records = std::vector<Record>;

struct Row
{
    const char *name;
    Records records;
    qint64 now; // milliseconds after noon
    Ids begin;
    Ids end;
    Ids missed;
    qint64 next; // milliseconds
};

constexpr auto scheduled = KVR_RECORD_SCHEDULED;
constexpr auto running = KVR_RECORD_RUNNING;

const std::vector<Row> &rows()
{
    static const std::vector<Row> rows = {
        {"nothing", {}, 0, {}, {}, {}, 1000},
        {"long before", {record(1, scheduled, hour, 60)}, 0, {}, {}, {}, 1000},
        {"a second before", {record(1, scheduled, 1, 60)}, 0, {}, {}, {}, 1000},
        {"less before", {record(1, scheduled, 1, 60)}, 300, {}, {}, {}, 700},
        {"a millisecond before", {record(1, scheduled, 1, 60)}, 999, {}, {}, {}, 1},
        {"at the second", {record(1, scheduled, 1, 60)}, 1000, {1}, {}, {}, 1000},
        {"within the second", {record(1, scheduled, 1, 60)}, 1999, {1}, {}, {}, 1000},
        {"start in the past", {record(1, scheduled, -hour, 2 * hour)}, 0, {1}, {}, {}, 1000},
        {"the last second", {record(1, scheduled, -60, 61)}, 250, {1}, {}, {}, 750},
        {"over at this second", {record(1, scheduled, -60, 60)}, 0, {}, {}, {1}, 1000},
        {"over for long", {record(1, scheduled, -hour, 60)}, 0, {}, {}, {1}, 1000},
        {"running", {record(1, running, -60, hour)}, 0, {}, {}, {}, 1000},
        {"less before the end", {record(1, running, -60, 61)}, 400, {}, {}, {}, 600},
        {"at the end", {record(1, running, -60, 60)}, 0, {}, {1}, {}, 1000},
        {"behind the end", {record(1, running, -hour, 60)}, 0, {}, {1}, {}, 1000},
        {"those that have ended",
         {record(1, KVR_RECORD_DONE, -60, hour), record(2, KVR_RECORD_FAILED, -60, hour),
          record(3, KVR_RECORD_INTERRUPTED, 0, 1), record(4, KVR_RECORD_DONE, -60, 60)},
         500,
         {},
         {},
         {},
         1000},
        {"several at once",
         {record(1, scheduled, 0, 60), record(2, scheduled, 0, 60), record(3, running, -5, 5),
          record(4, running, -9, 9), record(5, scheduled, -9, 9), record(6, scheduled, hour, 60)},
         0,
         {1, 2},
         {3, 4},
         {5},
         1000},
        {"the nearest of several",
         {record(1, scheduled, 1, 60), record(2, running, -9, 10), record(3, scheduled, 2, 60)},
         600,
         {},
         {},
         {},
         400},
        {"the clock was set forward over a start", {record(1, scheduled, 0, hour)}, 60000, {1}, {}, {}, 1000},
        {"the clock was set forward over a whole one", {record(1, scheduled, 0, 60)}, 60000, {}, {}, {1}, 1000},
        {"the clock was set forward over an end", {record(1, running, 0, 60)}, 3600000, {}, {1}, {}, 1000},
        {"the clock was set back before a start", {record(1, scheduled, 0, 60)}, -3600000, {}, {}, {}, 1000},
        {"the clock was set back in the middle", {record(1, running, 0, 60)}, -3600000, {}, {}, {}, 1000},
        {"the latest start there is", {record(1, scheduled, 4294967295 - noon, 2147483647)}, 0, {}, {}, {}, 1000},
    };
    return rows;
}

} // namespace

/// When recordings begin and end.
class TestRecordClock : public QObject
{
    Q_OBJECT

private slots:
    void whatIsDueFollowsTheClock_data();
    void whatIsDueFollowsTheClock();
    void whatHappensWhileTheBoxIsOff_data();
    void whatHappensWhileTheBoxIsOff();
};

void TestRecordClock::whatIsDueFollowsTheClock_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < rows().size(); ++i)
        QTest::newRow(rows()[i].name) << int(i);
}

void TestRecordClock::whatIsDueFollowsTheClock()
{
    QFETCH(const int, index);
    const Row &row = rows()[std::size_t(index)];
    std::map<KVR_ID, Record> records;
    for (const Record &each : row.records)
        records[each.id] = each;
    const Desk::DueRecords due = Desk::dueAt(after(row.now), records);
    QCOMPARE(listOf(due.begin), row.begin);
    QCOMPARE(listOf(due.end), row.end);
    QCOMPARE(listOf(due.missed), row.missed);
    QCOMPARE(qint64(due.next.count()), row.next);
}

void TestRecordClock::whatHappensWhileTheBoxIsOff_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("begin"); // seconds after noon
    QTest::addColumn<int>("after");
    QTest::addColumn<QString>("fate");
    const QString missed = "failed: the box was off at its time";
    const QString interrupted = "was interrupted: the box went off";
    QTest::newRow("to come") << int(scheduled) << hour << int(scheduled) << QString();
    QTest::newRow("in its time") << int(scheduled) << -30 << int(scheduled) << QString();
    QTest::newRow("in its last second") << int(scheduled) << -59 << int(scheduled) << QString();
    QTest::newRow("over") << int(scheduled) << -60 << int(KVR_RECORD_FAILED) << missed;
    QTest::newRow("ran") << int(running) << -30 << int(KVR_RECORD_INTERRUPTED) << interrupted;
    QTest::newRow("ran, and would be over") << int(running) << -hour << int(KVR_RECORD_INTERRUPTED) << interrupted;
    QTest::newRow("done") << int(KVR_RECORD_DONE) << -hour << int(KVR_RECORD_DONE) << QString();
    QTest::newRow("failed") << int(KVR_RECORD_FAILED) << -hour << int(KVR_RECORD_FAILED) << QString();
}

void TestRecordClock::whatHappensWhileTheBoxIsOff()
{
    QFETCH(const int, before);
    QFETCH(const int, begin);
    QFETCH(const int, after);
    QFETCH(const QString, fate);
    Record kept = record(1, KVR_RecordState(before), begin, 60);
    QCOMPARE(QString::fromStdString(Desk::fateWhileOff(kept, ::after(0))), fate);
    QCOMPARE(int(kept.state), after);
}

QTEST_GUILESS_MAIN(TestRecordClock)

#include "tst_recordclock.moc"
