// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QtTest>

#include <climits>
#include <memory>

using RecordingPlatform::Answer;

namespace {

// What a page's script does, with tracing on. The call is the one to the platform, which gives the answer.
struct Row
{
    const char *name;
    const char *script;
    const char *trace;
    const char *call;
    Answer answer;
    QByteArray result; ///< as JSON
};

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

// clang-format off
const QVector<Row> &rows()
{
    static const QVector<Row> rows = {
        {"recording", "StbPVR.AddRecord('udp://239.1.1.1:1234', 'a.ts', new Date(Date.UTC(2012, 0, 1)), 3600)",
         "StbPVR.AddRecord(udp://239.1.1.1:1234, a.ts, 1325376000 ,3600)",
         "KVR_AddRecord(udp://239.1.1.1:1234, a.ts, 1325376000, 3600)", 7, "7"},
        {"recording with odd texts", "StbPVR.AddRecord('\u043f%2\"', '', new Date(0), -1)",
         "StbPVR.AddRecord(\u043f%2\", , 0 ,-1)", "KVR_AddRecord(\u043f%2\", , 0, -1)", -3, "-3"},
        {"recording at an invalid time", "StbPVR.AddRecord('u', 'f', new Date(NaN), 1)",
         "StbPVR.AddRecord(u, f, 4294967295 ,1)", "KVR_AddRecord(u, f, 4294967295, 1)", 0, "0"},
        {"list of two", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::array(QVector<KVR_Record> {first(), second()}),
         R"([{"addr":"udp://239.1.1.1:1234","duration":3600,"file":"a.ts","id":1,)"
         R"("start":"2012-01-01T00:00:00.000Z","state":0},)"
         "{\"addr\":\"\u00e9%1\\\"\",\"duration\":-1,\"file\":\"\",\"id\":-2147483648,"
         R"("start":"1970-01-01T00:00:00.000Z","state":2147483647}])"},
        {"list whose result is a failure", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::array(QVector<KVR_Record> {first(), second()}, -1, 1),
         R"([{"addr":"udp://239.1.1.1:1234","duration":3600,"file":"a.ts","id":1,)"
         R"("start":"2012-01-01T00:00:00.000Z","state":0}])"},
        {"list of full fields", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::array(QVector<KVR_Record> {full()}),
         R"([{"addr":")" + QByteArray(128, 'a') + R"(","duration":1094795585,"file":")" + QByteArray(256, 'f')
             + R"(","id":0,"start":"1970-01-01T00:00:00.000Z","state":0}])"},
        {"empty list", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::array(QVector<KVR_Record>()), "[]"},
        {"list of a negative count", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::array(QVector<KVR_Record>(), KVR_OK, -1), "[]"},
        {"list without an array", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::nullArray(0), "[]"},
        {"list of a count without an array", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", Answer::nullArray(3), "[]"},
        {"list of a library that stores nothing", "StbPVR.GetRecordsList()",
         "StbPVR.GetRecordsList()", "KVR_GetRecordsList()", -1, "[]"},
        {"status", "StbPVR.GetRecordStatus(5)",
         "StbPVR.GetRecordStatus(5)", "KVR_GetRecordStatus(5)", 3, "3"},
        {"start time", "StbPVR.SetRecordStartTime(5, new Date(1325376000000))",
         "StbPVR.SetRecordUrl(5, 1325376000)", "KVR_SetRecordStartTime(5, 1325376000)", -7, "-7"},
        {"duration", "StbPVR.SetRecordDuration(5, 3600)",
         "StbPVR.SetRecordUrl(5, 3600)", "KVR_SetRecordDuration(5, 3600)", -7, "-7"},
        {"file name", "StbPVR.SetRecordFilename(5, '\u0444 %1\"')",
         "StbPVR.SetRecordUrl(5, \u0444 %1\")", "KVR_SetRecordFilename(5, \u0444 %1\")", -7, "-7"},
        {"address", "StbPVR.SetRecordUrl(-2147483648, '\u20ac%2')",
         "StbPVR.SetRecordUrl(-2147483648, \u20ac%2)", "KVR_SetRecordUrl(-2147483648, \u20ac%2)", -7, "-7"},
        {"file name asked", "StbPVR.GetRecordFilename(2147483647)",
         "StbPVR.GetRecordFilename(2147483647)", "KVR_GetRecordFilename(2147483647)", Answer::text("a\xe9.ts"),
         "\"a\u00e9.ts\""},
        {"empty file name asked", "StbPVR.GetRecordFilename(0)",
         "StbPVR.GetRecordFilename(0)", "KVR_GetRecordFilename(0)", Answer::text(""), "\"\""},
        {"cleaning up", "StbPVR.CleanUpRecords()",
         "StbPVR.CleanUpRecords()", "KVR_CleanUpRecords()", -7, "undefined"},
        {"deletion", "StbPVR.DeleteRecord(5)",
         "StbPVR.DeleteRecord(5)", "KVR_DeleteRecord(5)", -7, "-7"},
        {"too few arguments", "StbPVR.DeleteRecord()", "", "", 0,
         "throws SyntaxError: too few arguments in call to DeleteRecord(); candidates are\n    DeleteRecord(KVR_ID)"},
    };
    return rows;
}
// clang-format on

// Methods that answer what the platform answers.
const char *const passingThrough[] = {"recording", "status",  "start time", "duration",
                                      "file name", "address", "deletion"};

const Row &rowOf(const char *name)
{
    return *std::find_if(rows().begin(), rows().end(), [name](const Row &row) { return qstrcmp(row.name, name) == 0; });
}

QByteArray functionOf(const Row &row)
{
    return QByteArray(row.call).split('(').first();
}

} // namespace

// StbPVR from a page's script, with tracing on and off, and the events of recordings.
class TestStbPvr : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();

    void scripts_data();
    void scripts();
    void answersPassThrough_data();
    void answersPassThrough();
    void listsHaveTheirKeysAndTypes();
    void aListsMemoryIsFreedOnce();
    void eventsReachThePage_data();
    void eventsReachThePage();
    void everyMethodHasARow();

private:
    std::unique_ptr<ScriptSession> m_session;
    bool m_tracing = false;
};

void TestStbPvr::initTestCase_data()
{
    QTest::addColumn<bool>("tracing");
    QTest::newRow("not traced") << false;
    QTest::newRow("traced") << true;
}

void TestStbPvr::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestStbPvr::init()
{
    QFETCH_GLOBAL(const bool, tracing);
    if (tracing != m_tracing)
        QVERIFY(m_session->setTracing(tracing));
    m_tracing = tracing;
    m_session->takeOutcome();
}

void TestStbPvr::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
    RecordingPlatform::reset();
}

void TestStbPvr::scripts_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < rows().size(); ++i)
        QTest::newRow(rows()[i].name) << i;
}

void TestStbPvr::scripts()
{
    QFETCH_GLOBAL(const bool, tracing);
    QFETCH(const int, index);
    const Row &row = rows()[index];
    QStringList messagesBefore;
    if (*row.call) {
        RecordingPlatform::answer(functionOf(row), row.answer);
        RecordingPlatform::onCall(functionOf(row), [&] { messagesBefore = m_session->log().debugLines(); });
    }
    const ScriptSession::Outcome outcome = m_session->run(row.script);
    QCOMPARE(outcome.result, QString(row.result));
    QCOMPARE(outcome.traces, tracing ? ScriptSession::quotedLines(row.trace) : QString());
    QCOMPARE(outcome.calls, QByteArray(row.call));
    // The start of a new recording is shown in any case, after the trace line and before the call.
    const int otherMessages = QByteArray(row.call).startsWith("KVR_AddRecord") ? 1 : 0;
    QCOMPARE(outcome.messages.size(), otherMessages);
    QCOMPARE(messagesBefore.size(), (tracing && *row.call ? 1 : 0) + otherMessages);
    if (otherMessages)
        QVERIFY2(messagesBefore.last().startsWith("QDateTime("), qPrintable(messagesBefore.last()));
}

void TestStbPvr::answersPassThrough_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("answer");
    for (const char *name : passingThrough) {
        for (const int answer : {0, 1, -1, -127, INT_MAX, INT_MIN})
            QTest::addRow("%s: %d", name, answer) << QByteArray(name) << answer;
    }
}

void TestStbPvr::answersPassThrough()
{
    QFETCH(const QByteArray, name);
    QFETCH(const int, answer);
    const Row &row = rowOf(name);
    RecordingPlatform::answer(functionOf(row), answer);
    QCOMPARE(m_session->run(row.script).result, QString::number(answer));
}

void TestStbPvr::listsHaveTheirKeysAndTypes()
{
    RecordingPlatform::answer("KVR_GetRecordsList", Answer::array(QVector<KVR_Record>{first()}));
    const char *const script =
        "var list = StbPVR.GetRecordsList();"
        "[list instanceof Array, Object.keys(list[0]).sort(), list[0].start instanceof Date, typeof list[0].id]";
    QCOMPARE(m_session->run(script).result,
             QString(R"([true,["addr","duration","file","id","start","state"],true,"number"])"));
}

void TestStbPvr::aListsMemoryIsFreedOnce()
{
    for (const Answer &answer :
         {Answer::array(QVector<KVR_Record>{first(), second()}), Answer::array(QVector<KVR_Record>()),
          Answer::array(QVector<KVR_Record>{first()}, -1)}) {
        const int before = RecordingPlatform::blocksHandedOut();
        RecordingPlatform::answer("KVR_GetRecordsList", answer);
        m_session->run("StbPVR.GetRecordsList()");
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
    m_session->run(
        "var events = []; StbMedia.SetEventCallback(function () { events.push([].slice.call(arguments)); })");
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_RECORDS, value);
    QTRY_COMPARE(m_session->run("events").result, QString("[[%1,139]]").arg(value));
}

void TestStbPvr::everyMethodHasARow()
{
    const QStringList inherited = {"destroyed(QObject*)", "destroyed()", "deleteLater()", "objectName"};
    const QStringList members = m_session->plugin().evaluate("Object.keys(StbPVR)").toStringList();
    QVERIFY(members.contains("DeleteRecord(KVR_ID)"));
    for (const QString &member : members) {
        if (inherited.contains(member))
            continue;
        const QString start = "StbPVR." + member.section('(', 0, 0, QString::SectionIncludeTrailingSep);
        const bool found = std::any_of(rows().begin(), rows().end(),
                                       [&start](const Row &row) { return QString(row.script).startsWith(start); });
        QVERIFY2(found, qPrintable(member + " has no row"));
    }
}

QTEST_MAIN(TestStbPvr)

#include "tst_stbpvr.moc"
