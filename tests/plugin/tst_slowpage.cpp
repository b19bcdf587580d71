// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"

#include <QWebView>
#include <QtTest>

// Pages that are not there when the error page could come.
class TestSlowPage : public QObject
{
    Q_OBJECT

private slots:
    void aPageThatMakesProgressMayTakeItsTime();
    void aReloadThatGetsNoAnswerEndsInTheErrorPage();
};

void TestSlowPage::aPageThatMakesProgressMayTakeItsTime()
{
    // One script after the other, each of 2 to 3 seconds and a sign of progress.
    HttpServer server;
    server.serve("/", "<title>Portal</title><script src='/1.js'></script>");
    for (int i = 1; i <= 3; ++i) {
        HttpServer::Page script = {"document.write('<script src=/" + QByteArray::number(i + 1) + ".js></script>')\n",
                                   "text/javascript"};
        script.pause = 50;
        server.serve("/" + QByteArray::number(i) + ".js", script);
    }
    server.serve("/4.js", HttpServer::Page{"window.done = true", "text/javascript"});
    HttpServer errors;
    PluginManifest manifest;
    manifest.homePage = server.url().toString();
    manifest.errorPage = errors.url().toString();
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QElapsedTimer time;
    time.start();
    QVERIFY(plugin.start());

    QVERIFY(plugin.waitForLoad(15000));
    QVERIFY(time.elapsed() > 5500);
    QCOMPARE(plugin.browser()->title(), QString("Portal"));
    QVERIFY(plugin.evaluate("window.done").toBool());
    QCOMPARE(errors.requests().size(), 0);
}

void TestSlowPage::aReloadThatGetsNoAnswerEndsInTheErrorPage()
{
    HttpServer server;
    server.refuse();
    server.fallSilent();
    HttpServer errors;
    errors.serve("/error", "<title>Error</title>");
    PluginManifest manifest;
    manifest.homePage = server.url().toString();
    manifest.errorPage = errors.url("/error").toString();
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QElapsedTimer time;
    time.start();
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    server.listen();

    // The failure has not stopped the time.
    QTRY_COMPARE_WITH_TIMEOUT(plugin.browser()->title(), QString("Error"), 9000);
    QVERIFY2(time.elapsed() < 8000, QByteArray::number(time.elapsed()));
    QCOMPARE(server.openConnections(), 0);
}

QTEST_MAIN(TestSlowPage)
#include "tst_slowpage.moc"
