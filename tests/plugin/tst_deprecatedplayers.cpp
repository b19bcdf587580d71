// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"

#include <QtTest>
#include <algorithm>
#include <memory>

namespace {

const char *const soundSettings = "/home/user/config/config_files/qtstbapi.conf";
const char *const hearing =
    "var heard = []; StbMedia.SetEventCallback(function () { heard.push([].slice.call(arguments)); });";

QByteArrayList sorted(QByteArrayList calls)
{
    std::sort(calls.begin(), calls.end());
    return calls;
}

} // namespace

// Players that pages make through stb_media: whose they are, how they sound, and what a page hears of them.
class TestDeprecatedPlayers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void soundIsNeitherAppliedNorKept();
    void playersLeftOpenAreClosedAtTheEnd();
    void aPlayerOfTheCurrentObjectIsNotClosedAtTheEnd();
    void eventsOfAPlayerReachThePage_data();
    void eventsOfAPlayerReachThePage();
    void otherEventsOfAPlayerReachNobody_data();
    void otherEventsOfAPlayerReachNobody();
    void theDescriptionIsThatOfTheLastEvent();
    void theHandlerRunsAfterEveryEventUntilItIsEmptied();

private:
    QByteArrayList callsOfTheEnd(const QByteArray &function);

    std::unique_ptr<ScriptSession> m_session;
};

void TestDeprecatedPlayers::init()
{
    RecordingPlatform::reset();
    RecordingPlatform::forgetHandlers();
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestDeprecatedPlayers::cleanup()
{
    m_session.reset();
}

// What the plugin says to the platform when it is destroyed, of one function.
QByteArrayList TestDeprecatedPlayers::callsOfTheEnd(const QByteArray &function)
{
    RecordingPlatform::takeCalls();
    m_session->plugin().destroy();
    const QByteArrayList allCalls = RecordingPlatform::takeCalls();
    QByteArrayList calls;
    for (const QByteArray &call : allCalls) {
        if (call.startsWith(function + '('))
            calls += call;
    }
    return sorted(calls);
}

void TestDeprecatedPlayers::soundIsNeitherAppliedNorKept()
{
    const QByteArray settings = "[volume]\nmute=1\nvolumeValue=35\n";
    writeBoxFile(soundSettings, settings);
    RecordingPlatform::answer("KVR_GetVolume", 80);
    const QByteArray calls = m_session->run("stb_media.CreatePlayer(); stb_media.SetVolume(1, 80)").calls;
    QVERIFY(calls.endsWith("KVR_RegisterEventHandler(1, 11, handler)\nKVR_SetVolume(1, 80)"));
    QCOMPARE(m_session->run("stb_media.ClosePlayer(1)").calls, QByteArray("KVR_ClosePlayer(1)"));
    QCOMPARE(m_session->run("stb_media.CreatePlayer()").result, QString("2"));
    QCOMPARE(callsOfTheEnd("KVR_GetVolume"), QByteArrayList());
    QCOMPARE(boxFile(soundSettings), settings);
}

void TestDeprecatedPlayers::playersLeftOpenAreClosedAtTheEnd()
{
    RecordingPlatform::answerOnce("KVR_CreatePlayer", 0);
    RecordingPlatform::answerOnce("KVR_CreatePlayer", 7);
    RecordingPlatform::answerOnce("KVR_CreatePlayer", -3);
    RecordingPlatform::answerOnce("KVR_CreatePlayer", 7);
    RecordingPlatform::answerOnce("KVR_CreatePlayer", 8);
    QCOMPARE(m_session
                 ->run("[stb_media.CreatePlayer(), stb_media.CreatePlayer(), stb_media.CreatePlayer(),"
                       "stb_media.CreatePlayer(), stb_media.CreatePlayer(), stb_media.ClosePlayer(8),"
                       "stb_media.ClosePlayer(9)]")
                 .result,
             QString("[0,7,-3,7,8,0,0]"));
    QCOMPARE(callsOfTheEnd("KVR_ClosePlayer"), QByteArrayList({"KVR_ClosePlayer(0)", "KVR_ClosePlayer(7)"}));
}

void TestDeprecatedPlayers::aPlayerOfTheCurrentObjectIsNotClosedAtTheEnd()
{
    m_session->run("StbMedia.CreatePlayer(); stb_media.CreatePlayer()");
    // Closed by the other object, each is no longer or still its maker's to close.
    m_session->run("stb_media.ClosePlayer(1); StbMedia.ClosePlayer(2)");
    RecordingPlatform::takeCalls();
    m_session->plugin().destroy();
    const QByteArrayList calls = RecordingPlatform::takeCalls();
    QCOMPARE(calls.count("KVR_ClosePlayer(1)"), 1);
    QCOMPARE(calls.count("KVR_GetVolume(1)"), 1);
    QCOMPARE(calls.count("KVR_ClosePlayer(2)"), 1);
    QCOMPARE(calls.count("KVR_GetVolume(2)"), 0);
}

void TestDeprecatedPlayers::eventsOfAPlayerReachThePage_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11})
        QTest::addRow("%d", type) << type;
}

void TestDeprecatedPlayers::eventsOfAPlayerReachThePage()
{
    QFETCH(const int, type);
    m_session->run(QString(hearing) + "stb_media.CreatePlayer()");
    RecordingPlatform::fire(1, type);
    QTRY_COMPARE(m_session->run("heard").result, QString("[[1,%1]]").arg(type));
    QCOMPARE(m_session->plugin().evaluate("stb_media.getEventDescription()").toString(),
             QString("{\"id\":\"1\",\"type\":\"%1\"}").arg(type));
}

void TestDeprecatedPlayers::otherEventsOfAPlayerReachNobody_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {10, 12, 13, 14, 15, 129})
        QTest::addRow("%d", type) << type;
}

void TestDeprecatedPlayers::otherEventsOfAPlayerReachNobody()
{
    QFETCH(const int, type);
    m_session->run(QString(hearing) + "stb_media.CreatePlayer()");
    RecordingPlatform::fire(1, type);
    RecordingPlatform::fire(1, KVR_EVENT_POSITION);
    // Events keep their order, so the other one would be here by now.
    QTRY_VERIFY(m_session->run("heard").result.contains("[1,3]"));
    QCOMPARE(m_session->run("heard").result, QString("[[1,3]]"));
}

void TestDeprecatedPlayers::theDescriptionIsThatOfTheLastEvent()
{
    const auto description = [this] {
        return m_session->plugin().evaluate("stb_media.getEventDescription()").toString();
    };
    QCOMPARE(description(), QString(R"({"id":"0","type":"0"})"));
    RecordingPlatform::answerOnce("KVR_CreatePlayer", 3);
    m_session->run("stb_media.CreatePlayer()");
    RecordingPlatform::fire(3, KVR_EVENT_POSITION);
    QTRY_COMPARE(description(), QString(R"({"id":"3","type":"3"})"));
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_HDMI, -128);
    QTRY_COMPARE(description(), QString(R"({"id":"-128","type":"144"})"));
    QCOMPARE(description(), QString(R"({"id":"-128","type":"144"})"));
}

void TestDeprecatedPlayers::theHandlerRunsAfterEveryEventUntilItIsEmptied()
{
    m_session->run("var seen = ''; stb_media.CreatePlayer();"
                   "stb_media.onEvent = 'seen += stb_media.getEventDescription()'");
    RecordingPlatform::fire(1, 1);
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_HDMI, 2);
    const QString both = R"({"id":"1","type":"1"}{"id":"2","type":"144"})";
    QTRY_COMPARE(m_session->plugin().evaluate("seen").toString(), both);

    m_session->run("stb_media.onEvent = ''; seen = 'nothing'");
    RecordingPlatform::fire(1, 2);
    QTRY_COMPARE(m_session->plugin().evaluate("stb_media.getEventDescription()").toString(),
                 QString(R"({"id":"1","type":"2"})"));
    QCOMPARE(m_session->plugin().evaluate("seen").toString(), QString("nothing"));
}

QTEST_MAIN(TestDeprecatedPlayers)

#include "tst_deprecatedplayers.moc"
