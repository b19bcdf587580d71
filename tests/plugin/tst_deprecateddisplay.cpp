// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "StreamCapture.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"
#include "tests/support/OddFile.h"

#include "shell/CStbApplication.h"

#include <QNetworkInterface>
#include <QtTest>
#include <climits>
#include <memory>

using RecordingPlatform::Answer;

namespace {

// What an old portal's author would check by hand. The answer is that of the call to the platform.
struct Row
{
    const char *name;
    const char *script;
    const char *trace;
    const char *call;
    Answer answer;
    const char *result;       ///< as JSON
    const char *console = ""; ///< what appears on standard output

    QByteArray member() const { return QByteArray(script).split('(').first().split(' ').first().split('.').last(); }
    QByteArray function() const { return QByteArray(call).split('(').first(); }
};

Answer viewport(const KVR_Rect &rect, int result = KVR_OK)
{
    return Answer::structure(rect, result);
}

Answer color(const KVR_Color &color, int result = KVR_OK)
{
    return Answer::structure(color, result);
}

const QVector<Row> &rows()
{
    static const QVector<Row> rows = {
        {"time zone", "stb_display.setStb_displaytimeZone()", "stb_display.setStb_displaytimeZone()", "", 0, "0",
         "stb_displaytimeZone SET \n"},
        {"viewport", "stb_display.setGraphicsViewport(1, -2, 1280, 720)",
         "stb_display.setGraphicsViewport(1, -2, 1280, 720)", "KVR_SetGraphicsViewport({1, -2, 1280, 720})", -7, "-7"},
        {"viewport asked", "stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()",
         "KVR_GetGraphicsViewport()", viewport({0, 0, 1280, 720}),
         R"("{\"x\":\"0\",\"y\":\"0\",\"width\":\"1280\",\"height\":\"720\"}")"},
        {"viewport of extremes asked", "stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()",
         "KVR_GetGraphicsViewport()", viewport({INT_MIN, -2, INT_MAX, 4}),
         R"("{\"x\":\"-2147483648\",\"y\":\"-2\",\"width\":\"2147483647\",\"height\":\"4\"}")"},
        {"viewport asked though the platform fails", "stb_display.getGraphicsViewport()",
         "stb_display.getGraphicsViewport()", "KVR_GetGraphicsViewport()", viewport({1, 2, 3, 4}, -1),
         R"("{\"x\":\"1\",\"y\":\"2\",\"width\":\"3\",\"height\":\"4\"}")"},
        {"viewport of no layer asked", "stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()",
         "KVR_GetGraphicsViewport()", viewport({1, 2, 3, 4}, KVR_ERR_INVALID_ID),
         R"("{\"errordescr\":\"Invalid Id\"}")"},
        {"visible", "stb_display.setGraphicsVisible(2)", "stb_display.setGraphicsVisible(2)",
         "KVR_SetGraphicsVisible(2)", -6, "-6"},
        {"visible asked", "stb_display.isGraphicsVisible()", "stb_display.isGraphicsVisible()",
         "KVR_IsGraphicsVisible()", 1, "1"},
        {"alpha", "stb_display.setAlphaLevel(128)", "stb_display.setAlphaLevel(128)", "KVR_SetGraphicsAlphaLevel(128)",
         -5, "-5"},
        {"alpha beyond a signed number", "stb_display.setAlphaLevel(4294967295)",
         "stb_display.setAlphaLevel(4294967295)", "KVR_SetGraphicsAlphaLevel(4294967295)", 0, "0"},
        {"alpha asked", "stb_display.getAlphaLevel()", "stb_display.getAlphaLevel()", "KVR_GetGraphicsAlphaLevel()",
         255, "255"},

        {"boot parameter of the platform", "stb_display.SetBootParamValue('hdmi_config', '1')",
         "stb_display.SetBootParamValue(hdmi_config, 1)", "", 0, "1"},
        {"boot parameter like places of the template", "stb_display.SetBootParamValue('%2', '%1')",
         "stb_display.SetBootParamValue(%2, %1)", "", 0, "1"},
        {"resolution in capitals", "stb_display.SetBootParamValue('DFBRES', '1920x1080')",
         "stb_display.SetBootParamValue(DFBRES, 1920x1080)", "", 0, "1"},
        {"resolution", "stb_display.SetBootParamValue('dfbres', '1280x720')",
         "stb_display.SetBootParamValue(dfbres, 1280x720)", "", 0, "0"},
        {"resolution asked", "stb_display.GetBootParamValue('dfbres')", "stb_display.GetBootParamValue(dfbres)", "", 0,
         R"("1280x720")"},
        {"boot parameter asked", "stb_display.GetBootParamValue('%1')", "stb_display.GetBootParamValue(%1)",
         "KVR_GetBootParamValue(%1)", Answer::buffer(QByteArray("1080p50 \xe9\0x", 11)), R"("1080p50 é")"},
        {"boot parameter asked though the platform fails", "stb_display.GetBootParamValue('ж')",
         "stb_display.GetBootParamValue(ж)", "KVR_GetBootParamValue(ж)", Answer::buffer(QByteArray("v\0", 2), -1),
         R"("v")"},
        {"boot parameters synchronised", "stb_display.SyncBootParams()", "stb_display.SyncBootParams()",
         "KVR_SyncBootParams()", -7, "0"},

        {"chroma key", "stb_display.setChromaKey(0x12345678)", "stb_display.setChromaKey(305419896)",
         "KVR_SetChromaKey({52, 86, 120, 255})", -4, "-4"},
        {"chroma key asked", "stb_display.getChromaKey()", "stb_display.getChromaKey()", "KVR_GetChromaKey()",
         color({0x34, 0x56, 0x78, 9}, -127), "3430008"},
        {"chroma key enabled asked", "stb_display.isChromaKeyEnable()", "stb_display.isChromaKeyEnable()",
         "KVR_IsChromaKeyEnable()", 1, "1"},
        {"chroma key enabled", "stb_display.setChromaKeyEnable(2)", "stb_display.setChromaKeyEnable(2)",
         "KVR_SetChromaKeyEnable(2)", -3, "-3"},
        {"layout", "stb_display.setCurrentRMLayout(3)", "stb_display.setCurrentRMLayout(3)", "KVR_SetCurrentLayout(3)",
         -2, "-2"},
        {"layout asked", "stb_display.getCurrentRMLayout()", "stb_display.getCurrentRMLayout()",
         "KVR_GetCurrentLayout()", 3, "3"},
        {"next layout", "stb_display.switchToNextRMLayout()", "stb_display.switchToNextRMLayout()",
         "KVR_SwitchToNextLayout()", 4, "4"},
        {"upgrade", "stb_display.UpgradeFirmware('http://h/ж %1')", "stb_display.UpgradeFirmware(http://h/ж %1)",
         "KVR_UpgradeFirmware(http://h/ж %1)", -7, "0"},
        {"outputs asked", "stb_display.IsOutportsEnabled()", "stb_display.IsOutportsEnabled()",
         "KVR_IsOutportsEnabled()", 1, "1"},

        {"files", "stb_display.ListFiles('/none %1')", "stb_display.ListFiles(/none %1)", "", 0, R"("[\n]")"},
        {"directories", "stb_display.ListDirs('/none %1')", "stb_display.ListDirs(/none %1)", "", 0, R"("[\n]")"},
        {"debug", "stb_display.debug('ж \"%1\"')", "stb_display.debug(ж \"%1\")", "", 0, "0", "debugж \"%1\"\n"},
        {"empty debug", "stb_display.debug('')", "stb_display.debug()", "", 0, "0", "debug\n"},
        {"log", "stb_display.log('ж \"%1\"')", "stb_display.log(ж \"%1\")", "", 0, "0"},
        {"time update", "stb_display.ntpUpdate()", "stb_display.ntpUpdate()", "", 0, "0",
         "stb_displayProtoFunntpUpdate \n"},
        {"media status", "stb_display.setMediaStatus()", "stb_display.setMediaStatus()", "", 0, "0"},
        {"standby", "stb_display.standby()", "stb_display.standby()", "", 0, "0", "setmediaStatus \n"},
        // Ours, see initTestCase().
        {"reboot", "stb_display.reboot()", "stb_display.reboot()", "", 0, "0"},

        {"browser version", "stb_display.browserVersion", "stb_display.browserVersion", "", 0, R"("Qt/Webkit 4.7.0")"},
        {"time zone asked", "stb_display.timeZone", "stb_display.timeZone", "", 0, "\"(\""},
        {"mode asked", "stb_display.mode", "stb_display.mode", "", 0, R"("\u0001")"},
        {"model", "stb_display.model", "stb_display.model", "", 0, R"("MZ412")"},
        {"processor", "stb_display.cpuname", "stb_display.cpuname", "", 0, R"("MIPS-SMP8655A")"},
        {"frequency", "stb_display.cpufreq", "stb_display.cpufreq", "", 0, R"("500 MHz")"},
        {"firmware of an unknown version", "stb_display.FirmwareVersion", "stb_display.getFirmwareVersion()", "", 0,
         R"("")"},
        {"serial number", "stb_display.SerialNumber", "stb_display.SerialNumber", "", 0, R"("00000001")"},
        // Their values are the machine's, see below.
        {"hardware address", "typeof stb_display.macaddr", "stb_display.macaddr", "", 0, R"("string")"},
        {"network address", "typeof stb_display.netip", "stb_display.netip", "", 0, R"("string")"},

        {"no HDMI state", "stb_display.GetHdmiState", "", "", 0, "undefined"},
        {"no order", "stb_display.GetOrder", "", "", 0, "undefined"},
        {"no scripts", "stb_display.ExecBlocking", "", "", 0, "undefined"},
    };
    return rows;
}

// What the methods answer whose answer is the platform's.
const char *const passingThrough[] = {"viewport",
                                      "visible",
                                      "visible asked",
                                      "alpha",
                                      "alpha asked",
                                      "chroma key",
                                      "chroma key enabled asked",
                                      "chroma key enabled",
                                      "layout",
                                      "layout asked",
                                      "next layout",
                                      "outputs asked"};

const char *const userManifest = "/home/user/config/plugins/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
const char *const rebootLog = "/tmp/rebooted";

} // namespace

// The methods and properties of stb_display as an old portal uses them, with tracing on and off.
class TestDeprecatedDisplay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void scripts_data();
    void scripts();
    void everyMemberHasARow();
    void numbersOfThePlatformReachThePageUnchanged_data();
    void numbersOfThePlatformReachThePageUnchanged();
    void propertiesCannotBeWritten_data();
    void propertiesCannotBeWritten();
    void addressesAreThoseOfTheWiredNetwork();
    void theFirmwareVersionIsTheFirstLineOfItsFile_data();
    void theFirmwareVersionIsTheFirstLineOfItsFile();
    void anOddFileIsNoFirmwareVersion_data();
    void anOddFileIsNoFirmwareVersion();
    void rebootRunsTheCommandOfThatName();
    void aResolutionIsKeptAndTold();
    void resolutionsThatAreNoneAreRefused_data();
    void resolutionsThatAreNoneAreRefused();
    void theResolutionOfTheSystemIsLeftAlone();
    void refusedCallsReachNobody_data();
    void refusedCallsReachNobody();

private:
    std::unique_ptr<ScriptSession> m_session;
    bool m_tracing = false;
};

void TestDeprecatedDisplay::initTestCase_data()
{
    QTest::addColumn<bool>("tracing");
    QTest::newRow("not traced") << false;
    QTest::newRow("traced") << true;
}

void TestDeprecatedDisplay::initTestCase()
{
    const QString reboot = "/tmp/commands/reboot";
    writeBoxFile(reboot, QByteArray("#!/bin/sh\necho rebooted \"$@\" >> ") + rebootLog + '\n');
    QVERIFY(QFile(reboot).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    qputenv("PATH", "/tmp/commands:" + qgetenv("PATH"));
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestDeprecatedDisplay::init()
{
    QFETCH_GLOBAL(const bool, tracing);
    RecordingPlatform::reset();
    QFile::remove("/home/user/version");
    QDir().rmdir("/home/user/version");
    QFile::remove(rebootLog);
    if (tracing != m_tracing)
        QVERIFY(m_session->setTracing(tracing));
    m_tracing = tracing;
}

void TestDeprecatedDisplay::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestDeprecatedDisplay::cleanupTestCase()
{
    m_session.reset();
}

void TestDeprecatedDisplay::scripts_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < rows().size(); ++i)
        QTest::newRow(rows()[i].name) << i;
}

void TestDeprecatedDisplay::scripts()
{
    QFETCH_GLOBAL(const bool, tracing);
    QFETCH(const int, index);
    const Row &row = rows()[index];
    QStringList tracesInCall;
    if (*row.call) {
        RecordingPlatform::answer(row.function(), row.answer);
        RecordingPlatform::onCall(row.function(), [&] { tracesInCall = m_session->log().debugLines(); });
    }

    const StreamCapture console(std::cout);
    const ScriptSession::Outcome outcome = m_session->run(row.script);
    QCOMPARE(outcome.result, QString(row.result));
    QCOMPARE(outcome.calls, QByteArray(row.call));
    QCOMPARE(outcome.traces, tracing ? ScriptSession::quotedLines(row.trace) : QString());
    // Traced before anything else.
    QCOMPARE(tracesInCall.isEmpty(), !tracing || !*row.call);
    QCOMPARE(console.text(), QByteArray(row.console));
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.warnings, QStringList());
}

void TestDeprecatedDisplay::everyMemberHasARow()
{
    const QStringList members = m_session->plugin().evaluate("Object.keys(stb_display)").toStringList();
    // What the toolkit gives to every object.
    const QSet<QByteArray> others = {"destroyed", "deleteLater", "objectName"};
    QSet<QByteArray> found;
    for (const QString &member : members)
        found += member.toUtf8().split('(').first();
    found -= others;
    QSet<QByteArray> tested;
    for (const Row &row : rows()) {
        if (row.result != QByteArray("undefined"))
            tested +=
                QByteArray(row.script).contains("typeof") ? QByteArray(row.script).split('.').last() : row.member();
    }
    QCOMPARE(found - tested, QSet<QByteArray>());
    QCOMPARE(tested - found, QSet<QByteArray>());
    QCOMPARE(found.size(), 27 + 10);
}

void TestDeprecatedDisplay::numbersOfThePlatformReachThePageUnchanged_data()
{
    QTest::addColumn<int>("index");
    for (const char *name : passingThrough) {
        for (int i = 0; i < rows().size(); ++i) {
            if (qstrcmp(rows()[i].name, name) == 0)
                QTest::newRow(name) << i;
        }
    }
}

void TestDeprecatedDisplay::numbersOfThePlatformReachThePageUnchanged()
{
    QFETCH(const int, index);
    const Row &row = rows()[index];
    for (const int answer : {0, 1, INT_MAX, -1, int(KVR_ERR_INVALID_ID), INT_MIN}) {
        RecordingPlatform::answer(row.function(), answer);
        QCOMPARE(m_session->run(row.script).result, QString::number(answer));
    }
}

void TestDeprecatedDisplay::propertiesCannotBeWritten_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"browserVersion", "timeZone", "macaddr", "netip", "mode", "model", "cpuname", "cpufreq",
                             "FirmwareVersion", "SerialNumber"})
        QTest::newRow(name) << name;
}

void TestDeprecatedDisplay::propertiesCannotBeWritten()
{
    QFETCH(const QString, name);
    const QString before = m_session->run("stb_display." + name).result;
    m_session->run("stb_display." + name + " = 'mine'");
    QCOMPARE(m_session->run("stb_display." + name).result, before);
}

void TestDeprecatedDisplay::addressesAreThoseOfTheWiredNetwork()
{
    const QNetworkInterface wired = QNetworkInterface::interfaceFromName("eth0");
    const QList<QNetworkAddressEntry> entries = wired.addressEntries();
    QCOMPARE(m_session->plugin().evaluate("stb_display.macaddr").toString(), wired.hardwareAddress().toLower());
    QCOMPARE(m_session->plugin().evaluate("stb_display.netip").toString(),
             entries.isEmpty() ? QString("") : entries.first().ip().toString());
}

void TestDeprecatedDisplay::theFirmwareVersionIsTheFirstLineOfItsFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("version");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("empty line") << QByteArray("\n2.1\n") << QString();
    QTest::newRow("several lines") << QByteArray("2.1 rc\n2.0\n") << QString("2.1 rc");
    QTest::newRow("no end of line") << QByteArray("2.1") << QString("2.1");
    QTest::newRow("lines of another system") << QByteArray("2.1\r\n2.0\r\n") << QString("2.1");
    QTest::newRow("32 characters") << QByteArray("01234567890123456789012345678901\n")
                                   << QString("01234567890123456789012345678901");
    QTest::newRow("40 characters") << QByteArray("0123456789012345678901234567890123456789\n")
                                   << QString("01234567890123456789012345678901");
    QTest::newRow("40 characters of two bytes") << QString(40, QChar(0x416)).toUtf8() + '\n'
                                                << QString(32, QChar(0x416));
}

void TestDeprecatedDisplay::theFirmwareVersionIsTheFirstLineOfItsFile()
{
    QFETCH(const QByteArray, file);
    writeBoxFile("/home/user/version", file);
    QTEST(m_session->plugin().evaluate("stb_display.FirmwareVersion").toString(), "version");
}

void TestDeprecatedDisplay::anOddFileIsNoFirmwareVersion_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QString(row.what);
}

void TestDeprecatedDisplay::anOddFileIsNoFirmwareVersion()
{
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    QVERIFY(OddFile::put("/home/user/version", OddFile::Kind(kind)));
    const ScriptSession::Outcome outcome = m_session->run("stb_display.FirmwareVersion");
    QCOMPARE(outcome.result, QString("\"\""));
    static QStringList said; // once, and so not in the second round
    QCOMPARE(outcome.warnings.filter("/home/user/version is " + what).size(), said.contains(what) ? 0 : 1);
    said += what;
}

void TestDeprecatedDisplay::rebootRunsTheCommandOfThatName()
{
    m_session->run("stb_display.reboot()");
    // The call has waited for it.
    QCOMPARE(boxFile(rebootLog), QByteArray("rebooted\n"));
}

void TestDeprecatedDisplay::aResolutionIsKeptAndTold()
{
    m_session->run("var heard = []; StbMedia.SetEventCallback(function (a, b) { heard.push([a, b]); })");
    QCOMPARE(m_session->run("stb_display.SetBootParamValue('dfbres', '720x576')").result, QString("0"));
    QCOMPARE(m_session->run("stb_display.GetBootParamValue('dfbres')").result, QString(R"("720x576")"));
    QTRY_COMPARE(m_session->run("heard").result, QString("[[-128,137]]"));
    const QByteArray kept = boxFile(userManifest);
    QVERIFY2(kept.contains("width=\"720\"") && kept.contains("height=\"576\""), kept);
    // As the other tests have it.
    QCOMPARE(m_session->run("stb_display.SetBootParamValue('dfbres', '1280x720')").result, QString("0"));
    QTRY_COMPARE(m_session->run("heard").result, QString("[[-128,137],[-128,137]]"));
}

void TestDeprecatedDisplay::resolutionsThatAreNoneAreRefused_data()
{
    QTest::addColumn<QString>("value");
    for (const char *value : {"1920x", "x1080", "1920x1080x5", "1920*1080", "1920X1080", " 1920x1080", "1920x1080 ", "",
                              "-1920x1080", "1920x12345678901"})
        QTest::addRow("'%s'", value) << value;
}

void TestDeprecatedDisplay::resolutionsThatAreNoneAreRefused()
{
    QFETCH(const QString, value);
    const QByteArray kept = boxFile(userManifest);
    const ScriptSession::Outcome outcome = m_session->run("stb_display.SetBootParamValue('dfbres', '" + value + "')");
    QCOMPARE(outcome.result, QString("1"));
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(boxFile(userManifest), kept);
    QCOMPARE(m_session->run("stb_display.GetBootParamValue('dfbres')").result, QString(R"("1280x720")"));
}

void TestDeprecatedDisplay::theResolutionOfTheSystemIsLeftAlone()
{
    m_session.reset();
    PluginManifest manifest;
    manifest.hdResolution = QSize(1920, 1080);
    manifest.sdResolution = QSize(720, 576);
    HostedPlugin::writeManifest(manifest);
    const QByteArray kept = boxFile(userManifest);
    {
        HostedPlugin plugin;
        QVERIFY(plugin.start());
        QVERIFY(plugin.loadHtml("<!DOCTYPE html><title>Systemwide</title>"));
        QCOMPARE(plugin.evaluateToJson("stb_display.SetBootParamValue('dfbres', '640x480')"), QString("1"));
        QCOMPARE(plugin.evaluateToJson("stb_display.GetBootParamValue('dfbres')"), QString(R"("1920x1080")"));
    }
    QCOMPARE(boxFile(userManifest), kept);
    // The session starts traced or not, as it was.
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

// The engine refuses these before any method hears of them.
void TestDeprecatedDisplay::refusedCallsReachNobody_data()
{
    QTest::addColumn<QString>("script");
    for (const char *script : {"setGraphicsViewport(1, 2, 3)", "setAlphaLevel()", "setAlphaLevel(null)",
                               "setChromaKey(NaN)", "SetBootParamValue('dfbres')", "ListFiles()", "log()", "debug()"})
        QTest::newRow(script) << QString("stb_display.%1").arg(script);
}

void TestDeprecatedDisplay::refusedCallsReachNobody()
{
    QFETCH(const QString, script);
    const ScriptSession::Outcome outcome = m_session->run(script);
    QVERIFY2(outcome.result.startsWith("throws "), qPrintable(outcome.result));
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(outcome.traces, QString());
}

QTEST_MAIN(TestDeprecatedDisplay)

#include "tst_deprecateddisplay.moc"
