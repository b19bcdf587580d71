// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptTable.h"

#include <QtTest>

#include <climits>

using RecordingPlatform::Answer;

namespace {

KVR_Record record(int id, const char *address, int duration, const char *file, uint32_t start, int state)
{
    KVR_Record record = {};
    record.id = id;
    record.reserved = 99;
    qstrncpy(record.addr, address, sizeof record.addr);
    record.duration = duration;
    qstrncpy(record.file, file, sizeof record.file);
    record.start = start;
    record.state = state;
    return record;
}

KVR_Record first()
{
    return record(1, "udp://239.1.1.1:1234", 3600, "a.ts", 1325376000, 0);
}

KVR_Record second()
{
    return record(INT_MIN, "\xe9%1\"", -1, "", 0, INT_MAX);
}

// Texts that fill their fields without a NUL.
KVR_Record full()
{
    KVR_Record record = {};
    memset(record.addr, 'a', sizeof record.addr);
    memset(record.file, 'f', sizeof record.file);
    record.duration = 0x41414141; // more letters
    return record;
}

const QVector<ScriptRow> &rows()
{
    static const QVector<ScriptRow> rows = {
        {"StbPVR.AddRecord('udp://239.1.1.1:1234', 'a.ts', new Date(Date.UTC(2012, 0, 1)), 3600)",
         "StbPVR.AddRecord(udp://239.1.1.1:1234, a.ts, 1325376000 ,3600)",
         "KVR_AddRecord(udp://239.1.1.1:1234, a.ts, 1325376000, 3600)", 7, "7", "recording", "", "QDateTime("},
        {"StbPVR.AddRecord('\u043f%2\"', '', new Date(0), -1)", "StbPVR.AddRecord(\u043f%2\", , 0 ,-1)",
         "KVR_AddRecord(\u043f%2\", , 0, -1)", -3, "-3", "recording with odd texts", "", "QDateTime("},
        {"StbPVR.AddRecord('u', 'f', new Date(NaN), 1)", "StbPVR.AddRecord(u, f, 4294967295 ,1)",
         "KVR_AddRecord(u, f, 4294967295, 1)", 0, "0", "recording at an invalid time", "", "QDateTime("},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()",
         Answer::array(QVector<KVR_Record>{first(), second()}),
         R"([{"addr":"udp://239.1.1.1:1234","duration":3600,"file":"a.ts","id":1,)"
         R"("start":"2012-01-01T00:00:00.000Z","state":0},)"
         "{\"addr\":\"\u00e9%1\\\"\",\"duration\":-1,\"file\":\"\",\"id\":-2147483648,"
         R"("start":"1970-01-01T00:00:00.000Z","state":2147483647}])",
         "list of two"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()",
         Answer::array(QVector<KVR_Record>{first(), second()}, -1, 1),
         R"([{"addr":"udp://239.1.1.1:1234","duration":3600,"file":"a.ts","id":1,)"
         R"("start":"2012-01-01T00:00:00.000Z","state":0}])",
         "list whose result is a failure"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()",
         Answer::array(QVector<KVR_Record>{full()}),
         R"([{"addr":")" + QByteArray(128, 'a') + R"(","duration":1094795585,"file":")" + QByteArray(256, 'f')
             + R"(","id":0,"start":"1970-01-01T00:00:00.000Z","state":0}])",
         "list of full fields"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()",
         Answer::array(QVector<KVR_Record>()), "[]", "empty list"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()",
         Answer::array(QVector<KVR_Record>(), KVR_OK, -1), "[]", "list of a negative count"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::nullArray(0), "[]",
         "list without an array"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::nullArray(3), "[]",
         "list of a count without an array"},
        {"StbPVR.GetRecordsList()", "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", -1, "[]",
         "list of a library that stores nothing"},
        {"StbPVR.GetRecordStatus(5)", "StbPVR.GetRecordStatus(5)", "KVR_GetRecordStatus(5)", 3, "3", "status"},
        {"StbPVR.SetRecordStartTime(5, new Date(1325376000000))", "StbPVR.SetRecordUrl(5, 1325376000)",
         "KVR_SetRecordStartTime(5, 1325376000)", -7, "-7", "start time"},
        {"StbPVR.SetRecordDuration(5, 3600)", "StbPVR.SetRecordUrl(5, 3600)", "KVR_SetRecordDuration(5, 3600)", -7,
         "-7", "duration"},
        {"StbPVR.SetRecordFilename(5, '\u0444 %1\"')", "StbPVR.SetRecordUrl(5, \u0444 %1\")",
         "KVR_SetRecordFilename(5, \u0444 %1\")", -7, "-7", "file name"},
        {"StbPVR.SetRecordUrl(-2147483648, '\u20ac%2')", "StbPVR.SetRecordUrl(-2147483648, \u20ac%2)",
         "KVR_SetRecordUrl(-2147483648, \u20ac%2)", -7, "-7", "address"},
        {"StbPVR.GetRecordFilename(2147483647)", "StbPVR.GetRecordFilename(2147483647)",
         "KVR_GetRecordFilename(2147483647)", Answer::text("a\xe9.ts"), "\"a\u00e9.ts\"", "file name asked"},
        {"StbPVR.GetRecordFilename(0)", "StbPVR.GetRecordFilename(0)", "KVR_GetRecordFilename(0)", Answer::text(""),
         "\"\"", "empty file name asked"},
        {"StbPVR.CleanUpRecords()", "StbPVR.CleanUpRecords()", "KVR_CleanUpRecords()", -7, "undefined", "cleaning up"},
        {"StbPVR.DeleteRecord(5)", "StbPVR.DeleteRecord(5)", "KVR_DeleteRecord(5)", -7, "-7", "deletion"},
        {"StbPVR.DeleteRecord()", "", "", 0,
         "throws SyntaxError: too few arguments in call to DeleteRecord(); candidates are\n    DeleteRecord(KVR_ID)",
         "too few arguments"},
    };
    return rows;
}

// Methods that answer what the platform answers.
bool passesThrough(const ScriptRow &row)
{
    return row.isNamed({"recording", "status", "start time", "duration", "file name", "address", "deletion"});
}

} // namespace

// StbPVR from a page's script, and the events of recordings.
class TestStbPvr : public ScriptTable
{
    Q_OBJECT

public:
    TestStbPvr()
        : ScriptTable("StbPVR", rows(), passesThrough)
    {
    }

private slots:
    void theStartOfARecordingIsShownBeforeThePlatformIsCalled();
    void listsHaveTheirKeysAndTypes();
    void aListsMemoryIsFreedOnce();
    void eventsReachThePage_data();
    void eventsReachThePage();
};

// Also without tracing, and else after the trace line.
void TestStbPvr::theStartOfARecordingIsShownBeforeThePlatformIsCalled()
{
    QFETCH_GLOBAL(const bool, tracing);
    QStringList linesInCall;
    RecordingPlatform::onCall("KVR_AddRecord", [&] { linesInCall = session().log().debugLines(); });
    session().run("StbPVR.AddRecord('u', 'f', new Date(0), 1)");
    QCOMPARE(linesInCall.size(), tracing ? 2 : 1);
    QVERIFY2(linesInCall.last().startsWith("QDateTime("), qPrintable(linesInCall.last()));
}

void TestStbPvr::listsHaveTheirKeysAndTypes()
{
    RecordingPlatform::answer("KVR_GetRecordsList", Answer::array(QVector<KVR_Record>{first()}));
    const char *const script =
        "var list = StbPVR.GetRecordsList();"
        "[list instanceof Array, Object.keys(list[0]).sort(), list[0].start instanceof Date, typeof list[0].id]";
    QCOMPARE(session().run(script).result,
             QString(R"([true,["addr","duration","file","id","start","state"],true,"number"])"));
}

void TestStbPvr::aListsMemoryIsFreedOnce()
{
    for (const Answer &answer :
         {Answer::array(QVector<KVR_Record>{first(), second()}), Answer::array(QVector<KVR_Record>()),
          Answer::array(QVector<KVR_Record>{first()}, -1)}) {
        const int before = RecordingPlatform::blocksHandedOut();
        RecordingPlatform::answer("KVR_GetRecordsList", answer);
        session().run("StbPVR.GetRecordsList()");
        QCOMPARE(RecordingPlatform::blocksHandedOut(), before + 1);
        QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
    }
}

void TestStbPvr::eventsReachThePage_data()
{
    QTest::addColumn<int>("value");
    for (const int value : {7, 0, -1, -128, INT_MAX, INT_MIN})
        QTest::addRow("%d", value) << value;
}

void TestStbPvr::eventsReachThePage()
{
    QFETCH(const int, value);
    session().run("var events = []; StbMedia.SetEventCallback(function () { events.push([].slice.call(arguments)); })");
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_RECORDS, value);
    QTRY_COMPARE(session().run("events").result, QString("[[%1,139]]").arg(value));
}

QTEST_MAIN(TestStbPvr)

#include "tst_stbpvr.moc"
