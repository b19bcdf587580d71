// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QWebFrame>
#include <QWebView>
#include <QtTest>

namespace {

const char *const closeBrowser = "--close-browser";
const int stillThere = 7; // exit status of a browser that was not closed

PluginManifest manifestFor(const QUrl &homePage)
{
    PluginManifest manifest;
    manifest.homePage = homePage.toString();
    return manifest;
}

void activate(HostedPlugin &plugin)
{
    plugin.application()->show();
    plugin.application()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(plugin.application())); // the shortcuts are the window's
}

// What this program is when the test starts it a second time.
int closedBrowser()
{
    HostedPlugin::writeManifest(PluginManifest());
    HostedPlugin plugin;
    plugin.start();
    std::atexit([] { std::printf("a library's end\n"); });
    std::printf("written before\n");
    QMetaObject::invokeMethod(plugin.browser(), "closeBrowser");
    return stillThere;
}

} // namespace

// Loading the home page, and the technician's keys.
class TestPageLoad : public QObject
{
    Q_OBJECT

private slots:
    void aHomePageOfAnyKindIsAskedFor_data();
    void aHomePageOfAnyKindIsAskedFor();
    void theManifestZoomsTheText_data();
    void theManifestZoomsTheText();
    void aFailedPageIsZoomedToo();
    void controlRLoadsThePageAgain();
    void controlShiftCShowsTheCursor();
    void closingTheBrowserEndsTheProcess();
};

void TestPageLoad::aHomePageOfAnyKindIsAskedFor_data()
{
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<QString>("line");

    QTest::newRow("address") << QByteArray("<m><a type='homepage' src='http://127.0.0.1:9/p?a=b'/></m>")
                             << "Load url:  \"http://127.0.0.1:9/p?a=b\"";
    QTest::newRow("empty") << QByteArray("<m><a type='homepage' src=''/></m>") << "Load url:  \"\"";
    QTest::newRow("none") << QByteArray("<m/>") << "Load url:  \"\"";
    QTest::newRow("malformed manifest") << QByteArray("<m><a type='homepage' src='http://127.0.0.1:9/'/>")
                                        << "Load url:  \"\"";
}

void TestPageLoad::aHomePageOfAnyKindIsAskedFor()
{
    QFETCH(QByteArray, manifest);
    QFETCH(QString, line);
    HostedPlugin::writeManifest(manifest);
    const MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QCOMPARE(log.debugLines().filter("Load url"), QStringList(line));
    QVERIFY(plugin.loadHtml("still alive"));
}

void TestPageLoad::theManifestZoomsTheText_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<double>("factor");

    QTest::newRow("larger") << "1.5" << 1.5;
    QTest::newRow("smaller") << "0.75" << 0.75;
    QTest::newRow("of single precision") << "1.1" << double(1.1f);
    QTest::newRow("not given") << QString() << 1.0;
}

void TestPageLoad::theManifestZoomsTheText()
{
    QFETCH(QString, value);
    QFETCH(double, factor);
    HttpServer server;
    server.serve("/", "<span id='text'>Some text</span>");
    PluginManifest manifest = manifestFor(server.url());
    manifest.textSizeMultiplier = value;
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());

    QTRY_COMPARE(plugin.browser()->textSizeMultiplier(), factor);
    // A page's own load sets it again.
    plugin.browser()->setTextSizeMultiplier(3);
    QVERIFY(plugin.load(server.url()));
    QCOMPARE(plugin.browser()->page()->mainFrame()->textSizeMultiplier(), factor);
}

void TestPageLoad::aFailedPageIsZoomedToo()
{
    HttpServer server;
    server.refuse();
    PluginManifest manifest;
    manifest.textSizeMultiplier = "1.5";
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    plugin.browser()->setTextSizeMultiplier(3);

    QVERIFY(!plugin.load(server.url()));
    QCOMPARE(plugin.browser()->textSizeMultiplier(), 1.5);
}

void TestPageLoad::controlRLoadsThePageAgain()
{
    HttpServer server;
    server.serve("/page", "<title>Page</title>");
    HostedPlugin::writeManifest(manifestFor(server.url("/page")));
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("Page"));
    activate(plugin);
    const MessageLog log;

    QTest::keyClick(plugin.browser(), Qt::Key_R, Qt::ControlModifier);
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(server.requestsFor("/page").size(), 2);
    QVERIFY(log.contains("Try to load page QUrl(\"" + server.url("/page").toString() + "\")"));
}

void TestPageLoad::controlShiftCShowsTheCursor()
{
    HostedPlugin::writeManifest(PluginManifest());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    activate(plugin);
    QApplication::setOverrideCursor(Qt::BlankCursor); // as a launcher without a mouse does

    QTest::keyClick(plugin.browser(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_COMPARE(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
}

void TestPageLoad::closingTheBrowserEndsTheProcess()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {closeBrowser});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardOutput(), QByteArray("written before\na library's end\n"));
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (application.arguments().contains(closeBrowser))
        return closedBrowser();
    TestPageLoad test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_pageload.moc"
