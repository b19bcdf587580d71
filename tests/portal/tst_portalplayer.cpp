// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"

#include <QTest>

using namespace RecordingPlatform;

namespace {

// The call by which the portal plays one of its clips.
QByteArray playing(const char *clip, int player = 1)
{
    return "KVR_PlayHttp(" + QByteArray::number(player) + ", "
        + PortalPage::url().resolved(QUrl(QString("media/") + clip)).toEncoded() + ", , -1, -1, -1)";
}

// Has seconds pass in a fifteenth of their time.
const char *const fasterTimers =
    "var slow = setTimeout; setTimeout = function (action, delay) { return slow(action, delay / 15); };";

KVR_Track track(int id, const char *description, int supported = 1)
{
    KVR_Track track = {};
    track.id = id;
    track.supported = supported;
    qstrncpy(track.descr, description, sizeof track.descr);
    return track;
}

} // namespace

/// What the portal has its player do, and what it tells of it.
class TestPortalPlayer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theFirstChannelPlaysAtTheStart();
    void theChannelWatchedLastPlaysAtTheNextStart();
    void aNewBoxIsMadeAudible_data();
    void aNewBoxIsMadeAudible();
    void okPlaysAChannelAndThenShowsIt();
    void theFullScreenChangesChannels_data();
    void theFullScreenChangesChannels();
    void theStateIsTold_data();
    void theStateIsTold();
    void eventsOfOtherPlayersAreNotOurs();
    void aPlayerThatTheBoxRefusesIsSaidAndTriedAgain();
    void aStreamThatTheBoxRefusesIsSaid();
    void aBrokenChannelCanBeLeftAndTriedAgain();
    void aClipIsTakenBackBeforeItsEnd();
    void aLiveStreamIsLeftAlone();
    void aClipThatEndsIsPlayedAgain();
    void tracksAreListedAndChosen();
    void aTrackThatTheBoxCannotPlayIsMarked();
    void theTracksOfAnotherChannelReplaceThem();
    void theBarGoesByItselfAndComesBack();
    void theBarStaysWhileNothingMoves();
    void volumeKeysWorkOnEveryScreen_data();
    void volumeKeysWorkOnEveryScreen();
    void leavingThePageClosesThePlayer();
    void nothingIsAskedWhileNothingHappens();

private:
    /// Until so many seconds have passed for the page.
    void waitForPage(int seconds);
    void become(int state, long long position = 0, long long duration = 0);

    PortalPage m_portal;
};

void TestPortalPlayer::init()
{
    reset();
    PortalPage::playerIs(KVR_PLAYER_PLAYING);
    answer("KVR_GetVolume", 30);
    QVERIFY(m_portal.open());
}

void TestPortalPlayer::cleanup()
{
    QCOMPARE(m_portal.errors(), QStringList());
    m_portal.forget();
    m_portal.close();
}

// The player comes into a state and says so.
void TestPortalPlayer::become(int state, long long position, long long duration)
{
    PortalPage::playerIs(state, position, duration);
    fire(1, KVR_EVENT_STATE);
    waitUntilFired();
    QCoreApplication::processEvents();
}

void TestPortalPlayer::theFirstChannelPlaysAtTheStart()
{
    const QByteArrayList calls = takeCalls();
    QCOMPARE(calls.count("KVR_CreatePlayer()"), 1);
    QVERIFY(calls.contains(playing("testcard.mkv")));
    QVERIFY(calls.contains("KVR_SetSubtitlesVisible(1, 0)"));
    QCOMPARE(m_portal.text("#playing-kind"), QString("CHANNEL 1"));
    QCOMPARE(m_portal.text("#playing-name"), QString("Test card"));
    QCOMPARE(m_portal.text(".chosen .name"), QString("Test card Two languages, two subtitles"));
}

void TestPortalPlayer::theChannelWatchedLastPlaysAtTheNextStart()
{
    m_portal.press("Down*2 Return");
    QVERIFY(takeCalls().contains(playing("clock.mkv")));
    m_portal.close();
    reset();
    QVERIFY(m_portal.open());
    QVERIFY(takeCalls().contains(playing("clock.mkv")));
    QCOMPARE(m_portal.text("#playing-name"), QString("Clock"));
}

void TestPortalPlayer::aNewBoxIsMadeAudible_data()
{
    QTest::addColumn<int>("volume");
    QTest::addColumn<QByteArrayList>("expected");
    QTest::newRow("silent") << 0 << QByteArrayList{"KVR_SetVolume(1, 50)"};
    QTest::newRow("quiet") << 1 << QByteArrayList();
    QTest::newRow("loud") << 100 << QByteArrayList();
}

void TestPortalPlayer::aNewBoxIsMadeAudible()
{
    QFETCH(int, volume);
    m_portal.close();
    reset();
    answer("KVR_GetVolume", volume);
    QVERIFY(m_portal.open());
    // The first is the script object's own.
    QTEST(PortalPage::takeCalls("KVR_SetVolume").mid(1), "expected");
}

void TestPortalPlayer::okPlaysAChannelAndThenShowsIt()
{
    takeCalls();
    m_portal.press("Down Return");
    QCOMPARE(PortalPage::takeCalls("KVR_PlayHttp"), QByteArrayList{playing("life.mkv")});
    QCOMPARE(m_portal.screen(), QString("home"));
    QCOMPARE(m_portal.focused(), QString("channel-2"));
    QCOMPARE(m_portal.text("#playing-name"), QString("Life"));
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_Play"), QByteArrayList());
    QCOMPARE(m_portal.screen(), QString("video"));
}

void TestPortalPlayer::theFullScreenChangesChannels_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("down") << "Down" << QByteArray("life.mkv");
    QTest::newRow("up to the last") << "Up" << QByteArray("clock.mkv");
    QTest::newRow("down to the first") << "Down*3" << QByteArray("testcard.mkv");
}

void TestPortalPlayer::theFullScreenChangesChannels()
{
    QFETCH(QString, keys);
    QFETCH(QByteArray, expected);
    m_portal.press("Return");
    takeCalls();
    m_portal.press(keys);
    QCOMPARE(PortalPage::takeLastCall("KVR_PlayHttp"), playing(expected));
    QCOMPARE(m_portal.screen(), QString("video"));
}

void TestPortalPlayer::theStateIsTold_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("note");
    QTest::newRow("idle") << int(KVR_PLAYER_IDLE) << "Stopped"
                          << "Stopped";
    QTest::newRow("opening") << int(KVR_PLAYER_OPENING) << QString::fromUtf8("Opening…")
                             << QString::fromUtf8("Opening…");
    QTest::newRow("playing") << int(KVR_PLAYER_PLAYING) << "Playing"
                             << "";
    QTest::newRow("paused") << int(KVR_PLAYER_PAUSED) << "Paused"
                            << "Paused";
    QTest::newRow("error") << int(KVR_PLAYER_ERROR) << "This cannot be played"
                           << "This cannot be played";
}

void TestPortalPlayer::theStateIsTold()
{
    QFETCH(int, state);
    become(state == KVR_PLAYER_IDLE ? KVR_PLAYER_PLAYING : KVR_PLAYER_IDLE);
    become(state);
    QTEST(m_portal.text("#playing-state"), "text");
    QTEST(m_portal.text("#picture-note"), "note");
}

void TestPortalPlayer::eventsOfOtherPlayersAreNotOurs()
{
    PortalPage::playerIs(KVR_PLAYER_ERROR);
    m_portal.evaluate("StbMedia.eventCallback(2, 1)");
    QCOMPARE(m_portal.text("#playing-state"), QString("Playing"));
    m_portal.evaluate("StbMedia.eventCallback(1, 1)");
    QCOMPARE(m_portal.text("#playing-state"), QString("This cannot be played"));
}

void TestPortalPlayer::aPlayerThatTheBoxRefusesIsSaidAndTriedAgain()
{
    m_portal.close();
    reset();
    answerOnce("KVR_CreatePlayer", -1);
    QVERIFY(m_portal.open());
    QCOMPARE(m_portal.text("#picture-note"), QString("The box has no player to give (-1)"));
    QCOMPARE(PortalPage::takeCalls("KVR_PlayHttp"), QByteArrayList());

    PortalPage::playerIs(KVR_PLAYER_PLAYING);
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_PlayHttp"), QByteArrayList{playing("testcard.mkv")});
    QCOMPARE(m_portal.screen(), QString("home"));
    QCOMPARE(m_portal.text("#picture-note"), QString());
}

void TestPortalPlayer::aStreamThatTheBoxRefusesIsSaid()
{
    answerOnce("KVR_PlayHttp", KVR_ERR_NOT_SUPPORTED);
    m_portal.press("Down Return");
    QCOMPARE(m_portal.text("#picture-note"), QString("The box refuses to play this (-2)"));
    m_portal.press("Down Return");
    QCOMPARE(m_portal.text("#picture-note"), QString());
    QCOMPARE(m_portal.text("#playing-name"), QString("Clock"));
}

void TestPortalPlayer::aBrokenChannelCanBeLeftAndTriedAgain()
{
    become(KVR_PLAYER_ERROR);
    takeCalls();
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeCalls("KVR_PlayHttp"), QByteArrayList{playing("testcard.mkv")});
    QCOMPARE(m_portal.screen(), QString("home"));
    m_portal.press("Down Return");
    QCOMPARE(PortalPage::takeCalls("KVR_PlayHttp"), QByteArrayList{playing("life.mkv")});
}

void TestPortalPlayer::aClipIsTakenBackBeforeItsEnd()
{
    PortalPage::playerIs(KVR_PLAYER_PLAYING, 28500, 30000);
    takeCalls();
    m_portal.evaluate("StbMedia.eventCallback(1, 3)");
    QCOMPARE(PortalPage::takeCalls("KVR_SetPosition"), QByteArrayList());
    PortalPage::playerIs(KVR_PLAYER_PLAYING, 29001, 30000);
    m_portal.evaluate("StbMedia.eventCallback(1, 3)");
    QCOMPARE(PortalPage::takeCalls("KVR_SetPosition"), QByteArrayList{"KVR_SetPosition(1, 0)"});
}

void TestPortalPlayer::aLiveStreamIsLeftAlone()
{
    PortalPage::playerIs(KVR_PLAYER_PLAYING, 1000000, 0);
    takeCalls();
    m_portal.evaluate("StbMedia.eventCallback(1, 3)");
    QCOMPARE(PortalPage::takeCalls("KVR_SetPosition"), QByteArrayList());
}

void TestPortalPlayer::aClipThatEndsIsPlayedAgain()
{
    takeCalls();
    become(KVR_PLAYER_ENDED);
    QCOMPARE(PortalPage::takeCalls("KVR_PlayHttp"), QByteArrayList{playing("testcard.mkv")});
}

void TestPortalPlayer::tracksAreListedAndChosen()
{
    answer("KVR_GetAudioTrackList", Answer::array(QVector<KVR_Track>{track(1, "eng, aac"), track(2, "xyz, mp2")}));
    answer("KVR_GetSubtitleTrackList", Answer::array(QVector<KVR_Track>{track(7, "ger, dvb"), track(8, "")}));
    answer("KVR_GetAudioPid", 1);
    answer("KVR_GetSubtitlePid", 7);
    m_portal.press("Return Return");
    QCOMPARE(m_portal.rows(),
             QStringList({"Record this channel", "Sound", QString::fromUtf8("✓ English eng, aac"), "xyz, mp2 xyz, mp2",
                          "Subtitles", QString::fromUtf8("✓ None"), "German ger, dvb", "Track 8"}));

    takeCalls();
    m_portal.press("Down*2 Return");
    QCOMPARE(m_portal.focused(), QString("audio-2"));
    QCOMPARE(PortalPage::takeCalls("KVR_SetAudio"), QByteArrayList{"KVR_SetAudioPid(1, 2)"});
    m_portal.press("Down*2 Return");
    QCOMPARE(PortalPage::takeCalls("KVR_SetSubtitle"),
             QByteArrayList({"KVR_SetSubtitlePid(1, 7)", "KVR_SetSubtitlesVisible(1, 1)"}));

    answer("KVR_GetAudioPid", 2);
    answer("KVR_IsSubtitlesVisible", 1);
    fire(1, KVR_EVENT_SUBTITLES);
    QTRY_COMPARE(m_portal.texts(".row .mark"), QStringList({"", "✓", "", "✓", ""}));
    QCOMPARE(m_portal.focused(), QString("subtitles-7"));

    takeCalls();
    m_portal.press("Up Return");
    QCOMPARE(PortalPage::takeCalls("KVR_SetSubtitle"), QByteArrayList{"KVR_SetSubtitlesVisible(1, 0)"});
    m_portal.press("Backspace");
    QCOMPARE(m_portal.text("#playing-tracks"), QString::fromUtf8("Sound: xyz, mp2 · Subtitles: German"));
}

void TestPortalPlayer::aTrackThatTheBoxCannotPlayIsMarked()
{
    answer("KVR_GetAudioTrackList", Answer::array(QVector<KVR_Track>{track(1, "eng, dts", 0)}));
    m_portal.press("Return Return");
    QVERIFY(m_portal.rows().contains("English this box cannot play it"));
}

void TestPortalPlayer::theTracksOfAnotherChannelReplaceThem()
{
    answer("KVR_GetAudioTrackList", Answer::array(QVector<KVR_Track>{track(1, "eng"), track(2, "ger")}));
    m_portal.press("Return Return");
    QCOMPARE(m_portal.rows().size(), 6);
    answer("KVR_GetAudioTrackList", KVR_ERR_INVALID_ID);
    fire(1, KVR_EVENT_AUDIO);
    QTRY_COMPARE(m_portal.rows().size(), 4);
}

void TestPortalPlayer::waitForPage(int seconds)
{
    m_portal.evaluate(
        QString("var havePassed = false; setTimeout(function () { havePassed = true; }, %1)").arg(1000 * seconds));
    QTRY_VERIFY(m_portal.evaluate("havePassed").toBool());
}

void TestPortalPlayer::theBarGoesByItselfAndComesBack()
{
    m_portal.evaluate(fasterTimers);
    m_portal.press("Return");
    QVERIFY(m_portal.isShown("#playing"));
    QTRY_VERIFY(!m_portal.isShown("#playing") && !m_portal.isShown("footer"));
    m_portal.press("Left");
    QVERIFY(m_portal.isShown("#playing") && m_portal.isShown("footer"));
}

void TestPortalPlayer::theBarStaysWhileNothingMoves()
{
    m_portal.evaluate(fasterTimers);
    m_portal.press("Return");
    PortalPage::playerIs(KVR_PLAYER_OPENING);
    waitForPage(7);
    QVERIFY(m_portal.isShown("#playing"));
}

void TestPortalPlayer::volumeKeysWorkOnEveryScreen_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("home") << "";
    QTest::newRow("full screen") << "Return";
    QTest::newRow("members") << "Down*5 Return Return";
}

void TestPortalPlayer::volumeKeysWorkOnEveryScreen()
{
    QFETCH(QString, way);
    m_portal.press(way);
    takeCalls();
    m_portal.press("VolumeUp");
    QCOMPARE(PortalPage::takeCalls("KVR_Set"), QByteArrayList({"KVR_SetVolume(1, 35)", "KVR_SetMute(1, 0)"}));
    QCOMPARE(m_portal.text("#notice"), QString("Volume: 30"));
    QVERIFY(m_portal.isShown("#notice"));
    m_portal.press("VolumeDown");
    QCOMPARE(PortalPage::takeCalls("KVR_SetVolume"), QByteArrayList{"KVR_SetVolume(1, 25)"});
    answer("KVR_GetVolume", 99);
    m_portal.press("VolumeUp");
    QCOMPARE(PortalPage::takeCalls("KVR_SetVolume"), QByteArrayList{"KVR_SetVolume(1, 100)"});
    m_portal.press("VolumeMute");
    QCOMPARE(PortalPage::takeCalls("KVR_SetMute"), QByteArrayList{"KVR_SetMute(1, 1)"});
}

void TestPortalPlayer::leavingThePageClosesThePlayer()
{
    takeCalls();
    QVERIFY(m_portal.plugin().load(PortalPage::url()));
    const QByteArrayList calls = takeCalls();
    const int closed = calls.indexOf("KVR_ClosePlayer(1)");
    QVERIFY(closed >= 0 && closed < calls.indexOf("KVR_CreatePlayer()"));
    QVERIFY(calls.contains(playing("testcard.mkv", 2)));
    QVERIFY(m_portal.plugin().loadHtml("<title>Another</title>"));
    QCOMPARE(PortalPage::takeCalls("KVR_ClosePlayer"), QByteArrayList{"KVR_ClosePlayer(2)"});
    m_portal.evaluate("errors = []");
}

void TestPortalPlayer::nothingIsAskedWhileNothingHappens()
{
    takeCalls();
    QTest::qWait(1500);
    QCOMPARE(takeCalls(), QByteArrayList());
}

QTEST_MAIN(TestPortalPlayer)
#include "tst_portalplayer.moc"
