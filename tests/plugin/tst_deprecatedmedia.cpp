// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptTable.h"

#include <QtTest>
#include <climits>
#include <ctime>

using RecordingPlatform::Answer;

namespace {

KVR_Track track(int id, const QByteArray &descr, int supported, int encoding = 0)
{
    KVR_Track track = {id, {}, supported, encoding};
    memcpy(track.descr, descr, std::min(std::size_t(descr.size()), sizeof track.descr));
    return track;
}

Answer tracks(const QVector<KVR_Track> &tracks, int result = KVR_OK)
{
    return Answer::array(tracks, result);
}

Answer twoTracks()
{
    return tracks({track(256, "eng \xe9", 1, 7), track(-1, "", 0, -2)});
}

Answer multicast(const KVR_MulticastEvent &event, int result = KVR_OK)
{
    return Answer::structure(event, result);
}

Answer window(const KVR_Rect &rect, int result = KVR_OK)
{
    return Answer::structure(rect, result);
}

// The template has no place for the last value, and the toolkit warns of that.
const char *const incomplete = "Argument missing";
const char *const noTracks = R"("[\n]")";
const char *const unknownPlayerOfList = R"("{\"errordescr\":\"Invalid Id\"}")";
const char *const unknownPlayerOfRecord = R"("{\"errordescr\" : \"Invalid Id\"}")";

const QVector<ScriptRow> &rows()
{
    const char *const plainTracks = R"("[\n{\"id\":\"256\",\"descr\":\"eng é\",\"supported\":\"1\"},\n)"
                                    R"({\"id\":\"-1\",\"descr\":\"\",\"supported\":\"0\"},\n]")";
    const char *const subtitleTracks =
        R"("[\n{\"id\":\"256\",\"descr\":\"eng é\",\"supported\":\"1\",\"encoding\":\"7\"},\n)"
        R"({\"id\":\"-1\",\"descr\":\"\",\"supported\":\"0\",\"encoding\":\"-2\"},\n]")";
    static const QVector<ScriptRow> rows = {
        {"stb_media.CreatePlayer()", "stb_media.CreatePlayer()",
         "KVR_CreatePlayer()\n"
         "KVR_RegisterEventHandler(5, 1, handler)\n"
         "KVR_RegisterEventHandler(5, 2, handler)\n"
         "KVR_RegisterEventHandler(5, 3, handler)\n"
         "KVR_RegisterEventHandler(5, 4, handler)\n"
         "KVR_RegisterEventHandler(5, 5, handler)\n"
         "KVR_RegisterEventHandler(5, 6, handler)\n"
         "KVR_RegisterEventHandler(5, 7, handler)\n"
         "KVR_RegisterEventHandler(5, 8, handler)\n"
         "KVR_RegisterEventHandler(5, 9, handler)\n"
         "KVR_RegisterEventHandler(5, 11, handler)",
         5, "5", "a player made"},
        {"stb_media.CreatePlayer()", "stb_media.CreatePlayer()", "KVR_CreatePlayer()", -3, "-3", "no player made"},
        {"stb_media.ClosePlayer(5)", "stb_media.ClosePlayer(5)", "KVR_ClosePlayer(5)", -7, "-7", "a player closed"},
        {"stb_media.GetPlayersCount()", "stb_media.GetPlayersCount()", "KVR_GetPlayersCount()", 3, "3",
         "players counted"},

        {"stb_media.PlayFile(1, '/a.ts', 2000, 60000, 25.5, '/s.srt')",
         "stb_media.PlayFile(1, /a.ts, 2000, 60000, 25.5, /s.srt)",
         "KVR_PlayFile(1, /mnt/stb/a.ts, 2000, 60000, 25.5, /s.srt, -1, -1, -1)", -1, "-1", "file"},
        {"stb_media.PlayFile(1, 'movie.avi', 0, 0, 0, '')", "stb_media.PlayFile(1, movie.avi, 0, 0, 0, )",
         "KVR_PlayFile(1, /mnt/stbmovie.avi, 0, 0, 0, , -1, -1, -1)", 0, "0", "file without a separator"},
        {"stb_media.PlayFile(1, '/media/mnt/stb/a.ts', 0, 0, 0, '')",
         "stb_media.PlayFile(1, /media/mnt/stb/a.ts, 0, 0, 0, )",
         "KVR_PlayFile(1, /media/mnt/stb/a.ts, 0, 0, 0, , -1, -1, -1)", 0, "0",
         "file with the storage root inside its path"},
        {"stb_media.PlayFile(1, '/MNT/STB/a', 0, 0, 0, '')", "stb_media.PlayFile(1, /MNT/STB/a, 0, 0, 0, )",
         "KVR_PlayFile(1, /mnt/stb/MNT/STB/a, 0, 0, 0, , -1, -1, -1)", 0, "0",
         "file with the storage root in capitals"},
        {"stb_media.PlayFile(1, '/a', 0, 0, 0, 5)", "stb_media.PlayFile(1, /a, 0, 0, 0, 5)",
         "KVR_PlayFile(1, /mnt/stb/a, 0, 0, 0, 5, -1, -1, -1)", 0, "0", "file with a number for its subtitles"},
        {"stb_media.PlayFile(1, '/a', 0, 0, 0, null)", "stb_media.PlayFile(1, /a, 0, 0, 0, )",
         "KVR_PlayFile(1, /mnt/stb/a, 0, 0, 0, , -1, -1, -1)", 0, "0", "file with null for its subtitles"},
        {"stb_media.PlayFile(1, '%6 é', 2, 3, 4, '%1 ж')", "stb_media.PlayFile(1, %6 é, 2, 3, 4, %1 ж)",
         "KVR_PlayFile(1, /mnt/stb%6 é, 2, 3, 4, %1 ж, -1, -1, -1)", 0, "0", "file like places of the template"},
        {"stb_media.PlayStream(2, 'udp://%2')", "stb_media.PlayStream(2, udp://%2)",
         "KVR_PlayStream(2, udp://%2, -1, -1, -1)", 4, "4", "stream"},
        {"stb_media.PlayHttp(3, 'http://h/%3', '%1 \"ж\"')", "stb_media.PlayHttp(3, http://h/%3, %1 \"ж\")",
         "KVR_PlayHttp(3, http://h/%3, %1 \"ж\", -1, -1, -1)", -2, "-2", "HTTP"},
        {"stb_media.PlayRtsp(4, 'rtsp://h/%3', 2)", "stb_media.PlayRtsp(4, rtsp://h/%3, 2)",
         "KVR_PlayRtsp(4, rtsp://h/%3, 0, 2, -1, -1, -1)", 1, "1", "RTSP, always from the beginning"},
        {"stb_media.PlayRtsp(4, 'rtsp://h/', 1500, 2)", "stb_media.PlayRtsp(4, rtsp://h/, 1500)",
         "KVR_PlayRtsp(4, rtsp://h/, 0, 1500, -1, -1, -1)", 0, "0", "RTSP as of the current object"},
        {"stb_media.PlayMagnet(1, 'magnet:?%2', '%7.mkv', 4503599627370495, 4294967296, -3, 23.976)",
         "stb_media.PlayMagnet(1, magnet:?%2, %7.mkv, 4503599627370495, 4294967296, -3, 23.976)",
         "KVR_PlayMagnet(1, magnet:?%2, %7.mkv, 4503599627370495, 4294967296, -3, 23.976, -1, -1, -1)", -4, "-4",
         "magnet"},
        {"stb_media.Pause(1)", "stb_media.Pause(1)", "KVR_Pause(1)", -4, "-4", "pause"},
        {"stb_media.Stop(2)", "stb_media.Stop(2)", "KVR_Stop(2)", 1, "1", "stop"},
        {"stb_media.Continue(3)", "stb_media.Continue(3)", "KVR_Continue(3)", -1, "-1", "continue"},
        {"stb_media.NextFrame(4)", "stb_media.NextFrame(4)", "KVR_NextFrame(4)", 6, "6", "next frame"},
        {"stb_media.SetPosition(1, -9007199254740991)", "stb_media.SetPosition(1, -9007199254740991)",
         "KVR_SetPosition(1, -9007199254740991)", -3, "-3", "position"},
        {"stb_media.GetPosition(1)", "stb_media.GetPosition(1)", "KVR_GetPosition(1)", -9007199254740991LL,
         "-9007199254740991", "position asked"},
        {"stb_media.GetDuration(2)", "stb_media.GetDuration(2)", "KVR_GetDuration(2)", 9007199254740991LL,
         "9007199254740991", "duration asked"},
        {"stb_media.SetSpeed(1, -2)", "stb_media.SetSpeed(1, -2)", "KVR_SetSpeed(1, -2)", -7, "-7", "speed"},
        {"stb_media.GetSpeed(1)", "stb_media.GetSpeed(1)", "KVR_GetSpeed(1)", -16, "-16", "speed asked"},

        {"stb_media.GetVideoPid(1)", "stb_media.GetVideoPid(1)", "KVR_GetVideoPid(1)", 256, "256", "video track asked"},
        {"stb_media.GetVideoTrackList(1)", "stb_media.GetVideoTrackList(1)", "KVR_GetVideoTrackList(1)", twoTracks(),
         plainTracks, "video tracks"},
        {"stb_media.GetVideoTrackList(9)", "stb_media.GetVideoTrackList(9)", "KVR_GetVideoTrackList(9)",
         KVR_ERR_INVALID_ID, unknownPlayerOfList, "video tracks of an unknown player"},
        {"stb_media.SetAudioPid(1, 258)", "stb_media.SetAudioPid(1, 258)", "KVR_SetAudioPid(1, 258)", -3, "-3",
         "audio track"},
        {"stb_media.GetAudioPid(2)", "stb_media.GetAudioPid(2)", "KVR_GetAudioPid(2)", 257, "257", "audio track asked"},
        {"stb_media.GetAudioTrackList(2)", "stb_media.GetAudioTrackList(2)", "KVR_GetAudioTrackList(2)", twoTracks(),
         plainTracks, "audio tracks"},
        {"stb_media.GetAudioTrackList(9)", "stb_media.GetAudioTrackList(9)", "KVR_GetAudioTrackList(9)",
         KVR_ERR_INVALID_ID, unknownPlayerOfList, "audio tracks of an unknown player"},
        {"stb_media.SetSubtitlePid(1, -1)", "stb_media.SetSubtitlePid(1, -1)", "KVR_SetSubtitlePid(1, -1)", 2, "2",
         "subtitle track"},
        {"stb_media.GetSubtitlePid(3)", "stb_media.GetSubtitlePid(3)", "KVR_GetSubtitlePid(3)", -1, "-1",
         "subtitle track asked"},
        {"stb_media.GetSubtitleTrackList(3)", "stb_media.GetSubtitleTrackList(3)", "KVR_GetSubtitleTrackList(3)",
         twoTracks(), subtitleTracks, "subtitle tracks"},
        {"stb_media.GetSubtitleTrackList(9)", "stb_media.GetSubtitleTrackList(9)", "KVR_GetSubtitleTrackList(9)",
         KVR_ERR_INVALID_ID, unknownPlayerOfList, "subtitle tracks of an unknown player"},
        {"stb_media.GetAudioTrackList(1)", "stb_media.GetAudioTrackList(1)", "KVR_GetAudioTrackList(1)", tracks({}),
         noTracks, "no tracks"},
        {"stb_media.GetAudioTrackList(1)", "stb_media.GetAudioTrackList(1)", "KVR_GetAudioTrackList(1)",
         Answer::nullArray(0), noTracks, "no tracks without an array"},
        {"stb_media.GetAudioTrackList(1)", "stb_media.GetAudioTrackList(1)", "KVR_GetAudioTrackList(1)",
         Answer::nullArray(-1), noTracks, "tracks of a negative number"},
        {"stb_media.GetAudioTrackList(1)", "stb_media.GetAudioTrackList(1)", "KVR_GetAudioTrackList(1)", -1, noTracks,
         "tracks without an answer"},
        {"stb_media.GetAudioTrackList(1)", "stb_media.GetAudioTrackList(1)", "KVR_GetAudioTrackList(1)",
         tracks({track(3, "rus", 1)}, -1), R"("[\n{\"id\":\"3\",\"descr\":\"rus\",\"supported\":\"1\"},\n]")",
         "tracks though the platform fails"},
        {"stb_media.GetAudioTrackList(1)", "stb_media.GetAudioTrackList(1)", "KVR_GetAudioTrackList(1)",
         tracks({track(1, "a\"b\\c\nd", 1)}), R"("[\n{\"id\":\"1\",\"descr\":\"a\"b\\c\nd\",\"supported\":\"1\"},\n]")",
         "description that breaks the text"},
        {"stb_media.GetSubtitleTrackList(1)", "stb_media.GetSubtitleTrackList(1)", "KVR_GetSubtitleTrackList(1)",
         tracks({track(1, "%2 %3%4 %1", 5, 6)}),
         R"("[\n{\"id\":\"1\",\"descr\":\"%2 %3%4 %1\",\"supported\":\"5\",\"encoding\":\"6\"},\n]")",
         "description like places of the template"},
        {"stb_media.SetSubtitlesVisible(1, 0)", "stb_media.SetSubtitlesVisible(1)", "KVR_SetSubtitlesVisible(1, 0)", -5,
         "-5", "subtitles shown", "", "", incomplete},
        {"stb_media.IsSubtitlesVisible(4)", "stb_media.IsSubtitlesVisible(4)", "KVR_IsSubtitlesVisible(4)", 1, "1",
         "subtitles shown asked"},

        {"stb_media.SetVolume(1, 35)", "stb_media.SetVolume(1, 35)", "KVR_SetVolume(1, 35)", -10, "-10", "volume"},
        {"stb_media.GetVolume(1)", "stb_media.GetVolume(1)", "KVR_GetVolume(1)", 100, "100", "volume asked"},
        {"stb_media.IsMute(1)", "stb_media.IsMute(1)", "KVR_IsMute(1)", 1, "1", "mute asked"},
        {"stb_media.SetMute(1, 2)", "stb_media.SetMute(1, 2)", "KVR_SetMute(1, 2)", -11, "-11", "mute"},
        {"stb_media.GetZoom(1)", "stb_media.GetZoom(1)", "KVR_GetZoom(1)", 1.0 / 3, "0.3333333333333333", "zoom asked"},
        {"stb_media.SetZoom(1, 2.5)", "stb_media.SetZoom(1)", "KVR_SetZoom(1, 2.5)", -12, "-12", "zoom", "", "",
         incomplete},
        {"stb_media.GetFps(1)", "stb_media.GetFps(1)", "KVR_GetFps(1)", 29.97, "29.97", "frame rate asked"},
        {"stb_media.SetPlayerViewPort(1, 2, -3, 4, 5)", "stb_media.SetPlayerViewPort(1, 2, -3, 4, 5)",
         "KVR_SetPlayerViewPort(1, {2, -3, 4, 5})", -13, "-13", "window"},
        {"stb_media.GetPlayerViewPort(1)", "stb_media.GetPlayerViewPort(1)", "KVR_GetPlayerViewPort(1)",
         window({1, -2, INT_MAX, INT_MIN}),
         R"("{\"x\":\"1\",\"y\":\"-2\",\"width\":\"2147483647\",\"height\":\"-2147483648\"}")", "window asked"},
        {"stb_media.GetPlayerViewPort(1)", "stb_media.GetPlayerViewPort(1)", "KVR_GetPlayerViewPort(1)",
         window({1, 2, 3, 4}, -1), R"("{\"x\":\"1\",\"y\":\"2\",\"width\":\"3\",\"height\":\"4\"}")",
         "window though the platform fails"},
        {"stb_media.GetPlayerViewPort(9)", "stb_media.GetPlayerViewPort(9)", "KVR_GetPlayerViewPort(9)",
         window({1, 2, 3, 4}, KVR_ERR_INVALID_ID), unknownPlayerOfRecord, "window of an unknown player"},
        {"stb_media.SetPlayerAlphaLevel(1, 255)", "stb_media.SetPlayerAlphaLevel(1, 255)",
         "KVR_SetPlayerAlphaLevel(1, 255)", -14, "-14", "window's alpha"},
        {"stb_media.GetPlayerAlphaLevel(1)", "stb_media.GetPlayerAlphaLevel(1)", "KVR_GetPlayerAlphaLevel(1)", 128,
         "128", "window's alpha asked"},
        {"stb_media.SetPlayerVisible(1, 0)", "stb_media.SetPlayerVisible(1, 0)", "KVR_SetPlayerVisible(1, 0)", -15,
         "-15", "window shown"},
        {"stb_media.IsPlayerVisible(1)", "stb_media.IsPlayerVisible(1)", "KVR_IsPlayerVisible(1)", 1, "1",
         "window shown asked"},
        {"stb_media.GetPlayerDisplayMode(1)", "stb_media.GetPlayerDisplayMode(1)", "KVR_GetPlayerDisplayMode(1)", 2,
         "2", "display mode asked"},
        {"stb_media.SetPlayerDisplayMode(1, 2)", "stb_media.SetPlayerDisplayMode(1, 2)",
         "KVR_SetPlayerDisplayMode(1, 2)", -16, "-16", "display mode"},
        {"stb_media.GetPlayerState(-128)", "stb_media.GetPlayerState(-128)", "KVR_GetPlayerState(-128)", 4, "4",
         "state asked"},
        {"stb_media.GetLastMulticastEvent(1)", "stb_media.GetLastMulticastEvent(1)", "KVR_GetLastMulticastEvent(1)",
         multicast({"239.1.1.1:5000", 2}), R"("{\"ip_port\":\"239.1.1.1:5000\",\"state\":\"join\"}")", "joined group"},
        {"stb_media.GetLastMulticastEvent(1)", "stb_media.GetLastMulticastEvent(1)", "KVR_GetLastMulticastEvent(1)",
         multicast({"%2\"", 0}), R"("{\"ip_port\":\"%2\"\",\"state\":\"leave\"}")",
         "left group like a place of the template"},
        {"stb_media.GetLastMulticastEvent(1)", "stb_media.GetLastMulticastEvent(1)", "KVR_GetLastMulticastEvent(1)",
         multicast({"a", 1}, -1), R"("{\"ip_port\":\"a\",\"state\":\"join\"}")", "group though the platform fails"},
        {"stb_media.GetLastMulticastEvent(9)", "stb_media.GetLastMulticastEvent(9)", "KVR_GetLastMulticastEvent(9)",
         multicast({"a", 1}, KVR_ERR_INVALID_ID), unknownPlayerOfRecord, "group of an unknown player"},
        {"stb_media.getEventDescription()", "stb_media.GetPlayerState()", "", 0, R"("{\"id\":\"0\",\"type\":\"0\"}")",
         "no event yet"},

        {"stb_media.onEvent", "", "", 0, R"("")", "handler asked"},
        {"stb_media.onEvent = 'f()'", "", "", 0, "\"f()\"", "handler"},
        {"stb_media.onEvent", "", "", 0, R"("")", "handler asked again"},
        {"stb_media.GetTeletextTrackList", "", "", 0, "undefined", "no teletext"},
        {"stb_media.GetEventDescription", "", "", 0, "undefined", "no event description under the current name"},

        // The engine refuses these before any method hears of them.
        {"stb_media.Pause()", "", "", 0, refused},
        {"stb_media.Pause(null)", "", "", 0, refused},
        {"stb_media.Pause(NaN)", "", "", 0, refused},
        {"stb_media.SetSpeed(1)", "", "", 0, refused},
        {"stb_media.SetSubtitlesVisible(1)", "", "", 0, refused},
        {"stb_media.SetZoom(1)", "", "", 0, refused},
        {"stb_media.SetZoom(1, NaN)", "", "", 0, refused},
        {"stb_media.PlayRtsp(1, 'rtsp://h/')", "", "", 0, refused},
        {"stb_media.PlayFile(1, '/a', 0, 0, 0)", "", "", 0, refused},
    };
    return rows;
}

// Whether the page gets the platform's answer as it is.
bool passesThrough(const ScriptRow &row)
{
    return *row.calls && row.result[0] != '"';
}

} // namespace

// The methods of stb_media as an old portal calls them.
class TestDeprecatedMedia : public ScriptTable
{
    Q_OBJECT

public:
    TestDeprecatedMedia()
        : ScriptTable("stb_media", rows(), passesThrough)
    {
    }

private slots:
    void aDescriptionFillsItsField_data();
    void aDescriptionFillsItsField();
    void longListsAreMadeInLinearTime();
};

void TestDeprecatedMedia::aDescriptionFillsItsField_data()
{
    QTest::addColumn<QByteArray>("description");
    QTest::newRow("with room for its NUL") << QByteArray(127, 'd');
    QTest::newRow("without a NUL") << QByteArray(128, 'd');
}

void TestDeprecatedMedia::aDescriptionFillsItsField()
{
    QFETCH(const QByteArray, description);
    RecordingPlatform::answer("KVR_GetVideoTrackList", tracks({track(1, description, 1)}));
    QCOMPARE(session().plugin().evaluate("stb_media.GetVideoTrackList(1)").toString(),
             QString("[\n{\"id\":\"1\",\"descr\":\"" + description + "\",\"supported\":\"1\"},\n]"));
}

void TestDeprecatedMedia::longListsAreMadeInLinearTime()
{
    const QByteArray entry = "{\"id\":\"1\",\"descr\":\"a description of usual length\",\"supported\":\"1\"},\n";
    const KVR_Track one = track(1, "a description of usual length", 1);
    // The processor's time, since others use the machine too.
    const auto timeOf = [&](int count) {
        RecordingPlatform::answer("KVR_GetVideoTrackList", tracks(QVector<KVR_Track>(count, one)));
        const std::clock_t start = std::clock();
        const QString list = session().plugin().evaluate("stb_media.GetVideoTrackList(1)").toString();
        const std::clock_t time = std::clock() - start;
        return list == "[\n" + entry.repeated(count) + ']' ? double(time) : -1;
    };
    // 16 times as long if linear, 256 times if every entry were made at the cost of all those before it. What lies
    // between leaves room for caches, new memory and the engine's own threads; the best of several each does the rest.
    const int limit = 64;
    double shortTime = timeOf(2500);
    double longTime = timeOf(40000);
    for (int i = 0; i < 3 && longTime >= limit * shortTime; ++i) {
        shortTime = std::min(shortTime, timeOf(2500));
        longTime = std::min(longTime, timeOf(40000));
    }
    QVERIFY(shortTime > 0 && longTime > 0);
    QVERIFY2(longTime < limit * shortTime, qPrintable(QString("%1, %2").arg(shortTime).arg(longTime)));
}

QTEST_MAIN(TestDeprecatedMedia)

#include "tst_deprecatedmedia.moc"
