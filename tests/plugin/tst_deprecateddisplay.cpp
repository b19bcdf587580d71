// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptTable.h"
#include "tests/support/BoxFile.h"
#include "tests/support/OddFile.h"

#include "shell/CStbApplication.h"

#include <QNetworkInterface>
#include <QtTest>
#include <climits>

using RecordingPlatform::Answer;

namespace {

Answer viewport(const KVR_Rect &rect, int result = KVR_OK)
{
    return Answer::structure(rect, result);
}

Answer color(const KVR_Color &color, int result = KVR_OK)
{
    return Answer::structure(color, result);
}

const QVector<ScriptRow> &rows()
{
    static const QVector<ScriptRow> rows = {
        {"stb_display.setStb_displaytimeZone()", "stb_display.setStb_displaytimeZone()", "", 0, "0", "time zone",
         "stb_displaytimeZone SET \n"},
        {"stb_display.setGraphicsViewport(1, -2, 1280, 720)", "stb_display.setGraphicsViewport(1, -2, 1280, 720)",
         "KVR_SetGraphicsViewport({1, -2, 1280, 720})", -7, "-7", "viewport"},
        {"stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()", "KVR_GetGraphicsViewport()",
         viewport({0, 0, 1280, 720}), R"("{\"x\":\"0\",\"y\":\"0\",\"width\":\"1280\",\"height\":\"720\"}")",
         "viewport asked"},
        {"stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()", "KVR_GetGraphicsViewport()",
         viewport({INT_MIN, -2, INT_MAX, 4}),
         R"("{\"x\":\"-2147483648\",\"y\":\"-2\",\"width\":\"2147483647\",\"height\":\"4\"}")",
         "viewport of extremes asked"},
        {"stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()", "KVR_GetGraphicsViewport()",
         viewport({1, 2, 3, 4}, -1), R"("{\"x\":\"1\",\"y\":\"2\",\"width\":\"3\",\"height\":\"4\"}")",
         "viewport asked though the platform fails"},
        {"stb_display.getGraphicsViewport()", "stb_display.getGraphicsViewport()", "KVR_GetGraphicsViewport()",
         viewport({1, 2, 3, 4}, KVR_ERR_INVALID_ID), R"("{\"errordescr\":\"Invalid Id\"}")",
         "viewport of no layer asked"},
        {"stb_display.setGraphicsVisible(2)", "stb_display.setGraphicsVisible(2)", "KVR_SetGraphicsVisible(2)", -6,
         "-6", "visible"},
        {"stb_display.isGraphicsVisible()", "stb_display.isGraphicsVisible()", "KVR_IsGraphicsVisible()", 1, "1",
         "visible asked"},
        {"stb_display.setAlphaLevel(128)", "stb_display.setAlphaLevel(128)", "KVR_SetGraphicsAlphaLevel(128)", -5, "-5",
         "alpha"},
        {"stb_display.setAlphaLevel(4294967295)", "stb_display.setAlphaLevel(4294967295)",
         "KVR_SetGraphicsAlphaLevel(4294967295)", 0, "0", "alpha beyond a signed number"},
        {"stb_display.getAlphaLevel()", "stb_display.getAlphaLevel()", "KVR_GetGraphicsAlphaLevel()", 255, "255",
         "alpha asked"},

        {"stb_display.SetBootParamValue('hdmi_config', '1')", "stb_display.SetBootParamValue(hdmi_config, 1)", "", 0,
         "1", "boot parameter of the platform"},
        {"stb_display.SetBootParamValue('%2', '%1')", "stb_display.SetBootParamValue(%2, %1)", "", 0, "1",
         "boot parameter like places of the template"},
        {"stb_display.SetBootParamValue('DFBRES', '1920x1080')", "stb_display.SetBootParamValue(DFBRES, 1920x1080)", "",
         0, "1", "resolution in capitals"},
        {"stb_display.SetBootParamValue('dfbres', '1280x720')", "stb_display.SetBootParamValue(dfbres, 1280x720)", "",
         0, "0", "resolution"},
        {"stb_display.GetBootParamValue('dfbres')", "stb_display.GetBootParamValue(dfbres)", "", 0, R"("1280x720")",
         "resolution asked"},
        {"stb_display.GetBootParamValue('%1')", "stb_display.GetBootParamValue(%1)", "KVR_GetBootParamValue(%1)",
         Answer::buffer(QByteArray("1080p50 \xe9\0x", 11)), R"("1080p50 é")", "boot parameter asked"},
        {"stb_display.GetBootParamValue('ж')", "stb_display.GetBootParamValue(ж)", "KVR_GetBootParamValue(ж)",
         Answer::buffer(QByteArray("v\0", 2), -1), R"("v")", "boot parameter asked though the platform fails"},
        {"stb_display.SyncBootParams()", "stb_display.SyncBootParams()", "KVR_SyncBootParams()", -7, "0",
         "boot parameters synchronised"},

        {"stb_display.setChromaKey(0x12345678)", "stb_display.setChromaKey(305419896)",
         "KVR_SetChromaKey({52, 86, 120, 255})", -4, "-4", "chroma key"},
        {"stb_display.getChromaKey()", "stb_display.getChromaKey()", "KVR_GetChromaKey()",
         color({0x34, 0x56, 0x78, 9}, -127), "3430008", "chroma key asked"},
        {"stb_display.isChromaKeyEnable()", "stb_display.isChromaKeyEnable()", "KVR_IsChromaKeyEnable()", 1, "1",
         "chroma key enabled asked"},
        {"stb_display.setChromaKeyEnable(2)", "stb_display.setChromaKeyEnable(2)", "KVR_SetChromaKeyEnable(2)", -3,
         "-3", "chroma key enabled"},
        {"stb_display.setCurrentRMLayout(3)", "stb_display.setCurrentRMLayout(3)", "KVR_SetCurrentLayout(3)", -2, "-2",
         "layout"},
        {"stb_display.getCurrentRMLayout()", "stb_display.getCurrentRMLayout()", "KVR_GetCurrentLayout()", 3, "3",
         "layout asked"},
        {"stb_display.switchToNextRMLayout()", "stb_display.switchToNextRMLayout()", "KVR_SwitchToNextLayout()", 4, "4",
         "next layout"},
        {"stb_display.UpgradeFirmware('http://h/ж %1')", "stb_display.UpgradeFirmware(http://h/ж %1)",
         "KVR_UpgradeFirmware(http://h/ж %1)", -7, "0", "upgrade"},
        {"stb_display.IsOutportsEnabled()", "stb_display.IsOutportsEnabled()", "KVR_IsOutportsEnabled()", 1, "1",
         "outputs asked"},

        {"stb_display.ListFiles('/none %1')", "stb_display.ListFiles(/none %1)", "", 0, R"("[\n]")", "files"},
        {"stb_display.ListDirs('/none %1')", "stb_display.ListDirs(/none %1)", "", 0, R"("[\n]")", "directories"},
        {"stb_display.debug('ж \"%1\"')", "stb_display.debug(ж \"%1\")", "", 0, "0", "debug", "debugж \"%1\"\n"},
        {"stb_display.debug('')", "stb_display.debug()", "", 0, "0", "empty debug", "debug\n"},
        {"stb_display.log('ж \"%1\"')", "stb_display.log(ж \"%1\")", "", 0, "0", "log"},
        {"stb_display.ntpUpdate()", "stb_display.ntpUpdate()", "", 0, "0", "time update",
         "stb_displayProtoFunntpUpdate \n"},
        {"stb_display.setMediaStatus()", "stb_display.setMediaStatus()", "", 0, "0", "media status"},
        {"stb_display.standby()", "stb_display.standby()", "", 0, "0", "standby", "setmediaStatus \n"},
        // Ours, see initTestCase().
        {"stb_display.reboot()", "stb_display.reboot()", "", 0, "0", "reboot"},

        {"stb_display.browserVersion", "stb_display.browserVersion", "", 0, R"("Qt/Webkit 4.7.0")", "browser version"},
        {"stb_display.timeZone", "stb_display.timeZone", "", 0, "\"(\"", "time zone asked"},
        {"stb_display.mode", "stb_display.mode", "", 0, R"("\u0001")", "mode asked"},
        {"stb_display.model", "stb_display.model", "", 0, R"("MZ412")", "model"},
        {"stb_display.cpuname", "stb_display.cpuname", "", 0, R"("MIPS-SMP8655A")", "processor"},
        {"stb_display.cpufreq", "stb_display.cpufreq", "", 0, R"("500 MHz")", "frequency"},
        {"stb_display.FirmwareVersion", "stb_display.getFirmwareVersion()", "", 0, R"("")",
         "firmware of an unknown version"},
        {"stb_display.SerialNumber", "stb_display.SerialNumber", "", 0, R"("00000001")", "serial number"},
        // Their values are the machine's, see below.
        {"typeof stb_display.macaddr", "stb_display.macaddr", "", 0, R"("string")", "hardware address"},
        {"typeof stb_display.netip", "stb_display.netip", "", 0, R"("string")", "network address"},

        {"stb_display.GetHdmiState", "", "", 0, "undefined", "no HDMI state"},
        {"stb_display.GetOrder", "", "", 0, "undefined", "no order"},
        {"stb_display.ExecBlocking", "", "", 0, "undefined", "no scripts"},

        // The engine refuses these before any method hears of them.
        {"stb_display.setGraphicsViewport(1, 2, 3)", "", "", 0, refused},
        {"stb_display.setAlphaLevel()", "", "", 0, refused},
        {"stb_display.setAlphaLevel(null)", "", "", 0, refused},
        {"stb_display.setChromaKey(NaN)", "", "", 0, refused},
        {"stb_display.SetBootParamValue('dfbres')", "", "", 0, refused},
        {"stb_display.ListFiles()", "", "", 0, refused},
        {"stb_display.log()", "", "", 0, refused},
        {"stb_display.debug()", "", "", 0, refused},
    };
    return rows;
}

// What the methods answer whose answer is the platform's.
bool passesThrough(const ScriptRow &row)
{
    return row.isNamed({"viewport", "visible", "visible asked", "alpha", "alpha asked", "chroma key",
                        "chroma key enabled asked", "chroma key enabled", "layout", "layout asked", "next layout",
                        "outputs asked"});
}

const char *const userManifest = "/home/user/config/plugins/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
const char *const rebootLog = "/tmp/rebooted";

} // namespace

// The methods and properties of stb_display as an old portal uses them.
class TestDeprecatedDisplay : public ScriptTable
{
    Q_OBJECT

public:
    TestDeprecatedDisplay()
        : ScriptTable("stb_display", rows(), passesThrough)
    {
    }

private slots:
    void initTestCase();
    void init();

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
};

void TestDeprecatedDisplay::initTestCase()
{
    const QString reboot = "/tmp/commands/reboot";
    writeBoxFile(reboot, QByteArray("#!/bin/sh\necho rebooted \"$@\" >> ") + rebootLog + '\n');
    QVERIFY(QFile(reboot).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    qputenv("PATH", "/tmp/commands:" + qgetenv("PATH"));
    ScriptTable::initTestCase();
}

void TestDeprecatedDisplay::init()
{
    QFile::remove("/home/user/version");
    QDir().rmdir("/home/user/version");
    QFile::remove(rebootLog);
    ScriptTable::init();
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
    const QString before = session().run("stb_display." + name).result;
    session().run("stb_display." + name + " = 'mine'");
    QCOMPARE(session().run("stb_display." + name).result, before);
}

void TestDeprecatedDisplay::addressesAreThoseOfTheWiredNetwork()
{
    const QNetworkInterface wired = QNetworkInterface::interfaceFromName("eth0");
    const QList<QNetworkAddressEntry> entries = wired.addressEntries();
    QCOMPARE(session().plugin().evaluate("stb_display.macaddr").toString(), wired.hardwareAddress().toLower());
    QCOMPARE(session().plugin().evaluate("stb_display.netip").toString(),
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
    QTEST(session().plugin().evaluate("stb_display.FirmwareVersion").toString(), "version");
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
    const ScriptSession::Outcome outcome = session().run("stb_display.FirmwareVersion");
    QCOMPARE(outcome.result, QString("\"\""));
    static QStringList said; // once, and so not in the second round
    QCOMPARE(outcome.warnings.filter("/home/user/version is " + what).size(), said.contains(what) ? 0 : 1);
    said += what;
}

void TestDeprecatedDisplay::rebootRunsTheCommandOfThatName()
{
    session().run("stb_display.reboot()");
    // The call has waited for it.
    QCOMPARE(boxFile(rebootLog), QByteArray("rebooted\n"));
}

void TestDeprecatedDisplay::aResolutionIsKeptAndTold()
{
    session().run("var heard = []; StbMedia.SetEventCallback(function (a, b) { heard.push([a, b]); })");
    QCOMPARE(session().run("stb_display.SetBootParamValue('dfbres', '720x576')").result, QString("0"));
    QCOMPARE(session().run("stb_display.GetBootParamValue('dfbres')").result, QString(R"("720x576")"));
    QTRY_COMPARE(session().run("heard").result, QString("[[-128,137]]"));
    const QByteArray kept = boxFile(userManifest);
    QVERIFY2(kept.contains("width=\"720\"") && kept.contains("height=\"576\""), kept);
    // As the other tests have it.
    QCOMPARE(session().run("stb_display.SetBootParamValue('dfbres', '1280x720')").result, QString("0"));
    QTRY_COMPARE(session().run("heard").result, QString("[[-128,137],[-128,137]]"));
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
    const ScriptSession::Outcome outcome = session().run("stb_display.SetBootParamValue('dfbres', '" + value + "')");
    QCOMPARE(outcome.result, QString("1"));
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(boxFile(userManifest), kept);
    QCOMPARE(session().run("stb_display.GetBootParamValue('dfbres')").result, QString(R"("1280x720")"));
}

void TestDeprecatedDisplay::theResolutionOfTheSystemIsLeftAlone()
{
    ScriptTable::cleanupTestCase();
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
    ScriptTable::initTestCase();
}

QTEST_MAIN(TestDeprecatedDisplay)

#include "tst_deprecateddisplay.moc"
