// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HostedPlugin.h"
#include "HttpServer.h"
#include "tests/platform/RecordingPlatform.h"

#include "shell/CStbApplication.h"

#include <QWebView>
#include <QtTest>

// The plugin in the hands of a test: everything that the plugin's own tests stand on.
class TestHostedPlugin : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theManifestReachesThePlugin();
    void aBrokenManifestIsWrittenAsItIs();
    void theBrowserComesWithTheStartAndGoesWithTheEnd();
    void theHomePageIsLoaded();
    void pagesAreLoadedAndFailuresTold();
    void resultsComeAsJson_data();
    void resultsComeAsJson();
    void thePlatformIsTheRecordingOne();
};

void TestHostedPlugin::init()
{
    RecordingPlatform::reset();
    HostedPlugin::writeManifest(PluginManifest());
}

void TestHostedPlugin::theManifestReachesThePlugin()
{
    PluginManifest manifest;
    manifest.briefDescription = "<brief> & \"short\"";
    manifest.supportsSd = true;
    manifest.resolution = QSize(640, 480);
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QCOMPARE(plugin.application()->appName(), manifest.briefDescription);
    QVERIFY(plugin.application()->supportsSD());
    QCOMPARE(plugin.browser()->size(), QSize(640, 480));
}

void TestHostedPlugin::aBrokenManifestIsWrittenAsItIs()
{
    HostedPlugin::writeManifest("<plugin_config");
    QFile file(HostedPlugin::pluginDirectory() + "PluginManifest.xml");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("<plugin_config"));
    HostedPlugin::removeManifest();
    QVERIFY(!file.exists());
}

void TestHostedPlugin::theBrowserComesWithTheStartAndGoesWithTheEnd()
{
    for (int round = 0; round < 2; ++round) {
        HostedPlugin plugin;
        QVERIFY(plugin.application());
        QVERIFY(!plugin.browser());
        QVERIFY(plugin.start());
        QVERIFY(plugin.browser());
        plugin.destroy();
        QVERIFY(!plugin.browser());
        QVERIFY(!plugin.application());
    }
}

void TestHostedPlugin::theHomePageIsLoaded()
{
    HttpServer server;
    server.serve("/home", "<title>home</title>");
    PluginManifest manifest;
    manifest.homePage = server.url("/home").toString();
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("home"));
    QCOMPARE(server.requestsFor("/home").size(), 1);
}

void TestHostedPlugin::pagesAreLoadedAndFailuresTold()
{
    HttpServer server;
    server.serve("/a", "<script>var page = 'a';</script>");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url("/a")));
    QCOMPARE(plugin.evaluate("page"), QVariant("a"));
    QVERIFY(plugin.loadHtml("<script>var page = 'b';</script>", server.url("/b")));
    QCOMPARE(plugin.evaluate("page + location.pathname"), QVariant("b/b"));
    server.refuse();
    QVERIFY(!plugin.load(server.url("/a")));
}

void TestHostedPlugin::resultsComeAsJson_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("json");

    QTest::newRow("zero") << "0"
                          << "0";
    QTest::newRow("zero as text") << "'0'"
                                  << "\"0\"";
    QTest::newRow("false") << "false"
                           << "false";
    QTest::newRow("not a number") << "0 / 0"
                                  << "NaN";
    QTest::newRow("null") << "null"
                          << "null";
    QTest::newRow("undefined") << "undefined"
                               << "undefined";
    QTest::newRow("object") << "({a: [1, '2']})"
                            << R"({"a":[1,"2"]})";
    QTest::newRow("statements") << "var x = 1; x + 1"
                                << "2";
    QTest::newRow("quotes and non-Latin text") << "'\"\u043a\\n'"
                                               << "\"\\\"\u043a\\n\"";
    QTest::newRow("exception") << "null.x"
                               << "throws TypeError: null is not an object (evaluating 'null.x')";
    QTest::newRow("syntax error") << "1 +"
                                  << "throws SyntaxError: Unexpected end of script";
}

void TestHostedPlugin::resultsComeAsJson()
{
    QFETCH(const QString, script);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<p></p>"));
    QTEST(plugin.evaluateToJson(script), "json");
}

void TestHostedPlugin::thePlatformIsTheRecordingOne()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(RecordingPlatform::calls().contains("KVR_SetResolution(1280, 720)"));
    QVERIFY(RecordingPlatform::calls().contains("KVR_GetDeviceModel()"));
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

QTEST_MAIN(TestHostedPlugin)

#include "tst_hostedplugin.moc"
