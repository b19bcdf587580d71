// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"

#include "shell/CStbApplication.h"

#include <QWebView>
#include <QtTest>

#include <climits>
#include <memory>

using RecordingPlatform::Answer;

namespace {

const char *const userManifests = "/home/user/config/plugins";
const char *const userManifest = "/home/user/config/plugins/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";

const char *const page = "<script>var events = []; var key = 'dfbres';"
                         "StbMedia.eventCallback = function (argument, code) { events.push([argument, code]); };"
                         "</script>";

void setGuiMode(const QByteArray &mode)
{
    writeBoxFile("/etc/settings.xml",
                 "<settings version=\"0.1\"><system><gui_mode>" + mode + "</gui_mode></system></settings>");
}

PluginManifest systemwideManifest()
{
    PluginManifest manifest;
    manifest.hdResolution = QSize(1920, 1080);
    manifest.sdResolution = QSize(720, 576);
    return manifest;
}

} // namespace

// Boot parameters as pages read and write them: the platform's, and the plugin's own resolution.
class TestBootParameters : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void valuesComeFromThePlatform_data();
    void valuesComeFromThePlatform();
    void whatThePlatformDoesNotWriteStaysAsItWas_data();
    void whatThePlatformDoesNotWriteStaysAsItWas();
    void thePlatformGetsFourKeysOnly_data();
    void thePlatformGetsFourKeysOnly();
    void thePlatformsRefusalIsTold_data();
    void thePlatformsRefusalIsTold();
    void aResolutionIsKeptAndTold_data();
    void aResolutionIsKeptAndTold();
    void aWrongResolutionChangesNothing_data();
    void aWrongResolutionChangesNothing();
    void aKeptResolutionCountsAtTheNextStart();
    void aResolutionOfTheSystemCannotBeSet();
    void aResolutionOfTheSystemFollowsItsDisplayMode();

private:
    bool start(const PluginManifest &manifest = PluginManifest());
    QString run(const QString &script) { return m_plugin->evaluateToJson(script); }

    std::unique_ptr<HostedPlugin> m_plugin; ///< started on a manifest of 1280 x 720, unless the test does otherwise
};

bool TestBootParameters::start(const PluginManifest &manifest)
{
    m_plugin.reset();
    HostedPlugin::writeManifest(manifest);
    m_plugin = std::make_unique<HostedPlugin>();
    const bool started = m_plugin->start() && m_plugin->loadHtml(page);
    RecordingPlatform::takeCalls();
    return started;
}

void TestBootParameters::init()
{
    RecordingPlatform::reset();
    setGuiMode("HD");
    QDir(userManifests).removeRecursively();
    if (!m_plugin)
        QVERIFY(start());
    run("events = []");
}

void TestBootParameters::cleanup()
{
    // A plugin that has another resolution now is not for the next test.
    if (QTest::currentTestFailed() || run("StbDisplay.GetBootParamValue(key)") != "\"1280x720\"")
        m_plugin.reset();
}

void TestBootParameters::valuesComeFromThePlatform_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("json");

    const Answer value = Answer::buffer(QByteArray("on\0", 3));
    QTest::newRow("a key that can be written") << "'hdmi_config'" << QByteArray("hdmi_config") << value << "\"on\"";
    QTest::newRow("a key that cannot") << "'bootdelay'" << QByteArray("bootdelay") << value << "\"on\"";
    QTest::newRow("the resolution's in capitals") << "'DFBRES'" << QByteArray("DFBRES") << value << "\"on\"";
    QTest::newRow("the resolution's with a blank") << "'dfbres '" << QByteArray("dfbres ") << value << "\"on\"";
    QTest::newRow("empty key") << "''" << QByteArray() << value << "\"on\"";
    QTest::newRow("non-Latin key") << "'\u043a%1\"'" << QByteArray("\u043a%1\"") << value << "\"on\"";
    QTest::newRow("key with a NUL") << "'a\\0b'" << QByteArray("a") << value << "\"on\"";
    const QString key = "'x'";
    QTest::newRow("empty value") << key << QByteArray("x") << Answer::buffer(QByteArray(1, '\0')) << "\"\"";
    QTest::newRow("a failure that stores a value")
        << key << QByteArray("x") << Answer::buffer(QByteArray("on\0", 3), -1) << "\"on\"";
    QTest::newRow("Latin-1 value") << key << QByteArray("x") << Answer::buffer(QByteArray("\xe9\0", 2)) << "\"\u00e9\"";
    QTest::newRow("more after the NUL") << key << QByteArray("x") << Answer::buffer(QByteArray("on\0off\0", 7))
                                        << "\"on\"";
    QTest::newRow("255 letters") << key << QByteArray("x") << Answer::buffer(QByteArray(255, 'v') + '\0')
                                 << '"' + QString(255, 'v') + '"';
    QTest::newRow("256 letters without a NUL")
        << key << QByteArray("x") << Answer::buffer(QByteArray(256, 'v')) << '"' + QString(256, 'v') + '"';
}

void TestBootParameters::valuesComeFromThePlatform()
{
    QFETCH(const QString, key);
    QFETCH(const QByteArray, call);
    QFETCH(const Answer, answer);
    RecordingPlatform::answer("KVR_GetBootParamValue", answer);
    QTEST(run("StbDisplay.GetBootParamValue(" + key + ")"), "json");
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList({"KVR_GetBootParamValue(" + call + ")"}));
}

void TestBootParameters::whatThePlatformDoesNotWriteStaysAsItWas_data()
{
    QTest::addColumn<Answer>("before");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("text");

    const Answer full = Answer::buffer(QByteArray(256, 'v'));
    const Answer on = Answer::buffer(QByteArray("on\0", 3));
    const Answer empty = Answer::buffer(QByteArray(1, '\0'));
    QTest::newRow("nothing is written") << on << Answer(0) << "on";
    QTest::newRow("nothing is written, which fails") << on << Answer(-1) << "on";
    QTest::newRow("nothing is written over 256 letters") << full << Answer(-1) << QString(256, 'v');
    QTest::newRow("nothing is written over an empty text") << empty << Answer(-1) << "";
    QTest::newRow("an empty text is written") << full << empty << "";
    QTest::newRow("a text is written without a NUL") << full << Answer::buffer("on") << "on" + QString(254, 'v');
}

void TestBootParameters::whatThePlatformDoesNotWriteStaysAsItWas()
{
    QFETCH(const Answer, before);
    QFETCH(const Answer, answer);
    QFETCH(const QString, text);
    for (const char *object : {"StbDisplay", "stb_display"}) {
        const QString call = QString("%1.GetBootParamValue('%2')").arg(object);
        RecordingPlatform::answerOnce("KVR_GetBootParamValue", before);
        RecordingPlatform::answerOnce("KVR_GetBootParamValue", answer);
        run(call.arg('a'));
        QCOMPARE(run(call.arg('b')), '"' + text + '"');
    }
}

void TestBootParameters::thePlatformGetsFourKeysOnly_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QByteArray>("call");

    const auto passed = [](const char *arguments, const char *call) {
        QTest::newRow(arguments) << QString(arguments) << "0" << QByteArray("KVR_SetBootParamValue(") + call + ')';
    };
    passed("'hdmi_config', '1'", "hdmi_config, 1");
    passed("'buf_time_udp', '1000'", "buf_time_udp, 1000");
    passed("'buf_time_http', '\u20ac\"%1'", "buf_time_http, \u20ac\"%1");
    passed("'buf_time_hls', ''", "buf_time_hls, ");
    passed("'buf_time_hls', 5", "buf_time_hls, 5");
    const auto refused = [](const char *arguments) {
        QTest::newRow(arguments) << QString(arguments) << "1" << QByteArray();
    };
    refused("'HDMI_CONFIG', '1'");
    refused("'hdmi_config ', '1'");
    refused("'hdmi', '1'");
    refused("'hdmi_config\\0', '1'");
    refused("'buf_time_rtsp', '1'");
    refused("'bootdelay', '1'");
    refused("'DFBRES', '1280x720'");
    refused("'', ''");
    refused("null, '1'");
}

void TestBootParameters::thePlatformGetsFourKeysOnly()
{
    QFETCH(const QString, arguments);
    QFETCH(const QByteArray, call);
    QTEST(run("StbDisplay.SetBootParamValue(" + arguments + ")"), "result");
    QCOMPARE(RecordingPlatform::takeCalls().join('\n'), call);
}

void TestBootParameters::thePlatformsRefusalIsTold_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("result");
    for (const int done : {0, 1, INT_MAX})
        QTest::addRow("%d", done) << done << "0";
    for (const int failed : {-1, -3, -127, INT_MIN})
        QTest::addRow("%d", failed) << failed << "1";
}

void TestBootParameters::thePlatformsRefusalIsTold()
{
    QFETCH(const int, answer);
    RecordingPlatform::answer("KVR_SetBootParamValue", answer);
    QTEST(run("StbDisplay.SetBootParamValue('hdmi_config', '1')"), "result");
}

void TestBootParameters::aResolutionIsKeptAndTold_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("kept");
    QTest::newRow("full HD") << "1920x1080"
                             << "1920x1080";
    QTest::newRow("nothing at all") << "0x0"
                                    << "0x0";
    QTest::newRow("leading zeros") << "01280x00720"
                                   << "1280x720";
    QTest::newRow("largest") << "2147483647x2147483647"
                             << "2147483647x2147483647";
    QTest::newRow("a width that is too large") << "12345678901x720"
                                               << "0x720";
}

void TestBootParameters::aResolutionIsKeptAndTold()
{
    QFETCH(const QString, value);
    QFETCH(const QString, kept);
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"1280x720\""));
    QCOMPARE(run("StbDisplay.SetBootParamValue(key, '" + value + "')"), QString("0"));
    const QStringList size = kept.split('x');
    const QByteArray manifest = boxFile(userManifest);
    QVERIFY2(manifest.contains("width=\"" + size[0].toUtf8() + '"'), manifest);
    QVERIFY2(manifest.contains("height=\"" + size[1].toUtf8() + '"'), manifest);
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), '"' + kept + '"');
    QTRY_COMPARE(run("events"), QString("[[-128,137]]"));
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList());
}

void TestBootParameters::aWrongResolutionChangesNothing_data()
{
    QTest::addColumn<QString>("value");
    for (const char *value : {"1920x",
                              "x1080",
                              "1920x1080x5",
                              "1920*1080",
                              "1920X1080",
                              " 1920x1080",
                              "1920x1080 ",
                              "1920 x1080",
                              "",
                              "x",
                              "1920",
                              "-1920x1080",
                              "+1920x1080",
                              "1920.0x1080",
                              "0x10x20",
                              "systemwide",
                              "1280x12345678901",
                              "1280x2147483648",
                              "12345678901x12345678901",
                              "\u0661\u0662x\u0663",
                              "1920x1080\\n",
                              "1920x1080\\0"})
        QTest::newRow(*value ? value : "empty") << QString(value);
}

void TestBootParameters::aWrongResolutionChangesNothing()
{
    QFETCH(const QString, value);
    QCOMPARE(run("StbDisplay.SetBootParamValue(key, '" + value + "')"), QString("1"));
    QVERIFY(!QFile::exists(userManifest));
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"1280x720\""));
    // What had been posted would come before this.
    RecordingPlatform::fire(KVR_BOX, 144, 1);
    QTRY_COMPARE(run("events"), QString("[[1,144]]"));
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList());
}

void TestBootParameters::aKeptResolutionCountsAtTheNextStart()
{
    QCOMPARE(run("StbDisplay.SetBootParamValue(key, '640x480')"), QString("0"));
    QCOMPARE(m_plugin->browser()->size(), QSize(1280, 720));
    QVERIFY(start());
    QCOMPARE(m_plugin->browser()->size(), QSize(640, 480));
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"640x480\""));
}

void TestBootParameters::aResolutionOfTheSystemCannotBeSet()
{
    QVERIFY(start(systemwideManifest()));
    QCOMPARE(run("StbDisplay.SetBootParamValue(key, '1280x720')"), QString("1"));
    QCOMPARE(run("StbDisplay.SetBootParamValue(key, 'nonsense')"), QString("1"));
    QVERIFY(!QFile::exists(userManifest));
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"1920x1080\""));
    // The platform's parameters do not depend on it.
    QCOMPARE(run("StbDisplay.SetBootParamValue('hdmi_config', '1')"), QString("0"));
}

void TestBootParameters::aResolutionOfTheSystemFollowsItsDisplayMode()
{
    QVERIFY(start(systemwideManifest()));
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"1920x1080\""));
    setGuiMode("SD");
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"720x576\""));
    setGuiMode("HD");
    QCOMPARE(run("StbDisplay.GetBootParamValue(key)"), QString("\"1920x1080\""));
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList());
}

QTEST_MAIN(TestBootParameters)

#include "tst_bootparameters.moc"
