// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QtTest>
#include <memory>

namespace {

const char *const callbackTypes[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "11", "14", "15"};

QByteArray creationCalls(int id, int volume, int mute)
{
    QByteArrayList calls = {"KVR_CreatePlayer()"};
    for (const char *const type : callbackTypes)
        calls += "KVR_RegisterEventHandler(" + QByteArray::number(id) + ", " + type + ", handler)";
    calls += QString("KVR_SetVolume(%1, %2)").arg(id).arg(volume).toUtf8();
    calls += QString("KVR_SetMute(%1, %2)").arg(id).arg(mute).toUtf8();
    return calls.join('\n');
}

QByteArray closingCalls(int id)
{
    const QByteArray inParentheses = '(' + QByteArray::number(id) + ')';
    return "KVR_GetVolume" + inParentheses + "\nKVR_IsMute" + inParentheses + "\nKVR_ClosePlayer" + inParentheses;
}

} // namespace

// The life of players: made, given a file to play, closed by the page or left to the browser.
class TestStbMediaPlayers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    void aNewPlayerHasItsCallbacksAndTheBoxesSound_data();
    void aNewPlayerHasItsCallbacksAndTheBoxesSound();
    void aRefusedPlayerStillGetsTheBoxesSound_data();
    void aRefusedPlayerStillGetsTheBoxesSound();
    void aFailedRegistrationChangesNothing();
    void closingKeepsTheSoundOfAnyPlayer_data();
    void closingKeepsTheSoundOfAnyPlayer();
    void closingLeavesTheCallbacksAlone();
    void countsThePlatformsPlayers();

    void filesAreLookedForInTheStorage_data();
    void filesAreLookedForInTheStorage();
    void onlyATextIsASubtitlePath_data();
    void onlyATextIsASubtitlePath();
    void aNumberIsNoSubtitlePathHoweverWritten();
    void subtitlesMayBeLeftOutByAnyName_data();
    void subtitlesMayBeLeftOutByAnyName();

    void theEndClosesThePlayersLeftOpen();
    void theEndKeepsTheSoundOfThePlayersLeftOpen();
    void theEndOfAPageLeavesItsPlayersOpen();
    void aPlayerMadeTwiceIsClosedOnce();
    void aPlayerWhoseClosingFailsIsNotClosedAgain();

private:
    void restart();

    std::unique_ptr<ScriptSession> m_session;
};

void TestStbMediaPlayers::init()
{
    RecordingPlatform::reset();
    QFile::remove("/home/user/config/config_files/qtstbapi.conf");
    if (!m_session)
        restart();
}

void TestStbMediaPlayers::cleanup()
{
    if (!m_session->plugin().browser())
        m_session.reset();
}

void TestStbMediaPlayers::cleanupTestCase()
{
    m_session.reset();
}

// A browser that knows of no players yet.
void TestStbMediaPlayers::restart()
{
    m_session.reset();
    RecordingPlatform::reset();
    QFile::remove("/home/user/config/config_files/qtstbapi.conf");
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    QVERIFY(m_session->setTracing(true));
}

void TestStbMediaPlayers::aNewPlayerHasItsCallbacksAndTheBoxesSound_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("the first identifier there can be") << 0;
    QTest::newRow("a small one") << 7;
    QTest::newRow("the last one there can be") << INT_MAX;
}

void TestStbMediaPlayers::aNewPlayerHasItsCallbacksAndTheBoxesSound()
{
    QFETCH(int, id);
    RecordingPlatform::answer("KVR_CreatePlayer", id);
    const ScriptSession::Outcome outcome = m_session->run("StbMedia.CreatePlayer()");
    QCOMPARE(outcome.result, QString::number(id));
    QCOMPARE(outcome.calls, creationCalls(id, 0, 0));
    QCOMPARE(outcome.traces,
             ScriptSession::quotedLines(QString("StbMedia.CreatePlayer()\n"
                                                "StbMedia.SetVolume(%1, 0)\n"
                                                "StbMedia.SetMute(%1, 0)")
                                            .arg(id)));
}

void TestStbMediaPlayers::aRefusedPlayerStillGetsTheBoxesSound_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {-1, -127, -128, INT_MIN})
        QTest::addRow("%d", code) << code;
}

void TestStbMediaPlayers::aRefusedPlayerStillGetsTheBoxesSound()
{
    QFETCH(int, code);
    restart();
    RecordingPlatform::answer("KVR_CreatePlayer", code);
    const ScriptSession::Outcome outcome = m_session->run("StbMedia.CreatePlayer()");
    QCOMPARE(outcome.result, QString::number(code));
    QCOMPARE(QString(outcome.calls),
             QString("KVR_CreatePlayer()\n"
                     "KVR_SetVolume(%1, 0)\n"
                     "KVR_SetMute(%1, 0)")
                 .arg(code));
    QCOMPARE(outcome.traces,
             ScriptSession::quotedLines(QString("StbMedia.CreatePlayer()\n"
                                                "StbMedia.SetVolume(%1, 0)\n"
                                                "StbMedia.SetMute(%1, 0)")
                                            .arg(code)));
    m_session->plugin().destroy();
    QVERIFY(!RecordingPlatform::calls().join().contains("KVR_ClosePlayer"));
}

void TestStbMediaPlayers::aFailedRegistrationChangesNothing()
{
    RecordingPlatform::answer("KVR_RegisterEventHandler", -1);
    const ScriptSession::Outcome outcome = m_session->run("StbMedia.CreatePlayer()");
    QCOMPARE(outcome.result, QString("1"));
    QCOMPARE(outcome.calls, creationCalls(1, 0, 0));
}

void TestStbMediaPlayers::closingKeepsTheSoundOfAnyPlayer_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("answer");
    QTest::newRow("own player") << "StbMedia.CreatePlayer()" << 1 << 0;
    QTest::newRow("own player, refused") << "StbMedia.CreatePlayer()" << 1 << -1;
    QTest::newRow("never created") << "0" << 42 << 0;
    QTest::newRow("unknown to the platform") << "0" << 42 << -127;
    QTest::newRow("negative") << "0" << -5 << -127;
}

void TestStbMediaPlayers::closingKeepsTheSoundOfAnyPlayer()
{
    QFETCH(QString, before);
    QFETCH(int, id);
    QFETCH(int, answer);
    m_session->run(before);
    RecordingPlatform::answer("KVR_GetVolume", 35);
    RecordingPlatform::answer("KVR_IsMute", 1);
    RecordingPlatform::answer("KVR_ClosePlayer", answer);
    const ScriptSession::Outcome closing = m_session->run(QString("StbMedia.ClosePlayer(%1)").arg(id));
    QCOMPARE(closing.result, QString::number(answer));
    QCOMPARE(closing.calls, closingCalls(id));
    QCOMPARE(closing.traces,
             ScriptSession::quotedLines(QString("StbMedia.ClosePlayer(%1)\n"
                                                "StbMedia.GetVolume(%1)\n"
                                                "StbMedia.IsMute(%1)")
                                            .arg(id)));
    RecordingPlatform::answer("KVR_CreatePlayer", 9);
    QCOMPARE(m_session->run("StbMedia.CreatePlayer()").calls, creationCalls(9, 35, 1));
}

void TestStbMediaPlayers::closingLeavesTheCallbacksAlone()
{
    restart();
    m_session->run("StbMedia.CreatePlayer()");
    QVERIFY(!m_session->run("StbMedia.ClosePlayer(1)").calls.contains("KVR_DeleteEventHandler"));
    m_session->run("StbMedia.CreatePlayer()");
    m_session->plugin().destroy();
    QVERIFY(RecordingPlatform::calls().contains("KVR_ClosePlayer(2)"));
    QVERIFY(!RecordingPlatform::calls().join('\n').contains("KVR_DeleteEventHandler(2,"));
}

void TestStbMediaPlayers::countsThePlatformsPlayers()
{
    m_session->run("StbMedia.CreatePlayer()");
    RecordingPlatform::answer("KVR_GetPlayersCount", 12);
    QCOMPARE(m_session->run("StbMedia.GetPlayersCount()").result, QString("12"));
}

void TestStbMediaPlayers::filesAreLookedForInTheStorage_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("played");
    const auto row = [](const char *path, const char *played) {
        QTest::newRow(*path ? path : "empty") << QString(path) << QString(played);
    };
    row("movie.avi", "/mnt/stbmovie.avi");
    row("/movie.avi", "/mnt/stb/movie.avi");
    row("", "/mnt/stb");
    row("/mnt/stb/a.ts", "/mnt/stb/a.ts");
    row("/mnt/stb", "/mnt/stb");
    row("/media/mnt/stb/a.ts", "/media/mnt/stb/a.ts");
    row("a.ts/mnt/stb", "a.ts/mnt/stb");
    row("/mnt/stbird/a.ts", "/mnt/stbird/a.ts");
    row("/MNT/STB/a.ts", "/mnt/stb/MNT/STB/a.ts");
    row("/Mnt/stb/a.ts", "/mnt/stb/Mnt/stb/a.ts");
    row("mnt/stb/a.ts", "/mnt/stbmnt/stb/a.ts");
    row("/mnt/st", "/mnt/stb/mnt/st");
    row("/фільм №1 %2.avi", "/mnt/stb/фільм №1 %2.avi");
}

void TestStbMediaPlayers::filesAreLookedForInTheStorage()
{
    QFETCH(QString, path);
    QFETCH(QString, played);
    const ScriptSession::Outcome outcome =
        m_session->run(QString("StbMedia.PlayFile(3, '") + path + "', 10, 20, 25, 'movie.srt')");
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(QString::fromUtf8(outcome.calls), "KVR_PlayFile(3, " + played + ", 10, 20, 25, movie.srt, -1, -1, -1)");
    // As the page wrote it, and without a closing parenthesis.
    QCOMPARE(outcome.traces,
             ScriptSession::quoted(QString("StbMedia.PlayFile(3, ") + path + ", 10, 20, 25, movie.srt"));
}

void TestStbMediaPlayers::onlyATextIsASubtitlePath_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("trace");
    QTest::addColumn<bool>("plays");
    const auto refused = [](const char *argument, const char *trace) {
        QTest::newRow(*argument ? argument : "left out") << QString(argument) << QString(trace) << false;
    };
    const auto plays = [](const char *argument, const char *trace) {
        QTest::newRow(argument) << QString(argument) << QString(trace) << true;
    };
    refused("", "");
    refused(", null", "");
    refused(", undefined", "");
    refused(", 0", "0");
    refused(", 5", "5");
    refused(", -5.5", "-5.5");
    refused(", 1e21", "1e+21");
    refused(", NaN", "");
    refused(", new Number(NaN)", "");
    if (!HostedPlugin::hasBoxEngine())
        refused(", Symbol('s.srt')", "");
    refused(", true", "true");
    refused(", false", "false");
    refused(", new Date(86400000)", "1970-01-02T00:00:00.000Z");
    refused(", new Date(NaN)", "");
    refused(", {}", "");
    refused(", {a: new Date(NaN)}", "");
    refused(", {toString: function () { return 's.srt'; }}", "");
    refused(", []", "");
    refused(", ['s.srt']", "");
    refused(", [new Date(NaN)]", "");
    refused(", /s/", "");
    refused(", function () {}", "");
    refused(", window", "");
    refused(", new Number(5)", "5");
    refused(", new Boolean(true)", "true");
    plays(", ''", "");
    plays(", 's.srt'", "s.srt");
    plays(", '5'", "5");
    plays(", '/mnt/stb/%1 ж \"x\".srt'", "/mnt/stb/%1 ж \"x\".srt");
    plays(", new String('s.srt')", "s.srt");
    plays(", String(5)", "5");
    plays(", 's.srt', 7, 8, 9", "s.srt");
}

void TestStbMediaPlayers::onlyATextIsASubtitlePath()
{
    QFETCH(QString, argument);
    QFETCH(QString, trace);
    QFETCH(bool, plays);
    const ScriptSession::Outcome outcome =
        m_session->run(QString("StbMedia.PlayFile(1, 'a.ts', 0, 0, 25") + argument + ")");
    QCOMPARE(outcome.result, QString(plays ? "0" : "-128"));
    QCOMPARE(QString::fromUtf8(outcome.calls),
             plays ? QString("KVR_PlayFile(1, /mnt/stba.ts, 0, 0, 25, ") + trace + ", -1, -1, -1)" : QString());
    QCOMPARE(outcome.traces, ScriptSession::quoted(QString("StbMedia.PlayFile(1, a.ts, 0, 0, 25, ") + trace));
}

void TestStbMediaPlayers::aNumberIsNoSubtitlePathHoweverWritten()
{
    const ScriptSession::Outcome outcome =
        m_session->run("[Infinity, 0x10, -0, 9007199254740993].map(function (number) {"
                       "return StbMedia.PlayFile(1, 'a.ts', 0, 0, 25, number); })");
    QCOMPARE(outcome.result, QString("[-128,-128,-128,-128]"));
    QCOMPARE(outcome.calls, QByteArray());
}

void TestStbMediaPlayers::subtitlesMayBeLeftOutByAnyName_data()
{
    QTest::addColumn<QString>("call");
    for (const char *const call :
         {"StbMedia.PlayFile(1, 'a', 2, 3, 4)",
          "StbMedia['PlayFile(int,QString,qlonglong,qlonglong,double,QVariant)'](1, 'a', 2, 3, 4)",
          "StbMedia.PlayFile.call(null, 1, 'a', 2, 3, 4)", "StbMedia.PlayFile.apply(window, [1, 'a', 2, 3, 4])",
          "(function (play) { return play(1, 'a', 2, 3, 4); })(StbMedia.PlayFile)",
          "(Object.defineProperty(Object.prototype, 5, {get: function () { return 's.srt'; },"
          "configurable: true}), StbMedia.PlayFile(1, 'a', 2, 3, 4))"})
        QTest::newRow(call) << QString(call);
}

// A page leaves them out and finds nothing played, as with anything else that is no text.
void TestStbMediaPlayers::subtitlesMayBeLeftOutByAnyName()
{
    QFETCH(const QString, call);
    const ScriptSession::Outcome outcome = m_session->run(call);
    m_session->run("delete Object.prototype[5]");
    QCOMPARE(outcome.result, QString("-128"));
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(outcome.traces, ScriptSession::quoted("StbMedia.PlayFile(1, a, 2, 3, 4, "));
}

void TestStbMediaPlayers::theEndClosesThePlayersLeftOpen()
{
    restart();
    m_session->run("for (var i = 0; i < 4; ++i) StbMedia.CreatePlayer(); StbMedia.ClosePlayer(2);"
                   "StbMedia.ClosePlayer(77); stb_media.CreatePlayer()");
    m_session->takeOutcome();
    m_session->plugin().destroy();
    const ScriptSession::Outcome outcome = m_session->takeOutcome();
    // In any order, but one player after the other.
    for (const int id : {1, 3, 4}) {
        QCOMPARE(outcome.calls.count("KVR_ClosePlayer(" + QByteArray::number(id) + ')'), 1);
        QVERIFY2(outcome.calls.contains(closingCalls(id)), outcome.calls);
        QVERIFY2(outcome.traces.contains(
                     ScriptSession::quotedLines(QString("StbMedia.GetVolume(%1)\nStbMedia.IsMute(%1)").arg(id))),
                 qPrintable(outcome.traces));
    }
    QVERIFY2(!outcome.calls.contains("KVR_ClosePlayer(2)"), outcome.calls);
    QVERIFY2(!outcome.calls.contains("KVR_ClosePlayer(77)"), outcome.calls);
    // The player of the other object is that one's, and keeps its sound to itself.
    QCOMPARE(outcome.calls.count("KVR_ClosePlayer"), 4);
    QCOMPARE(outcome.calls.count("KVR_GetVolume"), 3);
    QCOMPARE(outcome.traces.count("StbMedia."), 6);
}

void TestStbMediaPlayers::theEndKeepsTheSoundOfThePlayersLeftOpen()
{
    restart();
    m_session->run("StbMedia.CreatePlayer()");
    RecordingPlatform::answer("KVR_GetVolume", 64);
    RecordingPlatform::answer("KVR_IsMute", 1);
    m_session.reset();
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    RecordingPlatform::answer("KVR_CreatePlayer", 5);
    QCOMPARE(m_session->run("StbMedia.CreatePlayer()").calls, creationCalls(5, 64, 1));
}

void TestStbMediaPlayers::theEndOfAPageLeavesItsPlayersOpen()
{
    m_session->run("StbMedia.CreatePlayer()");
    m_session->takeOutcome();
    QVERIFY(m_session->plugin().loadHtml("<!DOCTYPE html><title>Next</title>"));
    QCOMPARE(m_session->takeOutcome().calls, QByteArray());
    QCOMPARE(m_session->run("StbMedia.Pause(1)").calls, QByteArray("KVR_Pause(1)"));
    m_session->plugin().destroy();
    QVERIFY(m_session->takeOutcome().calls.contains(closingCalls(1)));
}

void TestStbMediaPlayers::aPlayerMadeTwiceIsClosedOnce()
{
    restart();
    RecordingPlatform::answer("KVR_CreatePlayer", 6);
    m_session->run("StbMedia.CreatePlayer(); StbMedia.CreatePlayer()");
    m_session->plugin().destroy();
    QCOMPARE(m_session->takeOutcome().calls.count("KVR_ClosePlayer(6)"), 1);
}

void TestStbMediaPlayers::aPlayerWhoseClosingFailsIsNotClosedAgain()
{
    restart();
    RecordingPlatform::answer("KVR_ClosePlayer", -1);
    m_session->run("StbMedia.CreatePlayer(); StbMedia.ClosePlayer(1)");
    m_session->plugin().destroy();
    QVERIFY(!m_session->takeOutcome().calls.contains("KVR_ClosePlayer"));
}

QTEST_MAIN(TestStbMediaPlayers)
#include "tst_stbmediaplayers.moc"
