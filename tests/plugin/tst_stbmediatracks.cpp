// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QtTest>
#include <climits>
#include <memory>

using RecordingPlatform::Answer;

namespace {

const char *const invalidId = R"({"code":"30","message":"Invalid Id","status":"FAIL"})";
const char *const listMethods[] = {"GetVideoTrackList", "GetAudioTrackList", "GetSubtitleTrackList",
                                   "GetTeletextTrackList"};

KVR_Track track(int id, const QByteArray &descr, int supported, int encoding)
{
    KVR_Track track = {id, {}, supported, encoding};
    memcpy(track.descr, descr.constData(), qMin<size_t>(descr.size(), sizeof track.descr));
    return track;
}

KVR_MulticastEvent multicastEvent(const QByteArray &address, int join)
{
    KVR_MulticastEvent event = {{}, join};
    memcpy(event.ip_port, address.constData(), qMin<size_t>(address.size(), sizeof event.ip_port));
    return event;
}

// What the page gets for a track, in JSON with its members by name.
QString json(const char *method, const QString &descr, int id, int supported, int encoding)
{
    const QString encodingMember =
        QByteArray(method) == "GetSubtitleTrackList" ? QString("\"encoding\":%1,").arg(encoding) : QString();
    return "{\"descr\":\"" + descr + "\"," + encodingMember
        + QString("\"id\":%1,\"supported\":%2}").arg(id).arg(supported);
}

// Teletext alone tells the log how many there are.
QStringList messages(const char *method, int count)
{
    return QByteArray(method) == "GetTeletextTrackList" ? QStringList(QString("Teletext number:  %1").arg(count))
                                                        : QStringList();
}

} // namespace

// What StbMedia makes of the platform's records: tracks, multicast events and player windows.
class TestStbMediaTracks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void tracksBecomeObjects_data();
    void tracksBecomeObjects();
    void descriptionsEndAtTheirNulOrField_data();
    void descriptionsEndAtTheirNulOrField();
    void whatThePlatformCountsIsWhatThePageGets_data();
    void whatThePlatformCountsIsWhatThePageGets();
    void nothingHandedOutIsAnEmptyList_data();
    void nothingHandedOutIsAnEmptyList();
    void otherFailuresAreTakenForSuccess_data();
    void otherFailuresAreTakenForSuccess();
    void anUnknownPlayerIsAFailureAsObject_data();
    void anUnknownPlayerIsAFailureAsObject();
    void manyTracksArriveInTheirOrder();

    void multicastEventsBecomeObjects_data();
    void multicastEventsBecomeObjects();
    void windowsBecomeObjects_data();
    void windowsBecomeObjects();

private:
    std::unique_ptr<ScriptSession> m_session;
};

void TestStbMediaTracks::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestStbMediaTracks::init()
{
    RecordingPlatform::reset();
}

// Whatever was handed out has been freed exactly once.
void TestStbMediaTracks::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestStbMediaTracks::cleanupTestCase()
{
    m_session.reset();
}

static void addRowForEachList()
{
    QTest::addColumn<QByteArray>("method");
    for (const char *const method : listMethods)
        QTest::newRow(method) << QByteArray(method);
}

void TestStbMediaTracks::tracksBecomeObjects_data()
{
    addRowForEachList();
}

void TestStbMediaTracks::tracksBecomeObjects()
{
    QFETCH(QByteArray, method);
    const QVector<KVR_Track> tracks = {track(0, "", 0, 0), track(INT_MAX, "eng", 1, 7),
                                       track(-1, "\xfc\"\\ %1", INT_MIN, INT_MAX)};
    RecordingPlatform::answer("KVR_" + method, Answer::array(tracks));
    const ScriptSession::Outcome outcome = m_session->run("StbMedia." + method + "(3)");
    QCOMPARE(outcome.result,
             '[' + json(method, "", 0, 0, 0) + ',' + json(method, "eng", INT_MAX, 1, 7) + ','
                 + json(method, R"(ü\"\\ %1)", -1, INT_MIN, INT_MAX) + ']');
    QCOMPARE(outcome.calls, "KVR_" + method + "(3)");
    QCOMPARE(outcome.messages, messages(method, 3));
    QCOMPARE(outcome.warnings, QStringList());
    QCOMPARE(RecordingPlatform::blocksHandedOut(), 1);
}

void TestStbMediaTracks::descriptionsEndAtTheirNulOrField_data()
{
    QTest::addColumn<QByteArray>("descr");
    QTest::addColumn<QString>("text");
    QByteArray latin1;
    for (int byte = 0xa1; byte <= 0xff; ++byte)
        latin1 += char(byte);
    QTest::newRow("all Latin-1 letters") << latin1 << QString::fromLatin1(latin1);
    QTest::newRow("UTF-8 read as Latin-1") << QByteArray("\xd0\x9f") << QString::fromLatin1("\xd0\x9f");
    QTest::newRow("rest behind a NUL") << QByteArray("a\0b", 3) << "a";
    QTest::newRow("127 characters") << QByteArray(127, 'x') << QString(127, 'x');
    QTest::newRow("no NUL in the field") << QByteArray(128, 'x') << QString(128, 'x');
}

void TestStbMediaTracks::descriptionsEndAtTheirNulOrField()
{
    QFETCH(QByteArray, descr);
    QFETCH(QString, text);
    for (const QByteArray method : listMethods) {
        RecordingPlatform::answer("KVR_" + method, Answer::array(QVector<KVR_Track>{track(1, descr, 1, 1)}));
        QCOMPARE(m_session->run("StbMedia." + method + "(1)[0].descr").result, '"' + text + '"');
    }
}

void TestStbMediaTracks::whatThePlatformCountsIsWhatThePageGets_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("length");
    for (const QByteArray method : listMethods) {
        for (const int count : {0, 1, 2, -1, INT_MIN})
            QTest::addRow("%s %d of 2", method.constData(), count) << method << count << qMax(count, 0);
    }
}

void TestStbMediaTracks::whatThePlatformCountsIsWhatThePageGets()
{
    QFETCH(QByteArray, method);
    QFETCH(int, count);
    QFETCH(int, length);
    const QVector<KVR_Track> tracks = {track(1, "a", 1, 1), track(2, "b", 1, 1)};
    RecordingPlatform::answer("KVR_" + method, Answer::array(tracks, KVR_OK, count));
    const ScriptSession::Outcome outcome = m_session->run("StbMedia." + method + "(1).length");
    QCOMPARE(outcome.result, QString::number(length));
    QCOMPARE(outcome.messages, messages(method, count));
    QCOMPARE(RecordingPlatform::blocksHandedOut(), 1);
}

void TestStbMediaTracks::nothingHandedOutIsAnEmptyList_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<Answer>("answer");
    for (const QByteArray method : listMethods) {
        QTest::addRow("%s null", method.constData()) << method << Answer::nullArray(0);
        QTest::addRow("%s null, less than none", method.constData()) << method << Answer::nullArray(-3);
        QTest::addRow("%s null, more than none", method.constData()) << method << Answer::nullArray(3);
        QTest::addRow("%s nothing stored", method.constData()) << method << Answer(0);
        QTest::addRow("%s nothing stored, positive", method.constData()) << method << Answer(1);
        QTest::addRow("%s nothing stored, failure", method.constData()) << method << Answer(-1);
        QTest::addRow("%s nothing stored, -128", method.constData()) << method << Answer(-128);
    }
}

void TestStbMediaTracks::nothingHandedOutIsAnEmptyList()
{
    QFETCH(QByteArray, method);
    QFETCH(Answer, answer);
    RecordingPlatform::answer("KVR_" + method, answer);
    const ScriptSession::Outcome outcome = m_session->run("StbMedia." + method + "(1)");
    QCOMPARE(outcome.result, QString("[]"));
    QCOMPARE(outcome.messages, messages(method, answer.count));
    QCOMPARE(outcome.warnings, QStringList());
}

void TestStbMediaTracks::otherFailuresAreTakenForSuccess_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<int>("code");
    for (const QByteArray method : listMethods) {
        for (const int code : {-1, -126, -128, INT_MIN, 127, 1})
            QTest::addRow("%s %d", method.constData(), code) << method << code;
    }
}

void TestStbMediaTracks::otherFailuresAreTakenForSuccess()
{
    QFETCH(QByteArray, method);
    QFETCH(int, code);
    const QVector<KVR_Track> tracks = {track(4, "d", 1, 2)};
    RecordingPlatform::answer("KVR_" + method, Answer::array(tracks, code));
    const ScriptSession::Outcome outcome = m_session->run("StbMedia." + method + "(1)");
    QCOMPARE(outcome.result, '[' + json(method, "d", 4, 1, 2) + ']');
    QCOMPARE(outcome.warnings, QStringList());
    QCOMPARE(RecordingPlatform::blocksHandedOut(), 1);
}

void TestStbMediaTracks::anUnknownPlayerIsAFailureAsObject_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<bool>("warns");
    QTest::newRow("GetVideoTrackList") << QByteArray("GetVideoTrackList") << true;
    QTest::newRow("GetAudioTrackList") << QByteArray("GetAudioTrackList") << false;
    QTest::newRow("GetSubtitleTrackList") << QByteArray("GetSubtitleTrackList") << false;
    QTest::newRow("GetTeletextTrackList") << QByteArray("GetTeletextTrackList") << false;
    QTest::newRow("GetLastMulticastEvent") << QByteArray("GetLastMulticastEvent") << true;
    QTest::newRow("GetPlayerViewPort") << QByteArray("GetPlayerViewPort") << true;
}

void TestStbMediaTracks::anUnknownPlayerIsAFailureAsObject()
{
    QFETCH(QByteArray, method);
    QFETCH(bool, warns);
    for (const bool traced : {false, true}) {
        QVERIFY(m_session->setTracing(traced));
        RecordingPlatform::answer("KVR_" + method, -127);
        const ScriptSession::Outcome outcome = m_session->run("StbMedia." + method + "(42)");
        QCOMPARE(outcome.result, QString(invalidId));
        QCOMPARE(outcome.calls, "KVR_" + method + "(42)");
        QCOMPARE(outcome.traces, traced ? ScriptSession::quoted("StbMedia." + method + "(42)") : QString());
        QCOMPARE(outcome.warnings, warns ? QStringList("Invalid Id") : QStringList());
        QCOMPARE(outcome.messages, QStringList());
    }
    QVERIFY(m_session->setTracing(false));
}

void TestStbMediaTracks::manyTracksArriveInTheirOrder()
{
    QVector<KVR_Track> tracks;
    for (int i = 0; i < 1000; ++i)
        tracks += track(i, QByteArray::number(i), i, i);
    RecordingPlatform::answer("KVR_GetSubtitleTrackList", Answer::array(tracks));
    QCOMPARE(m_session
                 ->run("StbMedia.GetSubtitleTrackList(1).every(function (track, i) {"
                       "return track.id === i && track.descr === String(i) && track.supported === i"
                       "    && track.encoding === i; }) && StbMedia.GetSubtitleTrackList(1).length")
                 .result,
             QString("1000"));
}

void TestStbMediaTracks::multicastEventsBecomeObjects_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("join");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("result");
    QTest::newRow("join") << QByteArray("239.1.2.3:1234") << 1 << 0 << R"({"ip_port":"239.1.2.3:1234","state":"join"})";
    QTest::newRow("leave") << QByteArray("239.1.2.3:1234") << 0 << 0
                           << R"({"ip_port":"239.1.2.3:1234","state":"leave"})";
    QTest::newRow("any non-zero is a join") << QByteArray("a") << -5 << 0 << R"({"ip_port":"a","state":"join"})";
    QTest::newRow("none yet") << QByteArray() << 0 << 0 << R"({"ip_port":"","state":"leave"})";
    QTest::newRow("Latin-1") << QByteArray("\xe9") << 1 << 0 << R"({"ip_port":"é","state":"join"})";
    QTest::newRow("31 characters") << QByteArray(31, '1') << 1 << 0
                                   << R"({"ip_port":"1111111111111111111111111111111","state":"join"})";
    QTest::newRow("no NUL in the field") << QByteArray(32, '1') << 0 << 0
                                         << R"({"ip_port":"11111111111111111111111111111111","state":"leave"})";
    QTest::newRow("other failure") << QByteArray("a") << 1 << -1 << R"({"ip_port":"a","state":"join"})";
    QTest::newRow("-128") << QByteArray("a") << 1 << -128 << R"({"ip_port":"a","state":"join"})";
}

void TestStbMediaTracks::multicastEventsBecomeObjects()
{
    QFETCH(QByteArray, address);
    QFETCH(int, join);
    QFETCH(int, code);
    QFETCH(QString, result);
    RecordingPlatform::answer("KVR_GetLastMulticastEvent", Answer::structure(multicastEvent(address, join), code));
    const ScriptSession::Outcome outcome = m_session->run("StbMedia.GetLastMulticastEvent(-2)");
    QCOMPARE(outcome.result, result);
    QCOMPARE(outcome.calls, QByteArray("KVR_GetLastMulticastEvent(-2)"));
    QCOMPARE(outcome.warnings, QStringList());
}

void TestStbMediaTracks::windowsBecomeObjects_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *name, const Answer &answer, const char *result) {
        QTest::newRow(name) << answer << QString(result);
    };
    row("x, y, width, height", Answer::structure(KVR_Rect{1, 2, 3, 4}), R"({"height":4,"width":3,"x":1,"y":2})");
    row("extremes", Answer::structure(KVR_Rect{INT_MIN, INT_MAX, 0, -1}),
        R"({"height":-1,"width":0,"x":-2147483648,"y":2147483647})");
    row("other failure", Answer::structure(KVR_Rect{1, 2, 3, 4}, -1), R"({"height":4,"width":3,"x":1,"y":2})");
    row("failure that stores nothing", -3, R"({"height":0,"width":0,"x":0,"y":0})");
}

void TestStbMediaTracks::windowsBecomeObjects()
{
    QFETCH(Answer, answer);
    QFETCH(QString, result);
    RecordingPlatform::answer("KVR_GetPlayerViewPort", answer);
    const ScriptSession::Outcome outcome = m_session->run("StbMedia.GetPlayerViewPort(2147483647)");
    QCOMPARE(outcome.result, result);
    QCOMPARE(outcome.calls, QByteArray("KVR_GetPlayerViewPort(2147483647)"));
    QCOMPARE(outcome.warnings, QStringList());
}

QTEST_MAIN(TestStbMediaTracks)
#include "tst_stbmediatracks.moc"
