// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptTable.h"

#include <QtTest>

#include <climits>

using RecordingPlatform::Answer;

namespace {

const QVector<ScriptRow> &rows()
{
    static const QVector<ScriptRow> rows = {
        {"StbDisplay.SetGraphicsViewport(1, -2, 1280, 720)", "StbDisplay.SetGraphicsViewport(1, -2, 1280, 720)",
         "KVR_SetGraphicsViewport({1, -2, 1280, 720})", -7, "-7", "viewport"},
        {"StbDisplay.SetGraphicsViewport(1.9, '2', true, 4)", "StbDisplay.SetGraphicsViewport(2, 2, 1, 4)",
         "KVR_SetGraphicsViewport({2, 2, 1, 4})", 0, "0", "viewport of fractions"},
        {"StbDisplay.SetGraphicsViewport(1, 2, 3, 4, 5)", "StbDisplay.SetGraphicsViewport(1, 2, 3, 4)",
         "KVR_SetGraphicsViewport({1, 2, 3, 4})", 0, "0", "viewport with further arguments"},
        {"StbDisplay.SetGraphicsViewport(1, 2, 3)", "", "", 0,
         "throws SyntaxError: too few arguments in call to SetGraphicsViewport(); candidates are\n"
         "    SetGraphicsViewport(int,int,int,int)",
         "viewport with too few arguments"},
        {"StbDisplay.GetGraphicsViewport()", "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()",
         Answer::structure(KVR_Rect{-1, 2, 1280, 720}), R"({"height":720,"status":"OK","width":1280,"x":-1,"y":2})",
         "viewport asked"},
        {"StbDisplay.GetGraphicsViewport()", "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()",
         Answer::structure(KVR_Rect{1, 2, 3, 4}, -1), R"({"height":4,"status":"OK","width":3,"x":1,"y":2})",
         "viewport asked, failing"},
        {"StbDisplay.GetGraphicsViewport()", "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()", -1,
         R"({"height":0,"status":"OK","width":0,"x":0,"y":0})", "viewport asked, failing before the rectangle"},
        {"StbDisplay.GetGraphicsViewport()", "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()",
         Answer::structure(KVR_Rect{1, 2, 3, 4}, 5), R"({"height":4,"status":"OK","width":3,"x":1,"y":2})",
         "viewport asked, positive result"},
        {"StbDisplay.GetGraphicsViewport()", "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()",
         Answer::structure(KVR_Rect{1, 2, 3, 4}, -127), R"({"code":30,"message":"Invalid Id","status":"FAIL"})",
         "viewport asked, no such layer"},
        {"StbDisplay.GetGraphicsViewport()", "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()",
         Answer::structure(KVR_Rect{INT_MIN, INT_MAX, 0, -1}),
         R"({"height":-1,"status":"OK","width":0,"x":-2147483648,"y":2147483647})", "viewport of extremes asked"},

        {"StbDisplay.SetGraphicsVisible(1)", "StbDisplay.SetGraphicsVisible(1)", "KVR_SetGraphicsVisible(1)", -7, "-7",
         "visible"},
        {"StbDisplay.SetGraphicsVisible('yes')", "StbDisplay.SetGraphicsVisible(0)", "KVR_SetGraphicsVisible(0)", 0,
         "0", "visible without a number"},
        {"StbDisplay.IsGraphicsVisible()", "StbDisplay.IsGraphicsVisible()", "KVR_IsGraphicsVisible()", 1, "1",
         "visible asked"},

        {"StbDisplay.SetAlphaLevel(128)", "StbDisplay.SetAlphaLevel(128)", "KVR_SetGraphicsAlphaLevel(128)", -7, "-7",
         "alpha"},
        {"StbDisplay.SetAlphaLevel(4294967295)", "StbDisplay.SetAlphaLevel(4294967295)",
         "KVR_SetGraphicsAlphaLevel(4294967295)", -3, "-3", "alpha beyond a signed number"},
        {"StbDisplay.SetAlphaLevel(-1)", "StbDisplay.SetAlphaLevel(4294967295)",
         "KVR_SetGraphicsAlphaLevel(4294967295)", -3, "-3", "negative alpha"},
        {"StbDisplay.GetAlphaLevel()", "StbDisplay.GetAlphaLevel()", "KVR_GetGraphicsAlphaLevel()", 255, "255",
         "alpha asked"},

        {"StbDisplay.SetChromaKey(0x345678)", "StbDisplay.SetChromaKey(3430008)",
         "KVR_SetChromaKey({52, 86, 120, 255})", -7, "-7", "chroma key"},
        {"StbDisplay.SetChromaKey(0x12345678)", "StbDisplay.SetChromaKey(305419896)",
         "KVR_SetChromaKey({52, 86, 120, 255})", 0, "0", "chroma key with upper bits"},
        {"StbDisplay.SetChromaKey(-1)", "StbDisplay.SetChromaKey(-1)", "KVR_SetChromaKey({255, 255, 255, 255})", 0, "0",
         "negative chroma key"},
        {"StbDisplay.GetChromaKey()", "StbDisplay.GetChromaKey()", "KVR_GetChromaKey()",
         Answer::structure(KVR_Color{0x34, 0x56, 0x78, 0xff}), "3430008", "chroma key asked"},
        {"StbDisplay.GetChromaKey()", "StbDisplay.GetChromaKey()", "KVR_GetChromaKey()",
         Answer::structure(KVR_Color{255, 255, 255, 0}, -127), "16777215", "white chroma key asked, failing"},
        {"StbDisplay.GetChromaKey()", "StbDisplay.GetChromaKey()", "KVR_GetChromaKey()", -1, "0",
         "chroma key asked of one that stores none"},
        {"StbDisplay.IsChromaKeyEnable()", "StbDisplay.IsChromaKeyEnable()", "KVR_IsChromaKeyEnable()", 1, "1",
         "chroma key enabled asked"},
        {"StbDisplay.SetChromaKeyEnable(1)", "StbDisplay.SetChromaKeyEnable(1)", "KVR_SetChromaKeyEnable(1)", -7, "-7",
         "chroma key enabled"},

        {"StbDisplay.SetCurrentRMLayout(3)", "StbDisplay.SetCurrentRMLayout(3)", "KVR_SetCurrentLayout(3)", -7, "-7",
         "layout"},
        {"StbDisplay.GetCurrentRMLayout()", "StbDisplay.GetCurrentRMLayout()", "KVR_GetCurrentLayout()", 3, "3",
         "layout asked"},
        {"StbDisplay.SwitchToNextRMLayout()", "StbDisplay.SwitchToNextRMLayout()", "KVR_SwitchToNextLayout()", 4, "4",
         "next layout"},

        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()",
         Answer::array(QVector<int>{3, -1, 2147483647}), "[3,-1,2147483647]", "order asked"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::array(QVector<int>()), "[]",
         "empty order asked"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::nullArray(0), "[]",
         "empty order without an array asked"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::nullArray(-1), "[]",
         "order of a negative count asked"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::nullArray(3), "[]",
         "order of a count without an array asked"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()",
         Answer::array(QVector<int>{1, 2, 3}, KVR_OK, 2), "[1,2]", "order asked, fewer told than stored"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()", -1,
         R"({"code":99,"message":"get order failed","status":"FAIL"})", "order asked, failing"},
        {"StbDisplay.GetOrder()", "StbDisplay.GetOrder()", "KVR_GetOrder()", 1,
         R"({"code":99,"message":"get order failed","status":"FAIL"})", "order asked, positive result"},
        {"StbDisplay.SetOrder([2, 1])", "StbDisplay.SetOrder()", "KVR_SetOrder({2, 1}, 2)", -7, "0", "order"},
        {"StbDisplay.SetOrder(['3', 7, 'x'])", "StbDisplay.SetOrder()", "KVR_SetOrder({3, 7, 0}, 3)", 0, "0",
         "order of texts"},
        {"StbDisplay.SetOrder([])", "StbDisplay.SetOrder()", "KVR_SetOrder({}, 0)", -1, "0", "empty order"},
        {"StbDisplay.SetOrder([1.9, -1.9, true, null])", "StbDisplay.SetOrder()", "KVR_SetOrder({2, -2, 1, 0}, 4)", 0,
         "0", "order of fractions"},
        // The engine refuses these, and no method hears of them.
        {"StbDisplay.SetOrder()", "", "", 0, refused, "no order"},
        {"StbDisplay.SetOrder(undefined)", "", "", 0, refused, "undefined order"},
        {"StbDisplay.SetOrder(null)", "", "", 0, refused, "order that is null"},
        {"StbDisplay.SetOrder(NaN)", "", "", 0, refused, "order that is not a number"},
        {"StbDisplay.SetOrder([1, undefined])", "", "", 0, refused, "order with a gap"},
        {"StbDisplay.SetOrder({status: 'FAIL', message: 'get order failed', code: 99})", "", "", 0, refused,
         "order that could not be asked for"},

        {"StbDisplay.IsOutportsEnabled()", "StbDisplay.IsOutportsEnabled()", "KVR_IsOutportsEnabled()", 1, "1",
         "outputs asked"},
        {"StbDisplay.GetHdmiState()", "StbDisplay.GetHdmiState()", "KVR_GetHdmiState()", 2, "2", "HDMI state asked"},

        {"StbDisplay.SetBootParamValue('hdmi_config', '1080p50')", "StbDisplay.SetBootParamValue(hdmi_config, 1080p50)",
         "KVR_SetBootParamValue(hdmi_config, 1080p50)", 0, "0", "boot parameter"},
        {"StbDisplay.SetBootParamValue('%2', '%1')", "StbDisplay.SetBootParamValue(%2, %1)", "", 0, "1",
         "boot parameter like a place of the template"},
        {"StbDisplay.GetBootParamValue('hdmi_config')", "StbDisplay.GetBootParamValue(hdmi_config)",
         "KVR_GetBootParamValue(hdmi_config)", Answer::buffer("1080p50"), "\"1080p50\"", "boot parameter asked"},
        {"StbDisplay.SyncBootParams()", "StbDisplay.SyncBootParams()", "KVR_SyncBootParams()", -7, "0",
         "synchronisation"},
        {"StbDisplay.UpgradeFirmware('http://127.0.0.1/\u043f\u0440 %1\"\u20ac')",
         "StbDisplay.UpgradeFirmware(http://127.0.0.1/\u043f\u0440 %1\"\u20ac)",
         "KVR_UpgradeFirmware(http://127.0.0.1/\u043f\u0440 %1\"\u20ac)", -7, "0", "upgrade"},
        {"StbDisplay.UpgradeFirmware(null)", "StbDisplay.UpgradeFirmware()", "KVR_UpgradeFirmware()", 0, "0",
         "upgrade from a text"},
        {"StbDisplay.EnableHtml5LocalStorage(false)", "", "", 0, "0", "local storage"},
        // In a test's box nothing restarts, of which nothing is said.
        {"StbDisplay.Reboot()", "StbDisplay.Reboot()", "", 0, "0", "reboot"},
        {"StbDisplay.ExitToMenu()", "StbDisplay.ExitToMenu()", "", 0, "0", "menu"},
        {"StbDisplay.SetKeyEventPeriod(-5)", "StbDisplay.SetKeyEventPeriod(-5)", "", 0, "0", "key period"},

        {"StbDisplay.ListFiles('')", "StbDisplay.ListFiles()", "", 0, "[]", "files"},
        {"StbDisplay.ListDirs('../etc')", "StbDisplay.ListDirs(../etc)", "", 0,
         R"({"code":"45","message":"../etcNo such directory","status":"FAIL"})", "directories"},
        {"StbDisplay.ExecBlocking('hello', '%1 \"a b\"')", "StbDisplay.ExecBlocking(hello, %1 \"a b\")",
         "KVR_GetDeviceModel()", Answer::text("MZ-600"),
         R"({"exit":0,"status":"OK","stderr":[],"stdout":["Hello from the box. Arguments: %1 a b"]})", "script", "", "",
         "0"},
        {"StbDisplay.Debug('x')", "StbDisplay.Debug(x)", "", 0, "0", "debug", "debugx\n"},
        {"StbDisplay.Log('\"%2\" \u0442')", "StbDisplay.Log(\"%2\" \u0442)", "", 0, "0", "log"},

        {"StbDisplay.APIVersion", "StbDisplay.APIVersion", "", 0, "\"v1.2\"", "API version"},
        {"StbDisplay.EthernetHardwareAddress", "StbDisplay.EthernetHardwareAddress", "", 0, nullptr,
         "hardware address"},
        {"StbDisplay.IpAddress", "StbDisplay.IpAddress", "", 0, nullptr, "address"},
        {"StbDisplay.DeviceModel", "StbDisplay.DeviceModel", "KVR_GetDeviceModel()", Answer::text("MZ-600"),
         "\"MZ-600\"", "model"},
        {"StbDisplay.FirmwareVersion", "StbDisplay.FirmwareVersion", "KVR_GetFirmwareVersion()", Answer::text("2.1"),
         "\"2.1\"", "firmware"},
        {"StbDisplay.SerialNumber", "StbDisplay.SerialNumber", "KVR_GetDeviceSerialNumber()", Answer::text("SN1"),
         "\"SN1\"", "serial number"},
    };
    return rows;
}

// Methods and properties that answer what the platform answers.
bool passesThrough(const ScriptRow &row)
{
    return row.isNamed({"viewport", "visible", "visible asked", "alpha", "alpha asked", "chroma key",
                        "chroma key enabled asked", "chroma key enabled", "layout", "layout asked", "next layout",
                        "outputs asked", "HDMI state asked"});
}

} // namespace

// StbDisplay from a page's script.
class TestStbDisplay : public ScriptTable
{
    Q_OBJECT

public:
    TestStbDisplay()
        : ScriptTable("StbDisplay", rows(), passesThrough)
    {
    }

private slots:
    void textsReachThePlatformUpToTheirNul();
    void propertiesCannotBeWritten_data();
    void propertiesCannotBeWritten();
};

void TestStbDisplay::textsReachThePlatformUpToTheirNul()
{
    QFETCH_GLOBAL(const bool, tracing);
    const ScriptSession::Outcome outcome = session().run("StbDisplay.UpgradeFirmware('http://a\\0b')");
    QCOMPARE(outcome.calls, QByteArray("KVR_UpgradeFirmware(http://a)"));
    const QString text = QString("StbDisplay.UpgradeFirmware(http://a%1b)").arg(QChar(0));
    QCOMPARE(outcome.traces, tracing ? ScriptSession::quoted(text) : QString());
    QCOMPARE(outcome.result, QString("0"));
}

void TestStbDisplay::propertiesCannotBeWritten_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"APIVersion", "EthernetHardwareAddress", "IpAddress", "DeviceModel", "FirmwareVersion", "SerialNumber"})
        QTest::newRow(name) << name;
}

void TestStbDisplay::propertiesCannotBeWritten()
{
    QFETCH(const QString, name);
    const QString before = session().run("StbDisplay." + name).result;
    QCOMPARE(session().run("StbDisplay." + name + " = 'mine'").calls, QByteArray());
    QCOMPARE(session().run("StbDisplay." + name).result, before);
}

QTEST_MAIN(TestStbDisplay)

#include "tst_stbdisplay.moc"
