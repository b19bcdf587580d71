// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

using namespace RecordingPlatform;

namespace {

// A point of time in the box's own time zone, so that its text is known.
uint secondsAt(int hour, int minute)
{
    return uint(QDateTime(QDate(2026, 3, 9), QTime(hour, minute)).toSecsSinceEpoch());
}

QByteArray addressOf(const char *clip)
{
    return PortalPage::url().resolved(QUrl(QString("media/") + clip)).toEncoded();
}

KVR_Record record(int id, int state, const QByteArray &address, uint start = secondsAt(20, 15), int duration = 60)
{
    KVR_Record record = {};
    record.id = id;
    record.state = state;
    record.start = start;
    record.duration = duration;
    qstrncpy(record.addr, address, sizeof record.addr);
    qstrncpy(record.file, "rec-" + QByteArray::number(id) + ".ts", sizeof record.file);
    return record;
}

void recordsAre(const QVector<KVR_Record> &records)
{
    answer("KVR_GetRecordsList", Answer::array(records));
}

// What the timer asked the platform for.
struct Order
{
    QByteArray address;
    QByteArray file;
    qint64 start = 0; ///< seconds since 1970
    int duration = 0;
};

Order takeOrder()
{
    static const QRegularExpression form("^KVR_AddRecord\\((.*), (.*), (\\d+), (\\d+)\\)$");
    const QByteArrayList calls = PortalPage::takeCalls("KVR_AddRecord");
    const auto match = form.match(calls.value(0));
    return {match.captured(1).toUtf8(), match.captured(2).toUtf8(), match.captured(3).toLongLong(),
            match.captured(4).toInt()};
}

} // namespace

/// The portal's timer, and what it shows and does of recordings.
class TestPortalRecordings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void recordingsAreListedTheLatestFirst();
    void theBoxNeedNotListThemInAnArray();
    void eachStateIsTold_data();
    void eachStateIsTold();
    void anEventBringsTheListUpToDate();
    void theFocusStaysOnItsRecording();
    void theTimerSchedules_data();
    void theTimerSchedules();
    void theTimerReturnsToTheList();
    void aRecordingThatTheBoxRefusesIsSaid();
    void theChannelOnTheFullScreenCanBeRecorded();
    void whatHasBeenRecordedCanBePlayed();
    void aRecordingWindsAndPauses();
    void theEndOfARecordingReturns();
    void theWindowGoesOnWithTheChannel();
    void aRecordingIsDeleted();
    void aDeletionThatTheBoxRefusesIsSaid();
    void aRecordingThatVanishesIsSaid();

private:
    void become(int state, long long position = 0, long long duration = 0);

    PortalPage m_portal;
};

void TestPortalRecordings::init()
{
    reset();
    PortalPage::playerIs(KVR_PLAYER_PLAYING);
    QVERIFY(m_portal.open());
}

void TestPortalRecordings::cleanup()
{
    QCOMPARE(m_portal.errors(), QStringList());
    m_portal.forget();
    m_portal.close();
}

void TestPortalRecordings::become(int state, long long position, long long duration)
{
    PortalPage::playerIs(state, position, duration);
    m_portal.evaluate("StbMedia.eventCallback(1, 1)");
}

void TestPortalRecordings::recordingsAreListedTheLatestFirst()
{
    recordsAre({record(1, KVR_RECORD_DONE, addressOf("life.mkv"), secondsAt(8, 5), 300),
                record(2, KVR_RECORD_SCHEDULED, addressOf("clock.mkv"), secondsAt(23, 0), 3600),
                record(3, KVR_RECORD_SCHEDULED, "udp://239.1.1.1:5000", secondsAt(8, 5), 45)});
    m_portal.press("Down*3 Return");
    QCOMPARE(m_portal.rows(),
             QStringList({"+ New recording", QString::fromUtf8("Clock 09.03. 23:00 · 60 minutes Scheduled"),
                          QString::fromUtf8("udp://239.1.1.1:5000 09.03. 08:05 · 45 seconds Scheduled"),
                          QString::fromUtf8("Life 09.03. 08:05 · 5 minutes Done")}));
    m_portal.press("Backspace");
    QCOMPARE(m_portal.text("#row-recordings"), QString("Recordings 3"));
}

// A box's engine gives an object of its own, which has an array's functions but cannot be sorted in place.
void TestPortalRecordings::theBoxNeedNotListThemInAnArray()
{
    recordsAre({record(1, KVR_RECORD_DONE, addressOf("life.mkv"), secondsAt(8, 5)),
                record(2, KVR_RECORD_SCHEDULED, addressOf("clock.mkv"), secondsAt(23, 0))});
    m_portal.evaluate("var list = Object.create(Array.prototype, { length: { value: 2 } });"
                      "StbPVR.GetRecordsList().forEach(function (record, i) {"
                      "  Object.defineProperty(list, i, { value: record });"
                      "});"
                      "Object.defineProperty(window, 'StbPVR', {"
                      "  value: { GetRecordsList: function () { return list; } }"
                      "});");
    m_portal.press("Down*3 Return");
    QCOMPARE(m_portal.texts(".row .about").size(), 2);
    QCOMPARE(m_portal.texts(".row .value"), QStringList({"Scheduled", "Done"}));
}

void TestPortalRecordings::eachStateIsTold_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("actions");
    QTest::newRow("scheduled") << int(KVR_RECORD_SCHEDULED) << "Scheduled" << QStringList{"× Cancel"};
    QTest::newRow("running") << int(KVR_RECORD_RUNNING) << "Recording" << QStringList{"▶ Play", "× Cancel"};
    QTest::newRow("done") << int(KVR_RECORD_DONE) << "Done" << QStringList{"▶ Play", "× Delete"};
    QTest::newRow("failed") << int(KVR_RECORD_FAILED) << "Failed" << QStringList{"× Delete"};
    QTest::newRow("interrupted") << int(KVR_RECORD_INTERRUPTED) << "Interrupted" << QStringList{"▶ Play", "× Delete"};
}

void TestPortalRecordings::eachStateIsTold()
{
    QFETCH(int, state);
    QFETCH(QString, text);
    recordsAre({record(4, state, addressOf("life.mkv"))});
    m_portal.press("Down*3 Return");
    QTEST(m_portal.text("#row-recording-4 .value"), "text");
    m_portal.press("Down Return");
    QTEST(m_portal.texts("button.row"), "actions");
    QCOMPARE(m_portal.texts("div.row"),
             QStringList({text + " rec-4.ts", QString::fromUtf8("Begins 09.03. 20:15 · 1 minute")}));
}

void TestPortalRecordings::anEventBringsTheListUpToDate()
{
    m_portal.press("Down*3 Return");
    QCOMPARE(m_portal.texts(".value"), QStringList());
    const QList<QPair<int, QString>> states = {
        {KVR_RECORD_SCHEDULED, "Scheduled"}, {KVR_RECORD_RUNNING, "Recording"}, {KVR_RECORD_DONE, "Done"}};
    for (const auto &[state, text] : states) {
        recordsAre({record(1, state, addressOf("life.mkv"))});
        fire(KVR_BOX, KVR_EVENT_RECORDS, 1);
        QTRY_COMPARE(m_portal.texts(".value"), QStringList(text));
    }
}

void TestPortalRecordings::theFocusStaysOnItsRecording()
{
    const KVR_Record first = record(1, KVR_RECORD_DONE, "a", 1000);
    const KVR_Record second = record(2, KVR_RECORD_DONE, "b", 2000);
    recordsAre({first, second});
    m_portal.press("Down*3 Return Down*2");
    QCOMPARE(m_portal.focused(), QString("recording-1"));
    recordsAre({first, second, record(3, KVR_RECORD_SCHEDULED, "c", 3000)});
    fire(KVR_BOX, KVR_EVENT_RECORDS, 3);
    QTRY_COMPARE(m_portal.rows().size(), 4);
    QCOMPARE(m_portal.focused(), QString("recording-1"));
    recordsAre({second});
    fire(KVR_BOX, KVR_EVENT_RECORDS, 1);
    QTRY_COMPARE(m_portal.rows().size(), 2);
    QCOMPARE(m_portal.focused(), QString("add"));
}

void TestPortalRecordings::theTimerSchedules_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QByteArray>("clip");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("duration");
    QTest::newRow("as it comes") << "" << QByteArray("testcard.mkv") << QByteArray("Test-card") << 0 << 30;
    QTest::newRow("next channel") << "Down Right" << QByteArray("life.mkv") << QByteArray("Life") << 0 << 30;
    QTest::newRow("channel by OK") << "Down Return" << QByteArray("life.mkv") << QByteArray("Life") << 0 << 30;
    QTest::newRow("last channel") << "Down Left" << QByteArray("clock.mkv") << QByteArray("Clock") << 0 << 30;
    QTest::newRow("in a minute") << "Down*2 Right" << QByteArray("testcard.mkv") << QByteArray("Test-card") << 60 << 30;
    QTest::newRow("in an hour") << "Down*2 Left" << QByteArray("testcard.mkv") << QByteArray("Test-card") << 3600 << 30;
    QTest::newRow("shorter") << "Down*3 Left" << QByteArray("testcard.mkv") << QByteArray("Test-card") << 0 << 10;
    QTest::newRow("longest") << "Down*3 Left*2" << QByteArray("testcard.mkv") << QByteArray("Test-card") << 0 << 7200;
    QTest::newRow("all") << "Down Right Down Right*2 Down Right" << QByteArray("life.mkv") << QByteArray("Life") << 120
                         << 60;
}

void TestPortalRecordings::theTimerSchedules()
{
    QFETCH(QString, keys);
    QFETCH(QByteArray, clip);
    QFETCH(QByteArray, file);
    QFETCH(int, start);
    QFETCH(int, duration);
    m_portal.press("Down*3 Return Return");
    QCOMPARE(m_portal.screen(), QString("timer"));
    takeCalls();
    m_portal.press(keys + " Up*3 Return");
    const Order order = takeOrder();
    QCOMPARE(order.address, addressOf(clip));
    const qint64 fromNow = order.start - QDateTime::currentSecsSinceEpoch();
    QVERIFY2(fromNow >= start - 5 && fromNow <= start, qPrintable(QString::number(fromNow)));
    QCOMPARE(order.duration, duration);
    QCOMPARE(order.file,
             file + QDateTime::fromSecsSinceEpoch(order.start).toString("-yyyyMMdd-hhmmss").toLatin1() + ".ts");
}

void TestPortalRecordings::theTimerReturnsToTheList()
{
    m_portal.press("Down*3 Return Return Down*2 Right Up*2 Return");
    QCOMPARE(m_portal.screen(), QString("recordings"));
    QCOMPARE(m_portal.text("#notice"), QString("The recording begins in 1 minute"));
}

void TestPortalRecordings::aRecordingThatTheBoxRefusesIsSaid()
{
    answer("KVR_AddRecord", KVR_ERR_FAILED);
    m_portal.press("Down*3 Return Return Return");
    QCOMPARE(m_portal.screen(), QString("timer"));
    QCOMPARE(m_portal.text("#notice"), QString("The box refuses the recording (-1)"));
}

void TestPortalRecordings::theChannelOnTheFullScreenCanBeRecorded()
{
    m_portal.press("Return Down Return Return");
    QCOMPARE(m_portal.screen(), QString("timer"));
    takeCalls();
    m_portal.press("Return");
    QCOMPARE(takeOrder().address, addressOf("life.mkv"));
    QCOMPARE(m_portal.screen(), QString("tracks"));
}

void TestPortalRecordings::whatHasBeenRecordedCanBePlayed()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    PortalPage::playerIs(KVR_PLAYER_PLAYING, 15000, 60000);
    m_portal.press("Down*3 Return Down Return");
    takeCalls();
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_Play"),
             QByteArrayList{"KVR_PlayFile(1, /mnt/stb/rec-5.ts, 0, 60000, 0, , -1, -1, -1)"});
    QCOMPARE(m_portal.screen(), QString("video"));
    QCOMPARE(m_portal.text("#playing-kind"), QString("RECORDING"));
    QCOMPARE(m_portal.text("#playing-name"), QString("Life"));
    QCOMPARE(m_portal.text("#playing-position"), QString("0:15 / 1:00"));
    QCOMPARE(m_portal.place("#playing-progress").width(), m_portal.place("#playing-length").width() / 4);

    PortalPage::playerIs(KVR_PLAYER_PLAYING, 30000, 60000);
    fire(1, KVR_EVENT_POSITION);
    QTRY_COMPARE(m_portal.text("#playing-position"), QString("0:30 / 1:00"));
}

void TestPortalRecordings::aRecordingWindsAndPauses()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    PortalPage::playerIs(KVR_PLAYER_PLAYING, 15000, 60000);
    m_portal.press("Down*3 Return Down Return Return");
    takeCalls();
    m_portal.press("Right");
    QCOMPARE(PortalPage::takeCalls("KVR_SetPosition"), QByteArrayList{"KVR_SetPosition(1, 25000)"});
    m_portal.press("Left Left");
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPosition"), QByteArray("KVR_SetPosition(1, 5000)"));
    PortalPage::playerIs(KVR_PLAYER_PLAYING, 5000, 60000);
    m_portal.press("Left Up Down");
    QCOMPARE(PortalPage::takeCalls("KVR_SetPosition"), QByteArrayList{"KVR_SetPosition(1, 0)"});
    QCOMPARE(m_portal.text("#playing-kind"), QString("RECORDING"));

    m_portal.press("Return");
    QCOMPARE(m_portal.rows().constFirst(), QString("Pause"));
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_Pause"), QByteArrayList{"KVR_Pause(1)"});
    become(KVR_PLAYER_PAUSED, 5000, 60000);
    QCOMPARE(m_portal.rows().constFirst(), QString("Continue"));
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_Continue"), QByteArrayList{"KVR_Continue(1)"});
}

void TestPortalRecordings::theEndOfARecordingReturns()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    m_portal.press("Down*3 Return Down Return Return");
    takeCalls();
    become(KVR_PLAYER_ENDED);
    QCOMPARE(m_portal.screen(), QString("recording"));
    QCOMPARE(PortalPage::takeCalls("KVR_Play").size(), 1);
    QCOMPARE(m_portal.text("#playing-name"), QString("Test card"));
}

void TestPortalRecordings::theWindowGoesOnWithTheChannel()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    m_portal.press("Down*2 Return Down Return Down Return Return");
    takeCalls();
    m_portal.press("Backspace");
    QCOMPARE(m_portal.screen(), QString("recording"));
    QCOMPARE(PortalPage::takeCalls("KVR_Play"),
             QByteArrayList{"KVR_PlayHttp(1, " + addressOf("clock.mkv") + ", , -1, -1, -1)"});
}

void TestPortalRecordings::aRecordingIsDeleted()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    m_portal.press("Down*3 Return Down Return Down");
    takeCalls();
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_DeleteRecord"), QByteArrayList{"KVR_DeleteRecord(5)"});
    QCOMPARE(m_portal.screen(), QString("recordings"));
}

void TestPortalRecordings::aDeletionThatTheBoxRefusesIsSaid()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    answer("KVR_DeleteRecord", KVR_ERR_FAILED);
    m_portal.press("Down*3 Return Down Return Down Return");
    QCOMPARE(m_portal.screen(), QString("recording"));
    QCOMPARE(m_portal.text("#notice"), QString("The box refuses to delete the recording (-1)"));
}

void TestPortalRecordings::aRecordingThatVanishesIsSaid()
{
    recordsAre({record(5, KVR_RECORD_DONE, addressOf("life.mkv"))});
    m_portal.press("Down*3 Return Down Return");
    recordsAre({});
    fire(KVR_BOX, KVR_EVENT_RECORDS, 5);
    QTRY_COMPARE(m_portal.rows(), QStringList{"This recording is gone"});
    m_portal.press("Return");
    QCOMPARE(m_portal.screen(), QString("recordings"));
}

QTEST_MAIN(TestPortalRecordings)
#include "tst_portalrecordings.moc"
