// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"

#include "shell/CStbApplication.h"

#include <QRegularExpression>
#include <QtTest>
#include <memory>

using RecordingPlatform::Answer;

namespace {

const char *const logFile = "/tmp/jsbrowser.log";

// As such portals are written: everything at load, no functions of a later language.
const char *const oldPortal = R"html(
<html><head><title>Old portal</title>
<script language="JavaScript">
var player, heard = '';
function parse(text) { return eval('(' + text + ')'); }
function fill(name, entries) {
    var text = '';
    for (var i = 0; i < entries.length; i++)
        text += '<li>' + entries[i].id + ' ' + entries[i].descr + (entries[i].supported == 1 ? '' : ' (no)') + '</li>';
    document.getElementById(name).innerHTML = text;
}
function onBoxEvent() {
    var event = parse(stb_media.getEventDescription());
    heard += event.id + ':' + event.type + ' ';
    if (event.type == 2)
        fill('audio', eval(stb_media.GetAudioTrackList(player)));
}
function start() {
    player = stb_media.CreatePlayer();
    stb_media.onEvent = 'onBoxEvent()';
    stb_media.PlayFile(player, '/film.avi', 0, 0, 0, '');
}
</script></head>
<body onload="start()"><ul id="audio"></ul></body></html>)html";

// A page half rewritten: what it hears, it hears through both.
const char *const mixedPortal = R"html(
<!DOCTYPE html><title>Half rewritten portal</title>
<script>
var heard = [], handled = [], current = StbMedia.CreatePlayer(), deprecated = stb_media.CreatePlayer();
function descriptions() { return [StbMedia.GetEventDescription(), JSON.parse(stb_media.getEventDescription())]; }
StbMedia.SetEventCallback(function (id, type) { heard.push([id, type, descriptions()]); });
</script>)html";

Answer tracks()
{
    const QVector<KVR_Track> tracks = {{256, "eng ac3", 1, 0}, {257, "rus mp2", 0, 1}};
    return Answer::array(tracks);
}

Answer track(const char *description)
{
    KVR_Track track = {1, {}, 1, 0};
    qstrncpy(track.descr, description, sizeof track.descr);
    return Answer::array(QVector<KVR_Track>{track});
}

Answer window()
{
    const KVR_Rect window = {0, -1, 1280, 720};
    return Answer::structure(window);
}

Answer multicast()
{
    const KVR_MulticastEvent event = {"239.1.1.1:5000", 1};
    return Answer::structure(event);
}

} // namespace

// Pages that were written against the deprecated objects, or against both.
class TestOldPortals : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void textsAreScriptToAPage_data();
    void textsAreScriptToAPage();
    void textsThatAreNoScriptThrow_data();
    void textsThatAreNoScriptThrow();
    void aPageFillsItsMenuFromTheTexts();

    void eventsReachBothRecords_data();
    void eventsReachBothRecords();
    void eitherObjectSetsTheOneHandler();
    void theHandlerOfAnOldPageOutlivesIt();
    void eitherObjectWorksOnThePlayersOfTheOther();
    void theLogHasAHandleForEachObject();

private:
    QString json(const QString &script) { return m_plugin->evaluateToJson(script); }

    std::unique_ptr<HostedPlugin> m_plugin;
};

void TestOldPortals::init()
{
    RecordingPlatform::reset();
    RecordingPlatform::forgetHandlers();
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml(mixedPortal));
}

void TestOldPortals::cleanup()
{
    m_plugin.reset();
}

void TestOldPortals::textsAreScriptToAPage_data()
{
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("value");
    writeBoxFile("/mnt/stb/music/a.mp3", "");
    writeBoxFile("/mnt/stb/music/b's.mp3", "");
    writeBoxFile("/mnt/stb/music/inner/c.mp3", "");
    const QString unknown = R"({"errordescr":"Invalid Id"})";
    const Answer invalid = KVR_ERR_INVALID_ID;
    const QVector<KVR_Track> none;
    const auto row = [](const char *name, const char *function, const Answer &answer, const char *call,
                        const QString &value) {
        QTest::newRow(name) << QByteArray(function) << answer << QString(call) << value;
    };

    const QString plain = R"([{"id":"256","descr":"eng ac3","supported":"1"},)"
                          R"({"id":"257","descr":"rus mp2","supported":"0"}])";
    row("video tracks", "KVR_GetVideoTrackList", tracks(), "stb_media.GetVideoTrackList(1)", plain);
    row("audio tracks", "KVR_GetAudioTrackList", tracks(), "stb_media.GetAudioTrackList(1)", plain);
    row("subtitle tracks", "KVR_GetSubtitleTrackList", tracks(), "stb_media.GetSubtitleTrackList(1)",
        R"([{"id":"256","descr":"eng ac3","supported":"1","encoding":"0"},)"
        R"({"id":"257","descr":"rus mp2","supported":"0","encoding":"1"}])");
    row("no tracks", "KVR_GetAudioTrackList", Answer::array(none), "stb_media.GetAudioTrackList(1)", "[]");
    row("tracks of no player", "KVR_GetAudioTrackList", invalid, "stb_media.GetAudioTrackList(1)", unknown);
    row("window", "KVR_GetPlayerViewPort", window(), "stb_media.GetPlayerViewPort(1)",
        R"({"x":"0","y":"-1","width":"1280","height":"720"})");
    row("window of no player", "KVR_GetPlayerViewPort", invalid, "stb_media.GetPlayerViewPort(1)", unknown);
    row("group", "KVR_GetLastMulticastEvent", multicast(), "stb_media.GetLastMulticastEvent(1)",
        R"({"ip_port":"239.1.1.1:5000","state":"join"})");
    row("group of no player", "KVR_GetLastMulticastEvent", invalid, "stb_media.GetLastMulticastEvent(1)", unknown);
    row("event", "", 0, "stb_media.getEventDescription()", R"({"id":"0","type":"0"})");
    row("graphics layer", "KVR_GetGraphicsViewport", window(), "stb_display.getGraphicsViewport()",
        R"({"x":"0","y":"-1","width":"1280","height":"720"})");
    row("no graphics layer", "KVR_GetGraphicsViewport", invalid, "stb_display.getGraphicsViewport()", unknown);
    row("files", "", 0, "stb_display.ListFiles('/music')", R"(["a.mp3","b's.mp3"])");
    row("directories", "", 0, "stb_display.ListDirs('/music')", R"([".","..","inner"])");
    row("files of no directory", "", 0, "stb_display.ListFiles('/none')", "[]");
}

void TestOldPortals::textsAreScriptToAPage()
{
    QFETCH(const QByteArray, function);
    QFETCH(const Answer, answer);
    QFETCH(const QString, call);
    if (!function.isEmpty())
        RecordingPlatform::answer(function, answer);
    QTEST(json("eval('(' + " + call + " + ')')"), "value");
}

void TestOldPortals::textsThatAreNoScriptThrow_data()
{
    QTest::addColumn<QByteArray>("description");
    QTest::newRow("double quote") << QByteArray("24\" cut");
    QTest::newRow("end of line") << QByteArray("two\nlines");
    QTest::newRow("backslash at the end") << QByteArray("a\\");
}

void TestOldPortals::textsThatAreNoScriptThrow()
{
    QFETCH(const QByteArray, description);
    RecordingPlatform::answer("KVR_GetAudioTrackList", track(description));
    const QString result = json("eval(stb_media.GetAudioTrackList(1))");
    QVERIFY2(result.startsWith("throws SyntaxError"), qPrintable(result));
}

void TestOldPortals::aPageFillsItsMenuFromTheTexts()
{
    RecordingPlatform::answer("KVR_GetAudioTrackList", tracks());
    RecordingPlatform::answer("KVR_CreatePlayer", 4);
    RecordingPlatform::takeCalls();
    QVERIFY(m_plugin->loadHtml(oldPortal));
    QVERIFY(RecordingPlatform::takeCalls().contains("KVR_PlayFile(4, /mnt/stb/film.avi, 0, 0, 0, , -1, -1, -1)"));

    RecordingPlatform::fire(4, KVR_EVENT_STATE);
    RecordingPlatform::fire(4, KVR_EVENT_METADATA);
    RecordingPlatform::fire(4, KVR_EVENT_POSITION);
    QTRY_COMPARE(json("heard"), QString(R"("4:1 4:2 4:3 ")"));
    QCOMPARE(json("document.getElementById('audio').innerHTML"),
             QString(R"("<li>256 eng ac3</li><li>257 rus mp2 (no)</li>")"));
}

void TestOldPortals::eventsReachBothRecords_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("argument");
    QTest::newRow("of a player of the current object") << 1 << int(KVR_EVENT_POSITION) << 1;
    QTest::newRow("of a player of the deprecated object") << 2 << int(KVR_EVENT_STATE) << 2;
    QTest::newRow("of the box") << int(KVR_BOX) << int(KVR_EVENT_HDMI) << -5;
    QTest::newRow("of a recording") << int(KVR_BOX) << int(KVR_EVENT_RECORDS) << 7;
}

void TestOldPortals::eventsReachBothRecords()
{
    QFETCH(const int, id);
    QFETCH(const int, type);
    QFETCH(const int, argument);
    QCOMPARE(json("[current, deprecated]"), QString("[1,2]"));
    RecordingPlatform::fire(id, type, argument);
    // Both are up to date by the time the page hears of the event.
    QTRY_COMPARE(json("heard"),
                 QString(R"([[%1,%2,[{"id":%1,"type":%2},{"id":"%1","type":"%2"}]]])").arg(argument).arg(type));
}

void TestOldPortals::eitherObjectSetsTheOneHandler()
{
    const auto fireAndWait = [this](int events) {
        RecordingPlatform::fire(1, KVR_EVENT_STATE);
        return QTest::qWaitFor([&] { return json("heard.length") == QString::number(events); });
    };
    json("StbMedia.onEvent = 'handled.push(1)'");
    QVERIFY(fireAndWait(1));
    json("stb_media.onEvent = 'handled.push(2)'");
    QVERIFY(fireAndWait(2));
    json("StbMedia.onEvent = 'handled.push(3)'");
    QVERIFY(fireAndWait(3));
    QCOMPARE(json("handled"), QString("[1,2,3]"));
    QCOMPARE(json("[StbMedia.onEvent, stb_media.onEvent]"), QString(R"(["",""])"));
    json("stb_media.onEvent = ''");
    QVERIFY(fireAndWait(4));
    QCOMPARE(json("handled"), QString("[1,2,3]"));
}

void TestOldPortals::theHandlerOfAnOldPageOutlivesIt()
{
    json("stb_media.onEvent = 'handled.push(stb_media.getEventDescription())'");
    QVERIFY(m_plugin->loadHtml("<script>var handled = []</script>"));
    RecordingPlatform::fire(2, KVR_EVENT_POSITION);
    QTRY_COMPARE(json("handled"), QString(R"(["{\"id\":\"2\",\"type\":\"3\"}"])"));
    QCOMPARE(json("StbMedia.GetEventDescription()"), QString(R"({"id":2,"type":3})"));
}

void TestOldPortals::eitherObjectWorksOnThePlayersOfTheOther()
{
    RecordingPlatform::takeCalls();
    json("stb_media.Pause(current); StbMedia.Continue(deprecated); stb_media.ClosePlayer(current)");
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList({"KVR_Pause(1)", "KVR_Continue(2)", "KVR_ClosePlayer(1)"}));
    json("StbMedia.ClosePlayer(deprecated)");
    QCOMPARE(RecordingPlatform::takeCalls(),
             QByteArrayList({"KVR_GetVolume(2)", "KVR_IsMute(2)", "KVR_ClosePlayer(2)"}));
}

// Each goes on where it has stopped itself.
void TestOldPortals::theLogHasAHandleForEachObject()
{
    const auto logText = [] {
        static const QRegularExpression time("\\d\\d:\\d\\d:\\d\\d");
        return QString::fromUtf8(boxFile(logFile)).replace(time, "time");
    };
    json("StbDisplay.Log('first')");
    QCOMPARE(logText(), QString("time first\n"));
    json("stb_display.log('2nd')");
    QCOMPARE(logText(), QString("time 2nd\nt\n"));
    json("StbDisplay.Log('third')");
    QCOMPARE(logText(), QString("time 2nd\nt\ntime third\n"));
}

QTEST_MAIN(TestOldPortals)

#include "tst_oldportals.moc"
