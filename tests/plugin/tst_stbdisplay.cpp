// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QtTest>

#include <climits>
#include <memory>

using RecordingPlatform::Answer;

namespace {

// What a page's script does, with tracing on. The call is the one to the platform, which gives the answer.
struct Row
{
    const char *name;
    const char *script;
    const char *trace;
    const char *call;
    Answer answer;
    const char *result; ///< as JSON; null where it is the PC's own
};

const Answer someRect = Answer::structure(KVR_Rect{-1, 2, 1280, 720});

// clang-format off
const QVector<Row> &rows()
{
    static const QVector<Row> rows = {
        {"viewport", "StbDisplay.SetGraphicsViewport(1, -2, 1280, 720)",
         "StbDisplay.SetGraphicsViewport(1, -2, 1280, 720)", "KVR_SetGraphicsViewport({1, -2, 1280, 720})", -7, "-7"},
        {"viewport of fractions", "StbDisplay.SetGraphicsViewport(1.9, '2', true, 4)",
         "StbDisplay.SetGraphicsViewport(2, 2, 1, 4)", "KVR_SetGraphicsViewport({2, 2, 1, 4})", 0, "0"},
        {"viewport with further arguments", "StbDisplay.SetGraphicsViewport(1, 2, 3, 4, 5)",
         "StbDisplay.SetGraphicsViewport(1, 2, 3, 4)", "KVR_SetGraphicsViewport({1, 2, 3, 4})", 0, "0"},
        {"viewport with too few arguments", "StbDisplay.SetGraphicsViewport(1, 2, 3)",
         "", "", 0, "throws SyntaxError: too few arguments in call to SetGraphicsViewport(); candidates are\n"
                    "    SetGraphicsViewport(int,int,int,int)"},
        {"viewport asked", "StbDisplay.GetGraphicsViewport()",
         "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()", Answer::structure(KVR_Rect {-1, 2, 1280, 720}),
         R"({"height":720,"status":"OK","width":1280,"x":-1,"y":2})"},
        {"viewport asked, failing", "StbDisplay.GetGraphicsViewport()",
         "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()", Answer::structure(KVR_Rect {1, 2, 3, 4}, -1),
         R"({"height":4,"status":"OK","width":3,"x":1,"y":2})"},
        {"viewport asked, failing before the rectangle", "StbDisplay.GetGraphicsViewport()",
         "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()", -1,
         R"({"height":0,"status":"OK","width":0,"x":0,"y":0})"},
        {"viewport asked, positive result", "StbDisplay.GetGraphicsViewport()",
         "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()", Answer::structure(KVR_Rect {1, 2, 3, 4}, 5),
         R"({"height":4,"status":"OK","width":3,"x":1,"y":2})"},
        {"viewport asked, no such layer", "StbDisplay.GetGraphicsViewport()",
         "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()", Answer::structure(KVR_Rect {1, 2, 3, 4}, -127),
         R"({"code":30,"message":"Invalid Id","status":"FAIL"})"},
        {"viewport of extremes asked", "StbDisplay.GetGraphicsViewport()",
         "StbDisplay.GetGraphicsViewport()", "KVR_GetGraphicsViewport()",
         Answer::structure(KVR_Rect {INT_MIN, INT_MAX, 0, -1}),
         R"({"height":-1,"status":"OK","width":0,"x":-2147483648,"y":2147483647})"},

        {"visible", "StbDisplay.SetGraphicsVisible(1)",
         "StbDisplay.SetGraphicsVisible(1)", "KVR_SetGraphicsVisible(1)", -7, "-7"},
        {"visible without a number", "StbDisplay.SetGraphicsVisible('yes')",
         "StbDisplay.SetGraphicsVisible(0)", "KVR_SetGraphicsVisible(0)", 0, "0"},
        {"visible asked", "StbDisplay.IsGraphicsVisible()",
         "StbDisplay.IsGraphicsVisible()", "KVR_IsGraphicsVisible()", 1, "1"},

        {"alpha", "StbDisplay.SetAlphaLevel(128)",
         "StbDisplay.SetAlphaLevel(128)", "KVR_SetGraphicsAlphaLevel(128)", -7, "-7"},
        {"alpha beyond a signed number", "StbDisplay.SetAlphaLevel(4294967295)",
         "StbDisplay.SetAlphaLevel(4294967295)", "KVR_SetGraphicsAlphaLevel(4294967295)", -3, "-3"},
        {"negative alpha", "StbDisplay.SetAlphaLevel(-1)",
         "StbDisplay.SetAlphaLevel(4294967295)", "KVR_SetGraphicsAlphaLevel(4294967295)", -3, "-3"},
        {"alpha asked", "StbDisplay.GetAlphaLevel()",
         "StbDisplay.GetAlphaLevel()", "KVR_GetGraphicsAlphaLevel()", 255, "255"},

        {"chroma key", "StbDisplay.SetChromaKey(0x345678)",
         "StbDisplay.SetChromaKey(3430008)", "KVR_SetChromaKey({52, 86, 120, 255})", -7, "-7"},
        {"chroma key with upper bits", "StbDisplay.SetChromaKey(0x12345678)",
         "StbDisplay.SetChromaKey(305419896)", "KVR_SetChromaKey({52, 86, 120, 255})", 0, "0"},
        {"negative chroma key", "StbDisplay.SetChromaKey(-1)",
         "StbDisplay.SetChromaKey(-1)", "KVR_SetChromaKey({255, 255, 255, 255})", 0, "0"},
        {"chroma key asked", "StbDisplay.GetChromaKey()",
         "StbDisplay.GetChromaKey()", "KVR_GetChromaKey()", Answer::structure(KVR_Color {0x34, 0x56, 0x78, 0xff}),
         "3430008"},
        {"white chroma key asked, failing", "StbDisplay.GetChromaKey()",
         "StbDisplay.GetChromaKey()", "KVR_GetChromaKey()", Answer::structure(KVR_Color {255, 255, 255, 0}, -127),
         "16777215"},
        {"chroma key asked of one that stores none", "StbDisplay.GetChromaKey()",
         "StbDisplay.GetChromaKey()", "KVR_GetChromaKey()", -1, "0"},
        {"chroma key enabled asked", "StbDisplay.IsChromaKeyEnable()",
         "StbDisplay.IsChromaKeyEnable()", "KVR_IsChromaKeyEnable()", 1, "1"},
        {"chroma key enabled", "StbDisplay.SetChromaKeyEnable(1)",
         "StbDisplay.SetChromaKeyEnable(1)", "KVR_SetChromaKeyEnable(1)", -7, "-7"},

        {"layout", "StbDisplay.SetCurrentRMLayout(3)",
         "StbDisplay.SetCurrentRMLayout(3)", "KVR_SetCurrentLayout(3)", -7, "-7"},
        {"layout asked", "StbDisplay.GetCurrentRMLayout()",
         "StbDisplay.GetCurrentRMLayout()", "KVR_GetCurrentLayout()", 3, "3"},
        {"next layout", "StbDisplay.SwitchToNextRMLayout()",
         "StbDisplay.SwitchToNextRMLayout()", "KVR_SwitchToNextLayout()", 4, "4"},

        {"order asked", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::array(QVector<int> {3, -1, 2147483647}), "[3,-1,2147483647]"},
        {"empty order asked", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::array(QVector<int>()), "[]"},
        {"empty order without an array asked", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::nullArray(0), "[]"},
        {"order of a negative count asked", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::nullArray(-1), "[]"},
        {"order of a count without an array asked", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::nullArray(3), "[]"},
        {"order asked, fewer told than stored", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", Answer::array(QVector<int> {1, 2, 3}, KVR_OK, 2), "[1,2]"},
        {"order asked, failing", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", -1, R"({"code":99,"message":"get order failed","status":"FAIL"})"},
        {"order asked, positive result", "StbDisplay.GetOrder()",
         "StbDisplay.GetOrder()", "KVR_GetOrder()", 1, R"({"code":99,"message":"get order failed","status":"FAIL"})"},
        {"order", "StbDisplay.SetOrder([2, 1])",
         "StbDisplay.SetOrder()", "KVR_SetOrder({2, 1}, 2)", -7, "0"},
        {"order of texts", "StbDisplay.SetOrder(['3', 7, 'x'])",
         "StbDisplay.SetOrder()", "KVR_SetOrder({3, 7, 0}, 3)", 0, "0"},
        {"empty order", "StbDisplay.SetOrder([])",
         "StbDisplay.SetOrder()", "KVR_SetOrder({}, 0)", -1, "0"},
        {"order of fractions", "StbDisplay.SetOrder([1.9, -1.9, true, null])",
         "StbDisplay.SetOrder()", "KVR_SetOrder({2, -2, 1, 0}, 4)", 0, "0"},

        {"outputs asked", "StbDisplay.IsOutportsEnabled()",
         "StbDisplay.IsOutportsEnabled()", "KVR_IsOutportsEnabled()", 1, "1"},
        {"HDMI state asked", "StbDisplay.GetHdmiState()",
         "StbDisplay.GetHdmiState()", "KVR_GetHdmiState()", 2, "2"},

        {"boot parameter", "StbDisplay.SetBootParamValue('hdmi_config', '1080p50')",
         "StbDisplay.SetBootParamValue(hdmi_config, 1080p50)", "KVR_SetBootParamValue(hdmi_config, 1080p50)", 0, "0"},
        {"boot parameter like a place of the template", "StbDisplay.SetBootParamValue('%2', '%1')",
         "StbDisplay.SetBootParamValue(%2, %1)", "", 0, "1"},
        {"boot parameter asked", "StbDisplay.GetBootParamValue('hdmi_config')",
         "StbDisplay.GetBootParamValue(hdmi_config)", "KVR_GetBootParamValue(hdmi_config)", Answer::buffer("1080p50"),
         "\"1080p50\""},
        {"synchronisation", "StbDisplay.SyncBootParams()",
         "StbDisplay.SyncBootParams()", "KVR_SyncBootParams()", -7, "0"},
        {"upgrade", "StbDisplay.UpgradeFirmware('http://127.0.0.1/\u043f\u0440 %1\"\u20ac')",
         "StbDisplay.UpgradeFirmware(http://127.0.0.1/\u043f\u0440 %1\"\u20ac)",
         "KVR_UpgradeFirmware(http://127.0.0.1/\u043f\u0440 %1\"\u20ac)", -7, "0"},
        {"upgrade from a text", "StbDisplay.UpgradeFirmware(null)",
         "StbDisplay.UpgradeFirmware()", "KVR_UpgradeFirmware()", 0, "0"},
        {"local storage", "StbDisplay.EnableHtml5LocalStorage(false)", "", "", 0, "0"},
        // In a test's box nothing restarts.
        {"reboot", "StbDisplay.Reboot()", "StbDisplay.Reboot()", "", 0, "0"},
        {"menu", "StbDisplay.ExitToMenu()", "StbDisplay.ExitToMenu()", "", 0, "0"},
        {"key period", "StbDisplay.SetKeyEventPeriod(-5)", "StbDisplay.SetKeyEventPeriod(-5)", "", 0, "0"},

        {"files", "StbDisplay.ListFiles('')", "StbDisplay.ListFiles()", "", 0, "[]"},
        {"directories", "StbDisplay.ListDirs('../etc')", "StbDisplay.ListDirs(../etc)", "", 0,
         R"({"code":"45","message":"../etcNo such directory","status":"FAIL"})"},
        {"script", "StbDisplay.ExecBlocking('hello', '%1 \"a b\"')", "StbDisplay.ExecBlocking(hello, %1 \"a b\")",
         "KVR_GetDeviceModel()", Answer::text("MZ-600"),
         R"({"exit":0,"status":"OK","stderr":[],"stdout":["Hello from the box. Arguments: %1 a b"]})"},
        {"debug", "StbDisplay.Debug('x')", "StbDisplay.Debug(x)", "", 0, "0"},
        {"log", "StbDisplay.Log('\"%2\" \u0442')", "StbDisplay.Log(\"%2\" \u0442)", "", 0, "0"},

        {"API version", "StbDisplay.APIVersion", "StbDisplay.APIVersion", "", 0, "\"v1.2\""},
        {"hardware address", "StbDisplay.EthernetHardwareAddress",
         "StbDisplay.EthernetHardwareAddress", "", 0, nullptr},
        {"address", "StbDisplay.IpAddress", "StbDisplay.IpAddress", "", 0, nullptr},
        {"model", "StbDisplay.DeviceModel",
         "StbDisplay.DeviceModel", "KVR_GetDeviceModel()", Answer::text("MZ-600"), "\"MZ-600\""},
        {"firmware", "StbDisplay.FirmwareVersion",
         "StbDisplay.FirmwareVersion", "KVR_GetFirmwareVersion()", Answer::text("2.1"), "\"2.1\""},
        {"serial number", "StbDisplay.SerialNumber",
         "StbDisplay.SerialNumber", "KVR_GetDeviceSerialNumber()", Answer::text("SN1"), "\"SN1\""},
    };
    return rows;
}
// clang-format on

// Methods and properties that answer what the platform answers.
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
                                      "outputs asked",
                                      "HDMI state asked"};

const Row &rowOf(const char *name)
{
    return *std::find_if(rows().begin(), rows().end(), [&](const Row &row) { return qstrcmp(row.name, name) == 0; });
}

QByteArray functionOf(const Row &row)
{
    return QByteArray(row.call).split('(').first();
}

} // namespace

// StbDisplay from a page's script, with tracing on and off.
class TestStbDisplay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();

    void scripts_data();
    void scripts();
    void answersPassThrough_data();
    void answersPassThrough();
    void textsReachThePlatformUpToTheirNul();
    void propertiesCannotBeWritten_data();
    void propertiesCannotBeWritten();
    void everyMemberHasARow();

private:
    std::unique_ptr<ScriptSession> m_session;
    bool m_tracing = false;
};

void TestStbDisplay::initTestCase_data()
{
    QTest::addColumn<bool>("tracing");
    QTest::newRow("not traced") << false;
    QTest::newRow("traced") << true;
}

void TestStbDisplay::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestStbDisplay::init()
{
    QFETCH_GLOBAL(const bool, tracing);
    if (tracing != m_tracing)
        QVERIFY(m_session->setTracing(tracing));
    m_tracing = tracing;
    m_session->takeOutcome();
}

void TestStbDisplay::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
    RecordingPlatform::reset();
}

void TestStbDisplay::scripts_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < rows().size(); ++i)
        QTest::newRow(rows()[i].name) << i;
}

void TestStbDisplay::scripts()
{
    QFETCH_GLOBAL(const bool, tracing);
    QFETCH(const int, index);
    const Row &row = rows()[index];
    QStringList messagesBefore;
    if (*row.call) {
        RecordingPlatform::answer(functionOf(row), row.answer);
        RecordingPlatform::onCall(functionOf(row), [&] { messagesBefore = m_session->log().debugLines(); });
    }
    const ScriptSession::Outcome outcome = m_session->run(row.script);
    QCOMPARE(outcome.result, row.result ? QString(row.result) : outcome.result);
    QCOMPARE(outcome.traces, tracing ? ScriptSession::quotedLines(row.trace) : QString());
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.calls, QByteArray(row.call));
    // Traced before anything else is done.
    QCOMPARE(messagesBefore.size(), tracing && *row.call ? 1 : 0);
}

void TestStbDisplay::answersPassThrough_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("answer");
    for (const char *name : passingThrough) {
        for (const int answer : {0, 1, -1, -127, INT_MAX, INT_MIN})
            QTest::newRow(qPrintable(QString("%1: %2").arg(name).arg(answer))) << name << answer;
    }
}

void TestStbDisplay::answersPassThrough()
{
    QFETCH(const QString, name);
    QFETCH(const int, answer);
    const Row &row = rowOf(name.toUtf8());
    RecordingPlatform::answer(functionOf(row), answer);
    QCOMPARE(m_session->run(row.script).result, QString::number(answer));
}

void TestStbDisplay::textsReachThePlatformUpToTheirNul()
{
    QFETCH_GLOBAL(const bool, tracing);
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay.UpgradeFirmware('http://a\\0b')");
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
    const QString before = m_session->run("StbDisplay." + name).result;
    QCOMPARE(m_session->run("StbDisplay." + name + " = 'mine'").calls, QByteArray());
    QCOMPARE(m_session->run("StbDisplay." + name).result, before);
}

void TestStbDisplay::everyMemberHasARow()
{
    const QStringList members = m_session->plugin().evaluate("Object.keys(StbDisplay)").toStringList();
    QVERIFY(members.contains("Log(QString)"));
    // What the toolkit gives to every object, and the signals.
    const QStringList others = {"destroyed(QObject*)", "destroyed()",        "deleteLater()",
                                "objectName",          "ExitToMenuSignal()", "keyDelayChanged(int)"};
    for (const QString &member : members) {
        if (others.contains(member))
            continue;
        const QString start = "StbDisplay." + member.section('(', 0, 0, QString::SectionIncludeTrailingSep);
        const bool found = std::any_of(rows().begin(), rows().end(),
                                       [&start](const Row &row) { return QString(row.script).startsWith(start); });
        QVERIFY2(found, qPrintable(member + " has no row"));
    }
}

QTEST_MAIN(TestStbDisplay)

#include "tst_stbdisplay.moc"
