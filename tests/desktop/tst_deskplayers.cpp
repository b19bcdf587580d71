// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "OpenFiles.h"
#include "Playing.h"
#include "TestMedia.h"

#include "platform/desktop/DeskBox.h"

#include "tests/support/BoxFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <vector>

namespace {

constexpr char bars[] = "/mnt/stb/bars.ts";
constexpr char film[] = "/mnt/stb/film.mkv";
constexpr char wide[] = "/mnt/stb/wide.mkv";
constexpr char narrow[] = "/mnt/stb/narrow.mkv";
constexpr char twoPictures[] = "/mnt/stb/two.ts";
constexpr int secondVideoPid = 513;
constexpr int barsSeconds = 24;
constexpr char brief[] = "/mnt/stb/brief.ts";
constexpr int briefSeconds = 3;
constexpr int frameTime = 40; // milliseconds
const QColor blue(0x20, 0x40, 0xc0);

using ListTracks = int (*)(KVR_ID, KVR_Track **, int *);

QStringList tracks(KVR_ID id, ListTracks list)
{
    KVR_Track *array = nullptr;
    int count = 0;
    if (list(id, &array, &count) != KVR_OK)
        return {"failed"};
    QStringList result;
    for (int i = 0; i < count; ++i) {
        result += QString("%1 %2 %3 %4")
                      .arg(array[i].id)
                      .arg(QString::fromLatin1(array[i].descr))
                      .arg(array[i].supported)
                      .arg(array[i].encoding);
    }
    free(array);
    return result;
}

// Whether the position comes to move at this speed. The first moments are the change's own, and a busy computer may not
// keep up all the time.
bool moves(KVR_ID id, int speed)
{
    constexpr int attempts = 8;
    for (int i = 0; i < attempts; ++i) {
        QElapsedTimer timer;
        timer.start();
        const long long before = KVR_GetPosition(id);
        QTest::qWait(600);
        const double measured = double(KVR_GetPosition(id) - before) / double(timer.elapsed());
        if (std::abs(measured - speed) < 0.3 * std::abs(speed))
            return true;
        qWarning("moves at %g times normal speed, not %d", measured, speed);
    }
    return false;
}

KVR_ID player = -1;
std::atomic<long long> excess; // of a position that was told over the duration, milliseconds

void noteExcess(int)
{
    const long long position = KVR_GetPosition(player);
    const long long duration = KVR_GetDuration(player);
    if (duration > 0)
        excess = std::max<long long>(excess, position - duration);
}

int playFile(KVR_ID id, const char *path, long long position = 0, const char *subtitles = "")
{
    return KVR_PlayFile(id, path, position, 0, 0, subtitles, -1, -1, -1);
}

} // namespace

/// What players make of files.
class TestDeskPlayers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void aFilePlaysToItsEnd();
    void aFilePlaysFromAPosition();
    void tracksAreTheStreams();
    void theTracksToBeginWithCanBeChosen();
    void theSubtitlesToBeginWithCanBeChosen();
    void aPlaylistPlaysToTheEndOfItsLastFile();
    void soundAloneEndsWhereItEnds();
    void anAudioTrackIsChosenByItsPid();
    void pauseHoldsAndContinueGoesOn();
    void nextFrameShowsOneFrame();
    void aSeekGoesWhereItShould_data();
    void aSeekGoesWhereItShould();
    void beyondTheEndIsTheEnd_data();
    void beyondTheEndIsTheEnd();
    void speedMovesThePosition_data();
    void speedMovesThePosition();
    void playingBackwardsEndsAtTheBeginning();
    void playingBackwardsGoesOnFromWhereASeekLeads();
    void theNextFrameEndsPlayingBackwards();
    void nothingLoadedMeansInvalidState();
    void wrongArgumentsAreRefused();
    void aNewFileReplacesTheOldOne();
    void positionEventsComeTwiceASecond();
    void volumeMuteAndZoomAreKeptAndTold();
    void settingsOutliveARequest();
    void pictureFillsTheWindowAsTheDisplayModeSays_data();
    void pictureFillsTheWindowAsTheDisplayModeSays();
    void zoomScalesThePicture_data();
    void zoomScalesThePicture();
    void aStretchedPictureIsZoomedInWhateverWindow();
    void aPausedPictureFollowsItsWindow();
    void aHiddenWindowGetsItsPictureBack();
    void subtitlesAreChosenShownAndHidden();
    void anExternalSubtitleFileIsShown();
    void whatLiesBesideAFileIsNoPartOfIt();
    void anUndecodableTrackIsToldApart();
    void aPlayerWithoutAnythingHasNoPicture();
    void thereAreSixteenPlayersAtMost();

private:
    KVR_ID m_id = -1;
};

void TestDeskPlayers::initTestCase()
{
    QVERIFY(TestMedia::makeBars(bars, barsSeconds));
    QVERIFY(TestMedia::makeBars(brief, briefSeconds));
    QVERIFY(TestMedia::makeFilm(film, 10));
    QVERIFY(TestMedia::makeColor(wide, blue, "640x360", 10));
    QVERIFY(TestMedia::makeColor(narrow, blue, "480x360", 10));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-map", "0:0", "-c", "copy", "-streamid",
                               QString("0:%1").arg(TestMedia::videoPid), "-streamid",
                               QString("1:%1").arg(secondVideoPid), twoPictures}));
}

void TestDeskPlayers::init()
{
    m_id = KVR_CreatePlayer();
    QVERIFY(m_id > 0);
}

void TestDeskPlayers::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskPlayers::aFilePlaysToItsEnd()
{
    const DeskEvents events(m_id);
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_IDLE));
    QCOMPARE(playFile(m_id, bars, (barsSeconds - 2) * 1000), int(KVR_OK));
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_OPENING));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QVERIFY(qAbs(KVR_GetDuration(m_id) - barsSeconds * 1000) < 200);
    QCOMPARE(KVR_GetFps(m_id), 25.0);
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
    QCOMPARE(KVR_GetPosition(m_id), 0LL);
    QCOMPARE(KVR_GetDuration(m_id), 0LL);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_STATE), 3);
    QVERIFY(DeskEvents::count(KVR_EVENT_METADATA) >= 1);
    QVERIFY(DeskEvents::count(KVR_EVENT_VIDEO) >= 1);
    QVERIFY(DeskEvents::count(KVR_EVENT_AUDIO) >= 1);
    const QList<DeskEvents::Event> all = DeskEvents::all();
    for (const DeskEvents::Event &event : all)
        QCOMPARE(event.argument, m_id);
}

void TestDeskPlayers::aFilePlaysFromAPosition()
{
    playFile(m_id, bars, 6000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QTRY_VERIFY(KVR_GetPosition(m_id) >= 5900);
    QVERIFY(KVR_GetPosition(m_id) < 8000);
}

void TestDeskPlayers::tracksAreTheStreams()
{
    QCOMPARE(tracks(m_id, KVR_GetAudioTrackList), QStringList());
    QCOMPARE(KVR_GetVideoPid(m_id), int(KVR_ERR_FAILED));
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(tracks(m_id, KVR_GetVideoTrackList), QStringList("512 h264, 640x360 1 0"));
    QCOMPARE(tracks(m_id, KVR_GetAudioTrackList), QStringList({"650 rus, mp2, 1 ch 1 0", "651 eng, mp2, 1 ch 1 0"}));
    QCOMPARE(tracks(m_id, KVR_GetSubtitleTrackList), QStringList());
    QCOMPARE(tracks(m_id, KVR_GetTeletextTrackList), QStringList());
    QCOMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
    QCOMPARE(KVR_GetAudioPid(m_id), TestMedia::russianPid);
    QCOMPARE(KVR_GetSubtitlePid(m_id), int(KVR_ERR_FAILED));
    QCOMPARE(KVR_GetTeletextPid(m_id), int(KVR_ERR_FAILED));
}

void TestDeskPlayers::theTracksToBeginWithCanBeChosen()
{
    QCOMPARE(KVR_PlayFile(m_id, bars, 0, 0, 0, "", -1, TestMedia::englishPid, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetAudioPid(m_id), TestMedia::englishPid);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));

    QCOMPARE(KVR_PlayFile(m_id, twoPictures, 0, 0, 0, "", secondVideoPid, -1, -1), int(KVR_OK));
    QTRY_COMPARE(KVR_GetVideoPid(m_id), secondVideoPid);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
}

void TestDeskPlayers::theSubtitlesToBeginWithCanBeChosen()
{
    constexpr char others[] = "/mnt/stb/others.srt";
    QVERIFY(TestMedia::makeSubtitles(others, "WWWWWWWW"));
    playFile(m_id, film);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    const int english = tracks(m_id, KVR_GetSubtitleTrackList).constLast().section(' ', 0, 0).toInt();
    for (const char *file : {"", others}) {
        QCOMPARE(KVR_PlayFile(m_id, film, 0, 0, 0, file, -1, -1, english), int(KVR_OK));
        QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
        QTRY_COMPARE(KVR_GetSubtitlePid(m_id), english);
    }
}

void TestDeskPlayers::aPlaylistPlaysToTheEndOfItsLastFile()
{
    constexpr char list[] = "/mnt/stb/list.m3u";
    constexpr char brief[] = "/mnt/stb/brief.mkv";
    QVERIFY(TestMedia::makeColor(brief, blue, "640x360", 1));
    writeBoxFile(list, QByteArray("#EXTM3U\n") + brief + '\n' + twoPictures + '\n');
    playFile(m_id, list);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QVERIFY(KVR_GetVideoPid(m_id) != TestMedia::videoPid);
    QTRY_COMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_SetPosition(m_id, LLONG_MAX), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

// Only of a picture the duration is known for sure.
void TestDeskPlayers::soundAloneEndsWhereItEnds()
{
    constexpr char whole[] = "/mnt/stb/whole.m4a";
    constexpr char cut[] = "/mnt/stb/cut.m4a";
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:1", "-c:a", "aac", "-movflags", "faststart", whole}));
    const QByteArray content = boxFile(whole);
    writeBoxFile(cut, content.left(content.size() / 8));
    playFile(m_id, cut);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QVERIFY(KVR_GetDuration(m_id) > (barsSeconds - 1) * 1000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskPlayers::anAudioTrackIsChosenByItsPid()
{
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    const DeskEvents events(m_id);
    QCOMPARE(KVR_SetAudioPid(m_id, TestMedia::englishPid), int(KVR_OK));
    QCOMPARE(KVR_GetAudioPid(m_id), TestMedia::englishPid);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_AUDIO), 1);
    QCOMPARE(KVR_SetAudioPid(m_id, TestMedia::videoPid), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetAudioPid(m_id, -1), int(KVR_OK));
    QCOMPARE(KVR_GetAudioPid(m_id), int(KVR_ERR_FAILED));
    // When the core has carried out a later order, it has told of this one, and must agree.
    DeskEvents::clear();
    QCOMPARE(KVR_SetPosition(m_id, 9000), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) > 9100);
    QCOMPARE(KVR_GetAudioPid(m_id), int(KVR_ERR_FAILED));
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
}

void TestDeskPlayers::pauseHoldsAndContinueGoesOn()
{
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_Pause(m_id), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    QTRY_VERIFY(holds(m_id));
    const long long held = KVR_GetPosition(m_id);
    QCOMPARE(KVR_Continue(m_id), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QTRY_VERIFY(KVR_GetPosition(m_id) > held + 200);
    QVERIFY(KVR_GetPosition(m_id) < held + 2000);
}

void TestDeskPlayers::nextFrameShowsOneFrame()
{
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    KVR_Pause(m_id);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    QTRY_VERIFY(holds(m_id));
    for (int i = 0; i < 3; ++i) {
        const long long before = KVR_GetPosition(m_id);
        const QImage picture = playerPicture(m_id);
        QCOMPARE(KVR_NextFrame(m_id), int(KVR_OK));
        QTRY_COMPARE(KVR_GetPosition(m_id), before + frameTime);
        QTRY_VERIFY(playerPicture(m_id) != picture);
        QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    }
}

void TestDeskPlayers::aSeekGoesWhereItShould_data()
{
    QTest::addColumn<bool>("paused");
    QTest::addColumn<long long>("target");
    QTest::addColumn<long long>("reached");
    QTest::newRow("forward, playing") << false << 8000LL << 8000LL;
    QTest::newRow("backward, playing") << false << 1000LL << 1000LL;
    QTest::newRow("forward, paused") << true << 8000LL << 8000LL;
    QTest::newRow("not a key frame, paused") << true << 6480LL << 6480LL;
    QTest::newRow("to the beginning") << true << 0LL << 0LL;
}

void TestDeskPlayers::aSeekGoesWhereItShould()
{
    QFETCH(bool, paused);
    QFETCH(long long, target);
    QFETCH(long long, reached);
    playFile(m_id, bars, 4000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    if (paused) {
        KVR_Pause(m_id);
        QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    }
    const DeskEvents events(m_id);
    QCOMPARE(KVR_SetPosition(m_id, target), int(KVR_OK));
    QTRY_VERIFY(DeskEvents::count(KVR_EVENT_POSITION) >= 1);
    QTRY_VERIFY(paused ? holds(m_id) : KVR_GetPosition(m_id) > target); // as the core tells it
    const long long position = KVR_GetPosition(m_id);
    QVERIFY2(position >= reached && position <= reached + (paused ? frameTime : 1000),
             qPrintable(QString::number(position)));
}

void TestDeskPlayers::beyondTheEndIsTheEnd_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("options");
    const QStringList all = {"-map", "0", "-c", "copy"};
    const QStringList sound = {"-map", "0:1"};
    QTest::newRow("transport stream") << "end.ts" << all;
    QTest::newRow("Matroska") << "end.mkv" << all;
    QTest::newRow("Matroska without a duration") << "live.mkv" << all + QStringList{"-live", "1"};
    QTest::newRow("MP4") << "end.mp4" << all;
    QTest::newRow("QuickTime") << "end.mov" << QStringList{"-map", "0:0", "-c", "copy"};
    QTest::newRow("AVI") << "end.avi" << all;
    QTest::newRow("FLV") << "end.flv" << QStringList{"-map", "0:0", "-c", "copy"};
    QTest::newRow("program stream") << "end.mpg" << all;
    QTest::newRow("HLS") << "end.m3u8"
                         << QStringList{"-map", "0:0", "-map", "0:1", "-c", "copy", "-hls_list_size", "0"};
    QTest::newRow("HLS of MP4") << "end4.m3u8"
                                << QStringList{"-map", "0:0", "-c", "copy", "-hls_list_size", "0", "-hls_segment_type",
                                               "fmp4"};
    QTest::newRow("MP3") << "end.mp3" << sound;
    QTest::newRow("MP3 without a header") << "bare.mp3" << sound + QStringList{"-write_xing", "0"};
    QTest::newRow("AAC") << "end.aac" << sound;
    QTest::newRow("Ogg") << "end.ogg" << sound;
    QTest::newRow("WAV") << "end.wav" << sound;
    QTest::newRow("FLAC") << "end.flac" << sound;
}

// Where to begin, or to go on, may be what a page remembers of a longer file.
void TestDeskPlayers::beyondTheEndIsTheEnd()
{
    QFETCH(QString, name);
    QFETCH(QStringList, options);
    const QByteArray file = "/mnt/stb/" + name.toUtf8();
    QVERIFY(TestMedia::ffmpeg(QStringList{"-i", brief} + options + QStringList{file}));
    const DeskEvents events(m_id);
    player = m_id;
    DeskEvents::setReaction(noteExcess);
    for (const long long position : {briefSeconds * 1000LL + 500, 3600000LL, LLONG_MAX}) {
        excess = 0;
        DeskEvents::clear();
        QCOMPARE(playFile(m_id, file, position), int(KVR_OK));
        QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
        DeskEvents::clear();
        QCOMPARE(excess.load(), 0LL);
    }
    for (const long long position : {briefSeconds * 1000LL + 500, LLONG_MAX}) {
        playFile(m_id, file);
        QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
        QCOMPARE(KVR_SetPosition(m_id, position), int(KVR_OK));
        while (KVR_GetPlayerState(m_id) == KVR_PLAYER_PLAYING)
            noteExcess(KVR_EVENT_POSITION);
        QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
        QCOMPARE(excess.load(), 0LL);
    }
}

void TestDeskPlayers::speedMovesThePosition_data()
{
    QTest::addColumn<int>("speed");
    QTest::newRow("normal") << 1;
    QTest::newRow("twice") << 2;
    QTest::newRow("four times") << 4;
    QTest::newRow("backwards") << -1;
    QTest::newRow("twice backwards") << -2;
    QTest::newRow("four times backwards") << -4;
}

void TestDeskPlayers::speedMovesThePosition()
{
    QFETCH(int, speed);
    playFile(m_id, bars, speed > 0 ? 0 : 20000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QTRY_VERIFY(KVR_GetPosition(m_id) > 0);
    QCOMPARE(KVR_SetSpeed(m_id, speed), int(KVR_OK));
    QCOMPARE(KVR_GetSpeed(m_id), speed);
    const QImage picture = playerPicture(m_id);
    QVERIFY(moves(m_id, speed));
    QVERIFY(playerPicture(m_id) != picture);
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));

    QCOMPARE(KVR_Continue(m_id), int(KVR_OK));
    QCOMPARE(KVR_GetSpeed(m_id), 1);
    QVERIFY(moves(m_id, 1));
}

void TestDeskPlayers::playingBackwardsEndsAtTheBeginning()
{
    playFile(m_id, bars, 3000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_SetSpeed(m_id, -8), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED));
}

void TestDeskPlayers::playingBackwardsGoesOnFromWhereASeekLeads()
{
    playFile(m_id, bars, 20000);
    QTRY_VERIFY(KVR_GetPosition(m_id) > 20000);
    QCOMPARE(KVR_SetSpeed(m_id, -1), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) < 19900);
    QCOMPARE(KVR_SetPosition(m_id, 9000), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) < 8500);
    QVERIFY(KVR_GetPosition(m_id) > 2000);
    QCOMPARE(KVR_GetSpeed(m_id), -1);
}

void TestDeskPlayers::theNextFrameEndsPlayingBackwards()
{
    playFile(m_id, bars, 20000);
    QTRY_VERIFY(KVR_GetPosition(m_id) > 20000);
    QCOMPARE(KVR_SetSpeed(m_id, -2), int(KVR_OK));
    QTRY_VERIFY(KVR_GetPosition(m_id) < 19500);
    QCOMPARE(KVR_NextFrame(m_id), int(KVR_OK));
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    for (int i = 0; i < 10; ++i) {
        const long long before = KVR_GetPosition(m_id);
        QCOMPARE(KVR_NextFrame(m_id), int(KVR_OK));
        QTRY_VERIFY(KVR_GetPosition(m_id) != before);
        QVERIFY(KVR_GetPosition(m_id) > before);
    }
}

void TestDeskPlayers::nothingLoadedMeansInvalidState()
{
    QCOMPARE(KVR_Pause(m_id), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_Continue(m_id), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_NextFrame(m_id), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_SetPosition(m_id, 1000), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_SetSpeed(m_id, 2), int(KVR_ERR_INVALID_STATE));
    QCOMPARE(KVR_GetSpeed(m_id), 1);
    QCOMPARE(KVR_GetPosition(m_id), 0LL);
    QCOMPARE(KVR_GetFps(m_id), 0.0);
    QCOMPARE(KVR_Stop(m_id), int(KVR_OK));
}

void TestDeskPlayers::wrongArgumentsAreRefused()
{
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_SetSpeed(m_id, 0), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetSpeed(m_id, 101), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetPosition(m_id, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetZoom(m_id, 0.05), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetZoom(m_id, qQNaN()), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetTeletextPage(m_id, 99), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetTeletextPage(m_id, 900), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(playFile(m_id, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(playFile(m_id, "relative.ts"), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(playFile(m_id, bars, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(playFile(m_id, bars, 0, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayStream(m_id, "", -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayHttp(m_id, "http://127.0.0.1/", nullptr, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayRtsp(m_id, "rtsp://127.0.0.1/", 0, 2, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayRtsp(m_id, "rtsp://127.0.0.1/", 0, -1, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayRtsp(m_id, "rtsp://127.0.0.1/", -1, 0, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayMagnet(m_id, "magnet:?xt=urn", "", 0, -1, 0, 0, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayMagnet(m_id, "magnet:?xt=urn", nullptr, 0, 0, 0, 0, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_PlayMagnet(m_id, "", "", 0, 0, 0, 0, -1, -1, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
}

void TestDeskPlayers::aNewFileReplacesTheOldOne()
{
    playFile(m_id, bars, 8000);
    QTRY_VERIFY(KVR_GetPosition(m_id) >= 8000);
    playFile(m_id, film);
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_OPENING));
    QCOMPARE(KVR_GetPosition(m_id), 0LL);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QVERIFY(KVR_GetPosition(m_id) < 3000);
    QCOMPARE(tracks(m_id, KVR_GetVideoTrackList).size(), 1);
    QVERIFY(KVR_GetVideoPid(m_id) != TestMedia::videoPid);
    // Only the last of several in a row counts.
    for (int i = 0; i < 5; ++i)
        playFile(m_id, i % 2 ? film : wide);
    playFile(m_id, bars, 5000);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
    QTRY_VERIFY(KVR_GetPosition(m_id) >= 5000);
}

void TestDeskPlayers::positionEventsComeTwiceASecond()
{
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    const DeskEvents events(m_id);
    QTest::qWait(3000);
    const auto times = DeskEvents::of(KVR_EVENT_POSITION);
    QVERIFY2(times.size() >= 5 && times.size() <= 7, qPrintable(QString::number(times.size())));
    KVR_Pause(m_id);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    DeskEvents::clear();
    QTest::qWait(1200);
    QCOMPARE(DeskEvents::count(KVR_EVENT_POSITION), 0);
}

void TestDeskPlayers::volumeMuteAndZoomAreKeptAndTold()
{
    const DeskEvents events(m_id);
    QCOMPARE(KVR_SetVolume(m_id, 35), int(KVR_OK));
    QCOMPARE(KVR_SetMute(m_id, 7), int(KVR_OK));
    QCOMPARE(KVR_SetZoom(m_id, 1.5), int(KVR_OK));
    QCOMPARE(KVR_GetVolume(m_id), 35);
    QCOMPARE(KVR_IsMute(m_id), 1);
    QCOMPARE(KVR_GetZoom(m_id), 1.5);
    QTRY_COMPARE(DeskEvents::all().size(), 3);
    QCOMPARE(DeskEvents::count(KVR_EVENT_VOLUME), 1);
    QCOMPARE(DeskEvents::count(KVR_EVENT_MUTE), 1);
    QCOMPARE(DeskEvents::count(KVR_EVENT_ZOOM), 1);
    KVR_SetVolume(m_id, 130);
    QCOMPARE(KVR_GetVolume(m_id), 100);
    KVR_SetVolume(m_id, -3);
    QCOMPARE(KVR_GetVolume(m_id), 0);
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(KVR_GetVolume(m_id), 0);
    QCOMPARE(KVR_GetZoom(m_id), 1.5);
}

void TestDeskPlayers::settingsOutliveARequest()
{
    KVR_SetVolume(m_id, 35);
    KVR_SetMute(m_id, 1);
    KVR_SetZoom(m_id, 1.5);
    KVR_SetPlayerDisplayMode(m_id, KVR_DISPLAY_CROP);
    KVR_SetSubtitlesVisible(m_id, 0);
    KVR_SetTeletextVisible(m_id, 1);
    KVR_SetTeletextPage(m_id, 333);
    playFile(m_id, bars);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    KVR_Stop(m_id);
    playFile(m_id, film);
    QCOMPARE(KVR_GetVolume(m_id), 35);
    QCOMPARE(KVR_IsMute(m_id), 1);
    QCOMPARE(KVR_GetZoom(m_id), 1.5);
    QCOMPARE(KVR_GetPlayerDisplayMode(m_id), int(KVR_DISPLAY_CROP));
    QCOMPARE(KVR_IsSubtitlesVisible(m_id), 0);
    QCOMPARE(KVR_IsTeletextVisible(m_id), 1);
    QCOMPARE(KVR_GetTeletextPage(m_id), 333);
}

void TestDeskPlayers::pictureFillsTheWindowAsTheDisplayModeSays_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QColor>("atLeftEdge");
    QTest::newRow("letter box, same shape") << QByteArray(wide) << int(KVR_DISPLAY_LETTERBOX) << blue;
    QTest::newRow("letter box, narrow picture")
        << QByteArray(narrow) << int(KVR_DISPLAY_LETTERBOX) << QColor(Qt::black);
    QTest::newRow("stretched, narrow picture") << QByteArray(narrow) << int(KVR_DISPLAY_STRETCH) << blue;
    QTest::newRow("cropped, narrow picture") << QByteArray(narrow) << int(KVR_DISPLAY_CROP) << blue;
}

void TestDeskPlayers::pictureFillsTheWindowAsTheDisplayModeSays()
{
    QFETCH(QByteArray, file);
    QFETCH(int, mode);
    QFETCH(QColor, atLeftEdge);
    const KVR_Rect window = {100, 100, 640, 360};
    KVR_SetPlayerViewPort(m_id, &window);
    playFile(m_id, file);
    QCOMPARE(KVR_SetPlayerDisplayMode(m_id, mode), int(KVR_OK));
    QCOMPARE(KVR_GetPlayerDisplayMode(m_id), mode);
    QTRY_VERIFY(!playerPicture(m_id).isNull() && isAbout(playerPicture(m_id).pixelColor(320, 180), blue));
    QTRY_VERIFY(isAbout(playerPicture(m_id).pixelColor(5, 180), atLeftEdge));
    QCOMPARE(playerPicture(m_id).size(), QSize(640, 360));
    QVERIFY(isAbout(playerPicture(m_id).pixelColor(320, 3), blue));
}

void TestDeskPlayers::zoomScalesThePicture_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("letter box") << int(KVR_DISPLAY_LETTERBOX);
    QTest::newRow("stretched") << int(KVR_DISPLAY_STRETCH);
    QTest::newRow("cropped") << int(KVR_DISPLAY_CROP);
}

void TestDeskPlayers::zoomScalesThePicture()
{
    QFETCH(int, mode);
    const KVR_Rect window = {0, 0, 640, 360};
    KVR_SetPlayerViewPort(m_id, &window);
    QCOMPARE(KVR_SetPlayerDisplayMode(m_id, mode), int(KVR_OK));
    QCOMPARE(KVR_SetZoom(m_id, 0.5), int(KVR_OK));
    playFile(m_id, wide);
    QTRY_VERIFY(!playerPicture(m_id).isNull() && isAbout(playerPicture(m_id).pixelColor(320, 180), blue));
    QTRY_VERIFY(isAbout(playerPicture(m_id).pixelColor(150, 180), Qt::black));
    QVERIFY(isAbout(playerPicture(m_id).pixelColor(170, 180), blue));
    QVERIFY(isAbout(playerPicture(m_id).pixelColor(320, 80), Qt::black));
    KVR_SetZoom(m_id, 1.0);
    QTRY_VERIFY(isAbout(playerPicture(m_id).pixelColor(5, 5), blue));
}

// Of a picture with a border all around it, enlarged twice, nothing of the border is seen; made half as large, all of
// it is, and around it the window.
void TestDeskPlayers::aStretchedPictureIsZoomedInWhateverWindow()
{
    constexpr char framed[] = "/mnt/stb/framed.mkv";
    QVERIFY(
        TestMedia::ffmpeg({"-f", "lavfi", "-i", "color=c=0x2040c0:size=480x360:rate=25:d=30", "-vf",
                           "drawbox=color=0x20c040:thickness=60", "-c:v", "libx264", "-preset", "ultrafast", framed}));
    const QColor green(0x20, 0xc0, 0x40);
    playFile(m_id, framed);
    QCOMPARE(KVR_SetPlayerDisplayMode(m_id, KVR_DISPLAY_STRETCH), int(KVR_OK));
    const auto shows = [this](double x, double y, const QColor &color) {
        const QImage picture = playerPicture(m_id);
        return !picture.isNull()
            && isAbout(picture.pixelColor(int(picture.width() * x), int(picture.height() * y)), color);
    };
    const auto showsAround = [&](double part, const QColor &color) { // of the window's width and height, from its edge
        return shows(part, 0.5, color) && shows(1 - part, 0.5, color) && shows(0.5, part, color)
            && shows(0.5, 1 - part, color);
    };
    for (const bool paused : {false, true}) {
        if (paused)
            QCOMPARE(KVR_Pause(m_id), int(KVR_OK));
        for (const KVR_Rect window : {KVR_Rect{0, 0, 640, 360}, {0, 0, 300, 600}, {0, 0, 480, 360}}) {
            QCOMPARE(KVR_SetPlayerViewPort(m_id, &window), int(KVR_OK));
            QCOMPARE(KVR_SetZoom(m_id, 1), int(KVR_OK));
            QTRY_VERIFY(showsAround(0.02, green) && shows(0.5, 0.5, blue));
            QCOMPARE(playerPicture(m_id).size(), QSize(window.width, window.height));
            QCOMPARE(KVR_SetZoom(m_id, 2), int(KVR_OK));
            QTRY_VERIFY(showsAround(0.02, blue));
            QCOMPARE(KVR_SetZoom(m_id, 0.5), int(KVR_OK));
            QTRY_VERIFY(showsAround(0.23, Qt::black) && showsAround(0.27, green) && shows(0.5, 0.5, blue));
            // The mode once more, or another one, changes nothing of the zoom.
            QCOMPARE(KVR_SetPlayerDisplayMode(m_id, KVR_DISPLAY_CROP), int(KVR_OK));
            QCOMPARE(KVR_SetPlayerDisplayMode(m_id, KVR_DISPLAY_STRETCH), int(KVR_OK));
            QCOMPARE(KVR_SetPlayerDisplayMode(m_id, KVR_DISPLAY_STRETCH), int(KVR_OK));
            QTRY_VERIFY(showsAround(0.23, Qt::black) && showsAround(0.27, green));
        }
    }
}

void TestDeskPlayers::aPausedPictureFollowsItsWindow()
{
    playFile(m_id, wide);
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    KVR_Pause(m_id);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    const KVR_Rect window = {0, 0, 320, 180};
    KVR_SetPlayerViewPort(m_id, &window);
    QTRY_COMPARE(playerPicture(m_id).size(), QSize(320, 180));
    QVERIFY(isAbout(playerPicture(m_id).pixelColor(160, 90), blue));
}

void TestDeskPlayers::aHiddenWindowGetsItsPictureBack()
{
    playFile(m_id, wide);
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    QCOMPARE(KVR_SetPlayerVisible(m_id, 0), int(KVR_OK));
    QCOMPARE(KVR_IsPlayerVisible(m_id), 0);
    QVERIFY(!DeskBox::playerWindows().front().visible);
    playFile(m_id, narrow);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    KVR_Pause(m_id); // so that no further frame comes
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PAUSED));
    QTRY_VERIFY(holds(m_id));
    QVERIFY(isAbout(playerPicture(m_id).pixelColor(5, 540), blue)); // of the file before
    KVR_SetPlayerVisible(m_id, 1);
    QTRY_VERIFY(isAbout(playerPicture(m_id).pixelColor(5, 540), Qt::black));
    QVERIFY(isAbout(playerPicture(m_id).pixelColor(960, 540), blue));
    KVR_SetPlayerAlphaLevel(m_id, 128);
    QCOMPARE(DeskBox::playerWindows().front().alpha, 128);
}

void TestDeskPlayers::subtitlesAreChosenShownAndHidden()
{
    playFile(m_id, film);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    const QStringList list = tracks(m_id, KVR_GetSubtitleTrackList);
    QCOMPARE(list.size(), 2);
    QVERIFY(list[0].endsWith("rus, subrip 1 0"));
    QVERIFY(list[1].endsWith("eng, subrip 1 0"));
    const int russian = list[0].section(' ', 0, 0).toInt();
    const int english = list[1].section(' ', 0, 0).toInt();
    QCOMPARE(KVR_GetSubtitlePid(m_id), int(KVR_ERR_FAILED));
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    QCOMPARE(whitePixels(playerPicture(m_id)), 0);

    const DeskEvents events(m_id);
    QCOMPARE(KVR_SetSubtitlePid(m_id, russian), int(KVR_OK));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_SUBTITLES), 1);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 1000);
    const int white = whitePixels(playerPicture(m_id));
    QCOMPARE(KVR_SetSubtitlePid(m_id, english), int(KVR_OK));
    QCOMPARE(KVR_GetSubtitlePid(m_id), english);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 2 * white);

    QCOMPARE(KVR_IsSubtitlesVisible(m_id), 1);
    QCOMPARE(KVR_SetSubtitlesVisible(m_id, 0), int(KVR_OK));
    QCOMPARE(KVR_IsSubtitlesVisible(m_id), 0);
    QTRY_COMPARE(whitePixels(playerPicture(m_id)), 0);
    KVR_SetSubtitlesVisible(m_id, 1);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > white);
    KVR_SetSubtitlePid(m_id, -1);
    QTRY_COMPARE(whitePixels(playerPicture(m_id)), 0);
}

void TestDeskPlayers::anExternalSubtitleFileIsShown()
{
    constexpr char subtitles[] = "/mnt/stb/its, own: subtitles.srt";
    QVERIFY(TestMedia::makeSubtitles(subtitles, "WWWWWWWW"));
    playFile(m_id, wide, 0, subtitles);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 1000);
    QVERIFY(KVR_GetSubtitlePid(m_id) > 0);
    QCOMPARE(tracks(m_id, KVR_GetSubtitleTrackList).size(), 1);
}

void TestDeskPlayers::whatLiesBesideAFileIsNoPartOfIt()
{
    QVERIFY(TestMedia::makeSubtitles("/mnt/stb/wide.srt", "WWWWWWWW"));
    QVERIFY(TestMedia::ffmpeg({"-i", bars, "-map", "0:1", "-c", "copy", "/mnt/stb/wide.mka"}));
    playFile(m_id, wide);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QCOMPARE(tracks(m_id, KVR_GetSubtitleTrackList), QStringList());
    QCOMPARE(tracks(m_id, KVR_GetAudioTrackList).size(), 1);
}

void TestDeskPlayers::anUndecodableTrackIsToldApart()
{
    constexpr char patched[] = "/mnt/stb/patched.mkv";
    QFile file(film);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray content = file.readAll();
    const int codec = content.indexOf("A_MPEG/L2");
    QVERIFY(codec > 0);
    content.replace(codec, 9, "A_NONE/X0");
    QFile copy(patched);
    QVERIFY(copy.open(QIODevice::WriteOnly) && copy.write(content) == content.size());
    copy.close();

    playFile(m_id, patched);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    const QStringList list = tracks(m_id, KVR_GetAudioTrackList);
    QCOMPARE(list.size(), 2);
    QVERIFY2(list[0].endsWith("rus, unknown, 1 ch 0 0"), qPrintable(list[0]));
    QVERIFY2(list[1].endsWith("eng, mp2, 1 ch 1 0"), qPrintable(list[1]));
}

void TestDeskPlayers::aPlayerWithoutAnythingHasNoPicture()
{
    QVERIFY(playerPicture(m_id).isNull());
    playFile(m_id, wide);
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    QVERIFY(isOpen(wide));
    QCOMPARE(KVR_Stop(m_id), int(KVR_OK));
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_IDLE));
    QVERIFY(playerPicture(m_id).isNull());
    QTRY_VERIFY(!isOpen(wide)); // the core has stopped too
    QVERIFY(playerPicture(m_id).isNull());
    QCOMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_IDLE));
}

void TestDeskPlayers::thereAreSixteenPlayersAtMost()
{
    const QString refusal = "stbapi: no further player: a box has 16 at most; close those that are not needed\n";
    const ErrorOutput log;
    for (int round = 1; round <= 2; ++round) {
        std::vector<KVR_ID> players = {m_id};
        while (players.size() < 16)
            players.push_back(KVR_CreatePlayer());
        QVERIFY(players.back() > 0);
        for (int i = 0; i < 100; ++i)
            QCOMPARE(KVR_CreatePlayer(), int(KVR_ERR_FAILED));
        QCOMPARE(KVR_GetPlayersCount(), 16);
        // There is room for one again; that the next is too many is known.
        QCOMPARE(KVR_ClosePlayer(players.back()), int(KVR_OK));
        players.back() = KVR_CreatePlayer();
        QVERIFY(players.back() > 0);
        QCOMPARE(KVR_CreatePlayer(), int(KVR_ERR_FAILED));
        QCOMPARE(log.text(), refusal.repeated(round));

        for (const KVR_ID id : players)
            KVR_ClosePlayer(id);
        m_id = KVR_CreatePlayer();
    }
}

QTEST_GUILESS_MAIN(TestDeskPlayers)
#include "tst_deskplayers.moc"
