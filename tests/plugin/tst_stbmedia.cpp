// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptTable.h"

#include <QtTest>
#include <cfloat>
#include <climits>

using RecordingPlatform::Answer;

namespace {

Answer tracks()
{
    const QVector<KVR_Track> tracks = {{256, "eng \xe9", 1, 7}, {-1, "", 0, -2}};
    return Answer::array(tracks);
}

Answer multicast()
{
    const KVR_MulticastEvent event = {"239.1.1.1:5000", 1};
    return Answer::structure(event);
}

Answer window()
{
    const KVR_Rect window = {1, -2, 3, 4};
    return Answer::structure(window);
}

const QVector<ScriptRow> &rows()
{
    const char *const plainTracks = R"([{"descr":"eng é","id":256,"supported":1},{"descr":"","id":-1,"supported":0}])";
    const char *const subtitleTracks = R"([{"descr":"eng é","encoding":7,"id":256,"supported":1},)"
                                       R"({"descr":"","encoding":-2,"id":-1,"supported":0}])";
    static const QVector<ScriptRow> rows = {
        {"StbMedia.CreatePlayer()",
         "StbMedia.CreatePlayer()\n"
         "StbMedia.SetVolume(5, 0)\n"
         "StbMedia.SetMute(5, 0)",
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
         "KVR_RegisterEventHandler(5, 11, handler)\n"
         "KVR_RegisterEventHandler(5, 14, handler)\n"
         "KVR_RegisterEventHandler(5, 15, handler)\n"
         "KVR_SetVolume(5, 0)\n"
         "KVR_SetMute(5, 0)",
         5, "5"},
        {"StbMedia.ClosePlayer(5)",
         "StbMedia.ClosePlayer(5)\n"
         "StbMedia.GetVolume(5)\n"
         "StbMedia.IsMute(5)",
         "KVR_GetVolume(5)\n"
         "KVR_IsMute(5)\n"
         "KVR_ClosePlayer(5)",
         -7, "-7"},
        {"StbMedia.GetPlayersCount()", "StbMedia.GetPlayersCount()", "KVR_GetPlayersCount()", 3, "3"},
        {"StbMedia.PlayFile(1, 'a.ts', 2000, 60000, 25, '/s.srt')",
         "StbMedia.PlayFile(1, a.ts, 2000, 60000, 25, /s.srt",
         "KVR_PlayFile(1, /mnt/stba.ts, 2000, 60000, 25, /s.srt, -1, -1, -1)", -1, "-1"},
        {"StbMedia.PlayStream(2, 'udp://%2')", "StbMedia.PlayStream(2, udp://%2)",
         "KVR_PlayStream(2, udp://%2, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayHttp(3, 'http://h/%3', 'A: %1')", "StbMedia.PlayHttp(3, http://h/%3, A: %1)",
         "KVR_PlayHttp(3, http://h/%3, A: %1, -1, -1, -1)", -2, "-2"},
        {"StbMedia.PlayRtsp(4, 'rtsp://h/1', 1500, 2)", "StbMedia.PlayRtsp(4, rtsp://h/1, 1500, 2)",
         "KVR_PlayRtsp(4, rtsp://h/1, 1500, 2, -1, -1, -1)", 1, "1"},
        {"StbMedia.PlayMagnet(1, 'magnet:?a', 'b.mkv', 1, 2, 3, 23.976)",
         "StbMedia.PlayMagnet(1, magnet:?a, b.mkv, 1, 2, 3, 23.976)",
         "KVR_PlayMagnet(1, magnet:?a, b.mkv, 1, 2, 3, 23.976, -1, -1, -1)", -4, "-4"},
        {"StbMedia.Pause(1)", "StbMedia.Pause(1)", "KVR_Pause(1)", -4, "-4"},
        {"StbMedia.Stop(2)", "StbMedia.Stop(2)", "KVR_Stop(2)", 1, "1"},
        {"StbMedia.Continue(3)", "StbMedia.Continue(3)", "KVR_Continue(3)", -1, "-1"},
        {"StbMedia.NextFrame(4)", "StbMedia.NextFrame(4)", "KVR_NextFrame(4)", 0, "0"},
        {"StbMedia.SetPosition(1, -2)", "StbMedia.SetPosition(1, -2)", "KVR_SetPosition(1, -2)", -3, "-3"},
        {"StbMedia.GetPosition(1)", "StbMedia.GetPosition(1)", "KVR_GetPosition(1)", 61000, "61000"},
        {"StbMedia.GetDuration(2)", "StbMedia.GetDuration(2)", "KVR_GetDuration(2)", 7200000, "7200000"},
        {"StbMedia.SetSpeed(1, -2)", "StbMedia.SetSpeed(1, -2)", "KVR_SetSpeed(1, -2)", -7, "-7"},
        {"StbMedia.GetSpeed(1)", "StbMedia.GetSpeed(1)", "KVR_GetSpeed(1)", -16, "-16"},
        {"StbMedia.GetPlayerState(-128)", "StbMedia.GetPlayerState(-128)", "KVR_GetPlayerState(-128)", 4, "4"},
        {"StbMedia.GetVideoPid(1)", "StbMedia.GetVideoPid(1)", "KVR_GetVideoPid(1)", 256, "256"},
        {"StbMedia.GetAudioPid(2)", "StbMedia.GetAudioPid(2)", "KVR_GetAudioPid(2)", 257, "257"},
        {"StbMedia.SetAudioPid(1, 258)", "StbMedia.SetAudioPid(1, 258)", "KVR_SetAudioPid(1, 258)", -3, "-3"},
        {"StbMedia.GetSubtitlePid(3)", "StbMedia.GetSubtitlePid(3)", "KVR_GetSubtitlePid(3)", -1, "-1"},
        {"StbMedia.SetSubtitlePid(1, -1)", "StbMedia.SetSubtitlePid(1, -1)", "KVR_SetSubtitlePid(1, -1)", 2, "2"},
        {"StbMedia.IsSubtitlesVisible(4)", "StbMedia.IsSubtitlesVisible(4)", "KVR_IsSubtitlesVisible(4)", 1, "1"},
        {"StbMedia.SetSubtitlesVisible(1, 0)", "StbMedia.SetSubtitlesVisible(1, 0)", "KVR_SetSubtitlesVisible(1, 0)",
         -5, "-5"},
        {"StbMedia.GetTeletextPid(1)", "StbMedia.GetTeletextPid(1)", "KVR_GetTeletextPid(1)", 33, "33"},
        {"StbMedia.SetTeletextPid(1, 34)", "StbMedia.SetTeletextPid(1, 34)", "KVR_SetTeletextPid(1, 34)", -6, "-6"},
        {"StbMedia.GetTeletextPage(1)", "StbMedia.GetTeletextPage(1)", "KVR_GetTeletextPage(1)", 100, "100"},
        {"StbMedia.SetTeletextPage(1, 899)", "StbMedia.SetTeletextPage(1, 899)", "KVR_SetTeletextPage(1, 899)", -8,
         "-8"},
        {"StbMedia.IsTeletextVisible(1)", "StbMedia.IsTeletextVisible(1)", "KVR_IsTeletextVisible(1)", 1, "1"},
        {"StbMedia.SetTeletextVisible(1, 2)", "StbMedia.SetTeletextVisible(1, 2)", "KVR_SetTeletextVisible(1, 2)", -9,
         "-9"},
        {"StbMedia.GetVideoTrackList(1)", "StbMedia.GetVideoTrackList(1)", "KVR_GetVideoTrackList(1)", tracks(),
         plainTracks},
        {"StbMedia.GetAudioTrackList(2)", "StbMedia.GetAudioTrackList(2)", "KVR_GetAudioTrackList(2)", tracks(),
         plainTracks},
        {"StbMedia.GetSubtitleTrackList(3)", "StbMedia.GetSubtitleTrackList(3)", "KVR_GetSubtitleTrackList(3)",
         tracks(), subtitleTracks},
        {"StbMedia.GetTeletextTrackList(4)", "StbMedia.GetTeletextTrackList(4)", "KVR_GetTeletextTrackList(4)",
         tracks(), plainTracks, "", "", "Teletext number:  2"},
        {"StbMedia.GetLastMulticastEvent(1)", "StbMedia.GetLastMulticastEvent(1)", "KVR_GetLastMulticastEvent(1)",
         multicast(), "{\"ip_port\":\"239.1.1.1:5000\",\"state\":\"join\"}"},
        {"StbMedia.GetPlayerViewPort(1)", "StbMedia.GetPlayerViewPort(1)", "KVR_GetPlayerViewPort(1)", window(),
         "{\"height\":4,\"width\":3,\"x\":1,\"y\":-2}"},
        {"StbMedia.SetVolume(1, 35)", "StbMedia.SetVolume(1, 35)", "KVR_SetVolume(1, 35)", -10, "-10"},
        {"StbMedia.GetVolume(1)", "StbMedia.GetVolume(1)", "KVR_GetVolume(1)", 100, "100"},
        {"StbMedia.SetMute(1, 1)", "StbMedia.SetMute(1, 1)", "KVR_SetMute(1, 1)", -11, "-11"},
        {"StbMedia.IsMute(1)", "StbMedia.IsMute(1)", "KVR_IsMute(1)", 1, "1"},
        {"StbMedia.SetZoom(0, 1.5)", "StbMedia.SetZoom(0, 1.5)", "KVR_SetZoom(0, 1.5)", -12, "-12"},
        {"StbMedia.GetZoom(1)", "StbMedia.GetZoom(1)", "KVR_GetZoom(1)", 1.25, "1.25"},
        {"StbMedia.GetFps(1)", "StbMedia.GetFps(1)", "KVR_GetFps(1)", 29.97, "29.97"},
        {"StbMedia.SetPlayerViewPort(1, 2, 3, 4, 5)", "StbMedia.SetPlayerViewPort(1, 2, 3, 4, 5)",
         "KVR_SetPlayerViewPort(1, {2, 3, 4, 5})", -13, "-13"},
        {"StbMedia.SetPlayerAlphaLevel(1, 255)", "StbMedia.SetPlayerAlphaLevel(1, 255)",
         "KVR_SetPlayerAlphaLevel(1, 255)", -14, "-14"},
        {"StbMedia.GetPlayerAlphaLevel(1)", "StbMedia.GetPlayerAlphaLevel(1)", "KVR_GetPlayerAlphaLevel(1)", 128,
         "128"},
        {"StbMedia.SetPlayerVisible(1, 0)", "StbMedia.SetPlayerVisible(1, 0)", "KVR_SetPlayerVisible(1, 0)", -15,
         "-15"},
        {"StbMedia.IsPlayerVisible(1)", "StbMedia.IsPlayerVisible(1)", "KVR_IsPlayerVisible(1)", 1, "1"},
        {"StbMedia.SetPlayerDisplayMode(1, 2)", "StbMedia.SetPlayerDisplayMode(1, 2)", "KVR_SetPlayerDisplayMode(1, 2)",
         -16, "-16"},
        {"StbMedia.GetPlayerDisplayMode(1)", "StbMedia.GetPlayerDisplayMode(1)", "KVR_GetPlayerDisplayMode(1)", 2, "2"},
        {"StbMedia.GetEventDescription()", "StbMedia.GetEventDescription()", "", 0, "{\"id\":0,\"type\":0}"},
        {"StbMedia.onEvent", "StbMedia.onEvent", "", 0, "\"\""},
        {"StbMedia.onEvent = 'f()'", "StbMedia.onEvent(f())", "", 0, "\"f()\""},

        // texts
        {"StbMedia.PlayStream(1, '')", "StbMedia.PlayStream(1, )", "KVR_PlayStream(1, , -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayStream(1, 'udp://привіт/世界/😀')", "StbMedia.PlayStream(1, udp://привіт/世界/😀)",
         "KVR_PlayStream(1, udp://привіт/世界/😀, -1, -1, -1)", 0, "0"},
        {R"(StbMedia.PlayStream(1, 'a"b\'c\\d'))", R"(StbMedia.PlayStream(1, a"b'c\d))",
         R"(KVR_PlayStream(1, a"b'c\d, -1, -1, -1))", 0, "0"},
        {"StbMedia.PlayStream(1, '%1 %2 %3 %L1 %% %n %s')", "StbMedia.PlayStream(1, %1 %2 %3 %L1 %% %n %s)",
         "KVR_PlayStream(1, %1 %2 %3 %L1 %% %n %s, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayHttp(1, '%1%3', '%2%1')", "StbMedia.PlayHttp(1, %1%3, %2%1)",
         "KVR_PlayHttp(1, %1%3, %2%1, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayHttp(1, 'привіт', 'Cookie: \"ключ\"')", "StbMedia.PlayHttp(1, привіт, Cookie: \"ключ\")",
         "KVR_PlayHttp(1, привіт, Cookie: \"ключ\", -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayRtsp(1, '%4 é', 0, 1)", "StbMedia.PlayRtsp(1, %4 é, 0, 1)",
         "KVR_PlayRtsp(1, %4 é, 0, 1, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayMagnet(1, '%2 é', '%7 ж', 0, 0, 0, 0)", "StbMedia.PlayMagnet(1, %2 é, %7 ж, 0, 0, 0, 0)",
         "KVR_PlayMagnet(1, %2 é, %7 ж, 0, 0, 0, 0, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayFile(1, '%2 é', 0, 0, 0, '%1 ж')", "StbMedia.PlayFile(1, %2 é, 0, 0, 0, %1 ж",
         "KVR_PlayFile(1, /mnt/stb%2 é, 0, 0, 0, %1 ж, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayStream(1, 5)", "StbMedia.PlayStream(1, 5)", "KVR_PlayStream(1, 5, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayStream(1, null)", "StbMedia.PlayStream(1, )", "KVR_PlayStream(1, , -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayStream(1, undefined)", "StbMedia.PlayStream(1, )", "KVR_PlayStream(1, , -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayStream(1, {})", "StbMedia.PlayStream(1, [object Object])",
         "KVR_PlayStream(1, [object Object], -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayStream(1, ['a', 'b'])", "StbMedia.PlayStream(1, a,b)", "KVR_PlayStream(1, a,b, -1, -1, -1)", 0,
         "0"},
        // integers
        {"StbMedia.Pause(2147483647)", "StbMedia.Pause(2147483647)", "KVR_Pause(2147483647)", 0, "0"},
        {"StbMedia.Pause(-2147483648)", "StbMedia.Pause(-2147483648)", "KVR_Pause(-2147483648)", 0, "0"},
        {"StbMedia.Pause(4294967296)", "StbMedia.Pause(0)", "KVR_Pause(0)", 0, "0"},
        {"StbMedia.Pause(Infinity)", "StbMedia.Pause(0)", "KVR_Pause(0)", 0, "0"},
        {"StbMedia.Pause(1.9)", "StbMedia.Pause(2)", "KVR_Pause(2)", 0, "0"},
        {"StbMedia.Pause('7')", "StbMedia.Pause(7)", "KVR_Pause(7)", 0, "0"},
        {"StbMedia.Pause('seven')", "StbMedia.Pause(0)", "KVR_Pause(0)", 0, "0"},
        {"StbMedia.Pause({})", "StbMedia.Pause(0)", "KVR_Pause(0)", 0, "0"},
        {"StbMedia.Pause(true)", "StbMedia.Pause(1)", "KVR_Pause(1)", 0, "0"},
        {"StbMedia.Pause(1, 2, 3)", "StbMedia.Pause(1)", "KVR_Pause(1)", 0, "0"},
        {"StbMedia.SetPlayerViewPort(1, 2147483647, -2147483648, 0, -1)",
         "StbMedia.SetPlayerViewPort(1, 2147483647, -2147483648, 0, -1)",
         "KVR_SetPlayerViewPort(1, {2147483647, -2147483648, 0, -1})", 0, "0"},
        // 64 bits: exact to 2^52, since the engine adds a half before it cuts off fractions
        {"StbMedia.SetPosition(1, 4294967297)", "StbMedia.SetPosition(1, 4294967297)", "KVR_SetPosition(1, 4294967297)",
         0, "0"},
        {"StbMedia.SetPosition(1, 4503599627370495)", "StbMedia.SetPosition(1, 4503599627370495)",
         "KVR_SetPosition(1, 4503599627370495)", 0, "0"},
        {"StbMedia.SetPosition(1, -4503599627370495)", "StbMedia.SetPosition(1, -4503599627370495)",
         "KVR_SetPosition(1, -4503599627370495)", 0, "0"},
        {"StbMedia.SetPosition(1, 4503599627370497)", "StbMedia.SetPosition(1, 4503599627370498)",
         "KVR_SetPosition(1, 4503599627370498)", 0, "0"},
        {"StbMedia.SetPosition(1, 9007199254740993)", "StbMedia.SetPosition(1, 9007199254740992)",
         "KVR_SetPosition(1, 9007199254740992)", 0, "0"},
        {"StbMedia.SetPosition(1, '4503599627370495')", "StbMedia.SetPosition(1, 4503599627370495)",
         "KVR_SetPosition(1, 4503599627370495)", 0, "0"},
        {"StbMedia.PlayRtsp(1, 'r', -4503599627370495, -1)", "StbMedia.PlayRtsp(1, r, -4503599627370495, -1)",
         "KVR_PlayRtsp(1, r, -4503599627370495, -1, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayMagnet(1, 'm', 'n', 4503599627370495, 4294967296, -4294967296, 0)",
         "StbMedia.PlayMagnet(1, m, n, 4503599627370495, 4294967296, -4294967296, 0)",
         "KVR_PlayMagnet(1, m, n, 4503599627370495, 4294967296, -4294967296, 0, -1, -1, -1)", 0, "0"},
        {"StbMedia.PlayFile(1, 'f', 4503599627370495, -4503599627370495, 0.1, '')",
         "StbMedia.PlayFile(1, f, 4503599627370495, -4503599627370495, 0.1, ",
         "KVR_PlayFile(1, /mnt/stbf, 4503599627370495, -4503599627370495, 0.1, , -1, -1, -1)", 0, "0"},
        // fractions, which a trace line shows with six digits
        {"StbMedia.SetZoom(1, 0)", "StbMedia.SetZoom(1, 0)", "KVR_SetZoom(1, 0)", 0, "0"},
        {"StbMedia.SetZoom(1, -1.25)", "StbMedia.SetZoom(1, -1.25)", "KVR_SetZoom(1, -1.25)", 0, "0"},
        {"StbMedia.SetZoom(1, 1/3)", "StbMedia.SetZoom(1, 0.333333)", "KVR_SetZoom(1, 0.3333333333333333)", 0, "0"},
        {"StbMedia.SetZoom(1, 1234567.5)", "StbMedia.SetZoom(1, 1.23457e+06)", "KVR_SetZoom(1, 1234567.5)", 0, "0"},
        {"StbMedia.SetZoom(1, 5e-324)", "StbMedia.SetZoom(1, 4.94066e-324)", "KVR_SetZoom(1, 5e-324)", 0, "0"},
        {"StbMedia.SetZoom(1, -Infinity)", "StbMedia.SetZoom(1, -inf)", "KVR_SetZoom(1, -inf)", 0, "0"},
        {"StbMedia.SetZoom(1, '1.5')", "StbMedia.SetZoom(1, 1.5)", "KVR_SetZoom(1, 1.5)", 0, "0"},
        {"StbMedia.PlayMagnet(1, 'm', 'n', 0, 0, 0, 23.976023976)", "StbMedia.PlayMagnet(1, m, n, 0, 0, 0, 23.976)",
         "KVR_PlayMagnet(1, m, n, 0, 0, 0, 23.976023976, -1, -1, -1)", 0, "0"},

        // The engine refuses these before any method hears of them.
        {"StbMedia.Pause()", "", "", 0, refused},
        {"StbMedia.Pause(null)", "", "", 0, refused},
        {"StbMedia.Pause(undefined)", "", "", 0, refused},
        {"StbMedia.Pause(NaN)", "", "", 0, refused},
        {"StbMedia.SetSpeed(1)", "", "", 0, refused},
        {"StbMedia.SetPosition(1, null)", "", "", 0, refused},
        {"StbMedia.SetPosition(1, NaN)", "", "", 0, refused},
        {"StbMedia.SetZoom(1, NaN)", "", "", 0, refused},
        {"StbMedia.SetZoom(1, undefined)", "", "", 0, refused},
        {"StbMedia.PlayFile(1, 'x', 0, 0)", "", "", 0, refused},
        {"StbMedia.PlayFile(1, 'x', 0, 0, null, '')", "", "", 0, refused},
        {"StbMedia.PlayFile(1, 'x', 0, NaN, 25, '')", "", "", 0, refused},
        {"StbMedia.PlayFile()", "", "", 0, refused},
    };
    return rows;
}

// Whether the page gets the platform's answer as it is.
bool answersANumber(const ScriptRow &row)
{
    return *row.calls && row.result[0] != '{' && row.result[0] != '[';
}

} // namespace

// The methods of StbMedia as a page calls them.
class TestStbMedia : public ScriptTable
{
    Q_OBJECT

public:
    TestStbMedia()
        : ScriptTable("StbMedia", rows(), answersANumber)
    {
    }

private slots:
    void longNumbersBecomeTheNearestOfThePage_data();
    void longNumbersBecomeTheNearestOfThePage();
    void fractionsKeepAllTheirDigits_data();
    void fractionsKeepAllTheirDigits();
    void aTextEndsAtItsNulForThePlatformOnly();
};

void TestStbMedia::longNumbersBecomeTheNearestOfThePage_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<qlonglong>("answer");
    QTest::addColumn<QString>("result");
    for (const char *const method : {"GetPosition", "GetDuration"}) {
        const auto row = [method](long long answer, const char *result) {
            QTest::addRow("%s %lld", method, answer) << QByteArray(method) << answer << QString(result);
        };
        row(INT_MAX + 1LL, "2147483648");
        row(INT_MIN - 1LL, "-2147483649");
        row(0xffffffffLL, "4294967295");
        row(9007199254740992, "9007199254740992");
        row(9007199254740993, "9007199254740992");
        row(-9007199254740993, "-9007199254740992");
        row(9007199254740995, "9007199254740996");
        row(LLONG_MAX, "9223372036854776000");
        row(LLONG_MIN, "-9223372036854776000");
    }
}

void TestStbMedia::longNumbersBecomeTheNearestOfThePage()
{
    QFETCH(QByteArray, method);
    QFETCH(qlonglong, answer);
    RecordingPlatform::answer("KVR_" + method, answer);
    QTEST(session().run("StbMedia." + method + "(1)").result, "result");
}

void TestStbMedia::fractionsKeepAllTheirDigits_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<double>("answer");
    QTest::addColumn<QString>("result");
    for (const char *const method : {"GetZoom", "GetFps"}) {
        const auto row = [method](double answer, const char *result) {
            QTest::addRow("%s %s", method, result) << QByteArray(method) << answer << QString(result);
        };
        row(0.0, "0");
        row(23.976023976023978, "23.976023976023978");
        row(-0.1, "-0.1");
        row(DBL_MAX, "1.7976931348623157e+308");
        row(5e-324, "5e-324");
        row(qInf(), "Infinity");
        row(-qInf(), "-Infinity");
        row(qQNaN(), "NaN");
    }
}

void TestStbMedia::fractionsKeepAllTheirDigits()
{
    QFETCH(QByteArray, method);
    QFETCH(double, answer);
    RecordingPlatform::answer("KVR_" + method, answer);
    QTEST(session().run("StbMedia." + method + "(1)").result, "result");
}

void TestStbMedia::aTextEndsAtItsNulForThePlatformOnly()
{
    QFETCH_GLOBAL(const bool, tracing);
    const ScriptSession::Outcome outcome = session().run(R"(StbMedia.PlayHttp(1, 'a\u0000b', '\u0000c'))");
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(outcome.calls, QByteArray("KVR_PlayHttp(1, a, , -1, -1, -1)"));
    const QString trace = QString("StbMedia.PlayHttp(1, a%1b, %1c)").arg(QChar(0));
    QCOMPARE(outcome.traces, tracing ? ScriptSession::quoted(trace) : QString());
}

QTEST_MAIN(TestStbMedia)
#include "tst_stbmedia.moc"
