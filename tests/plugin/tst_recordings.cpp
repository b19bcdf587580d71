// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QtTest>

#include <ctime>
#include <memory>

using RecordingPlatform::Answer;

namespace {

const char *const invalidTime = "4294967295";

} // namespace

// The times of recordings between page and platform, in several time zones.
class TestRecordings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanupTestCase();

    void timesOfPagesReachThePlatform_data();
    void timesOfPagesReachThePlatform();
    void localTimesAreThoseOfTheZone_data();
    void localTimesAreThoseOfTheZone();
    void timesOfThePlatformReachThePage_data();
    void timesOfThePlatformReachThePage();
    void valuesThatAreNoDates_data();
    void valuesThatAreNoDates();
    void theStartIsShownInTheMessageLog();

private:
    std::unique_ptr<ScriptSession> m_session;
};

void TestRecordings::initTestCase_data()
{
    QTest::addColumn<QByteArray>("zone");
    for (const char *zone : {"UTC", "Europe/Berlin", "America/New_York", "Asia/Kolkata", "Australia/Lord_Howe"})
        QTest::newRow(zone) << QByteArray(zone);
}

void TestRecordings::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    QVERIFY(m_session->setTracing(true));
}

void TestRecordings::init()
{
    QFETCH_GLOBAL(const QByteArray, zone);
    qputenv("TZ", zone);
    tzset();
    RecordingPlatform::reset();
}

void TestRecordings::cleanupTestCase()
{
    m_session.reset();
}

void TestRecordings::timesOfPagesReachThePlatform_data()
{
    QTest::addColumn<qlonglong>("milliseconds");
    QTest::addColumn<QByteArray>("seconds");
    const auto row = [](const char *name, qlonglong milliseconds, const char *seconds) {
        QTest::newRow(name) << milliseconds << QByteArray(seconds);
    };
    row("2012", 1325376000000, "1325376000");
    row("zero", 0, "0");
    row("one millisecond", 1, "0");
    row("the first second's end", 999, "0");
    row("one second", 1000, "1");
    row("fractions are cut off", 1325376000999, "1325376000");
    row("before zero", -1000, invalidTime);
    row("just before zero", -1, invalidTime);
    row("before 2^31", 2147483647000, "2147483647");
    row("2^31", 2147483648000, "2147483648");
    row("before the last second", 4294967294000, "4294967294");
    row("the last second", 4294967295000, "4294967295");
    row("2^32", 4294967296000, invalidTime);
    row("last date of all", 8640000000000000, invalidTime);
    row("first date of all", -8640000000000000, invalidTime);
    row("the year 0", -62167219200000, invalidTime);
    // In Berlin, New York and on Lord Howe, in this order.
    row("before the summer gap", 1679792399000, "1679792399");
    row("after the summer gap", 1679792400000, "1679792400");
    row("in the first of two equal hours", 1698539400000, "1698539400");
    row("at the first of them's end", 1698541199000, "1698541199");
    row("in the second of two equal hours", 1698543000000, "1698543000");
    row("after the equal hours", 1698544800000, "1698544800");
    row("after New York's summer gap", 1678604400000, "1678604400");
    row("in New York's first equal hour", 1699162200000, "1699162200");
    row("in New York's second equal hour", 1699165800000, "1699165800");
    row("in Lord Howe's first equal half hour", 1680360000000, "1680360000");
    row("in Lord Howe's second equal half hour", 1680361800000, "1680361800");
}

void TestRecordings::timesOfPagesReachThePlatform()
{
    QFETCH(const qlonglong, milliseconds);
    QFETCH(const QByteArray, seconds);
    const QString date = QString("new Date(%1)").arg(milliseconds);
    const ScriptSession::Outcome added = m_session->run("StbPVR.AddRecord('u', 'f', " + date + ", 60)");
    QCOMPARE(added.traces, "\"StbPVR.AddRecord(u, f, " + QString(seconds) + " ,60)\"");
    QCOMPARE(added.calls, "KVR_AddRecord(u, f, " + seconds + ", 60)");
    const ScriptSession::Outcome set = m_session->run("StbPVR.SetRecordStartTime(5, " + date + ")");
    QCOMPARE(set.traces, "\"StbPVR.SetRecordUrl(5, " + QString(seconds) + ")\"");
    QCOMPARE(set.calls, "KVR_SetRecordStartTime(5, " + seconds + ")");
}

void TestRecordings::localTimesAreThoseOfTheZone_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<QByteArray>("zoneOfTheRow");
    QTest::addColumn<QByteArray>("seconds");
    const auto row = [](const char *zone, const char *date, const char *seconds) {
        QTest::addRow("%s %s", zone, date)
            << QString("new Date(%1)").arg(date) << QByteArray(zone) << QByteArray(seconds);
    };
    row("UTC", "2012, 0, 1", "1325376000");
    row("Europe/Berlin", "2012, 0, 1", "1325372400");
    row("Europe/Berlin", "2012, 6, 1", "1341093600");
    row("Europe/Berlin", "1970, 0, 1, 1", "0");
    row("Europe/Berlin", "1970, 0, 1", invalidTime); // before zero
    row("America/New_York", "2012, 0, 1", "1325394000");
    row("Asia/Kolkata", "2012, 0, 1", "1325356200");
    row("Australia/Lord_Howe", "2012, 6, 1", "1341063000");
}

void TestRecordings::localTimesAreThoseOfTheZone()
{
    QFETCH_GLOBAL(const QByteArray, zone);
    QFETCH(const QByteArray, zoneOfTheRow);
    QFETCH(const QString, date);
    QFETCH(const QByteArray, seconds);
    Q_UNUSED(zone)
    qputenv("TZ", zoneOfTheRow);
    tzset();
    QCOMPARE(m_session->run("StbPVR.SetRecordStartTime(5, " + date + ")").calls,
             "KVR_SetRecordStartTime(5, " + seconds + ")");
}

void TestRecordings::timesOfThePlatformReachThePage_data()
{
    QTest::addColumn<uint>("seconds");
    for (const uint seconds : {0U, 1U, 1325376000U, 2147483647U, 2147483648U, 4294967294U, 4294967295U})
        QTest::addRow("%u", seconds) << seconds;
    QTest::newRow("before the summer gap") << 1679792399U;
    QTest::newRow("after the summer gap") << 1679792400U;
    QTest::newRow("before two equal hours") << 1698537599U;
    QTest::newRow("first of two equal hours") << 1698537600U;
    QTest::newRow("end of the first") << 1698541199U;
    QTest::newRow("second of two equal hours") << 1698541200U;
    QTest::newRow("after two equal hours") << 1698544800U;
    QTest::newRow("New York's first equal hour") << 1699162200U;
    QTest::newRow("Lord Howe's first equal half hour") << 1680360000U;
    QTest::newRow("Lord Howe's second equal half hour") << 1680361800U;
}

void TestRecordings::timesOfThePlatformReachThePage()
{
    QFETCH(const uint, seconds);
    KVR_Record record = {};
    record.start = seconds;
    RecordingPlatform::answer("KVR_GetRecordsList", Answer::array(QVector<KVR_Record>{record}));
    QCOMPARE(m_session->run("StbPVR.GetRecordsList()[0].start.getTime()").result, QString::number(seconds * 1000LL));
}

void TestRecordings::valuesThatAreNoDates_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("added"); ///< what AddRecord passes; empty where the engine refuses the call
    QTest::addColumn<QByteArray>("set");   ///< what SetRecordStartTime passes
    const auto row = [](const char *value, const char *added, const char *set) {
        QTest::newRow(value) << QString(value) << QByteArray(added) << QByteArray(set);
    };
    row("'2012-01-01T00:00:00Z'", "1325376000", "1325376000");
    row("new String('2012-01-01T00:00:00Z')", "1325376000", "1325376000");
    row("1325376000000", "1325376000", invalidTime);
    row("new Number(1325376000000)", "1325376000", invalidTime);
    row("Infinity", invalidTime, invalidTime);
    row("1e300", invalidTime, invalidTime);
    row("new Date(NaN)", invalidTime, invalidTime);
    row("new Date('nonsense')", invalidTime, invalidTime);
    row("new Date(1e20)", invalidTime, invalidTime);
    row("'nonsense'", "", invalidTime);
    row("''", "", invalidTime);
    row("null", "", invalidTime);
    row("undefined", "", invalidTime);
    row("true", "", invalidTime);
    row("({})", "", invalidTime);
    row("[]", "", invalidTime);
    row("[new Date(0)]", "", invalidTime);
    row("(function () {})", "", invalidTime);
    row("Object.create(new Date(0))", "", invalidTime);
    row("({getTime: function () { return 0; }})", "", invalidTime);
    row("document", "", invalidTime);
    row("StbPVR", "", invalidTime);
}

void TestRecordings::valuesThatAreNoDates()
{
    QFETCH(const QString, value);
    QFETCH(const QByteArray, added);
    QFETCH(const QByteArray, set);
    const ScriptSession::Outcome add = m_session->run("StbPVR.AddRecord('u', 'f', " + value + ", 60)");
    QCOMPARE(add.calls, added.isEmpty() ? QByteArray() : "KVR_AddRecord(u, f, " + added + ", 60)");
    QCOMPARE(add.result.startsWith("throws TypeError: incompatible type of argument(s) in call to AddRecord()"),
             added.isEmpty());
    QCOMPARE(add.traces.isEmpty(), added.isEmpty());
    const ScriptSession::Outcome start = m_session->run("StbPVR.SetRecordStartTime(5, " + value + ")");
    QCOMPARE(start.calls, "KVR_SetRecordStartTime(5, " + set + ")");
    QCOMPARE(start.result, QString("0"));
}

void TestRecordings::theStartIsShownInTheMessageLog()
{
    const QStringList valid = m_session->run("StbPVR.AddRecord('u', 'f', new Date(1325376000000), 60)").messages;
    QCOMPARE(valid.size(), 1);
    QVERIFY2(valid.first().startsWith("QDateTime(2012-01-01 00:00:00.000 UTC"), qPrintable(valid.first()));
    const QStringList invalid = m_session->run("StbPVR.AddRecord('u', 'f', new Date(NaN), 60)").messages;
    QCOMPARE(invalid, QStringList("QDateTime(Invalid)"));
    QCOMPARE(m_session->run("StbPVR.SetRecordStartTime(5, new Date(0))").messages, QStringList());
}

QTEST_MAIN(TestRecordings)

#include "tst_recordings.moc"
