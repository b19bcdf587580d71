// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QWebView>
#include <QtTest>

namespace {

void setPages(const QUrl &homePage, const QUrl &errorPage)
{
    PluginManifest manifest;
    manifest.homePage = homePage.toString();
    manifest.errorPage = errorPage.toString();
    HostedPlugin::writeManifest(manifest);
}

} // namespace

// Pages that never arrive, as opposed to those that fail.
class TestErrorPage : public QObject
{
    Q_OBJECT

private slots:
    void itComesFiveSecondsAfterTheLastProgress_data();
    void itComesFiveSecondsAfterTheLastProgress();
    void withoutOneThePageIsOnlyStopped();
    void itIsGivenAllTheTimeItNeeds();
};

void TestErrorPage::itComesFiveSecondsAfterTheLastProgress_data()
{
    QTest::addColumn<bool>("answers");

    QTest::newRow("no answer at all") << false;
    QTest::newRow("an answer that stops on the way") << true;
}

void TestErrorPage::itComesFiveSecondsAfterTheLastProgress()
{
    QFETCH(bool, answers);
    HttpServer server;
    HttpServer::Page stalling = {QByteArray(10000, ' ') + "<title>Portal</title>"};
    stalling.stallAt = 8000;
    stalling.answered = answers;
    server.serve("/", stalling);
    HttpServer errors;
    errors.refuse();
    setPages(server.url(), errors.url("/error"));
    const MessageLog log;
    HostedPlugin plugin;
    QElapsedTimer time;
    time.start();
    QVERIFY(plugin.start());

    QTRY_COMPARE_WITH_TIMEOUT(plugin.browser()->url(), errors.url("/error"), 12000);
    QVERIFY2(time.elapsed() >= 4700 && time.elapsed() < 9000, QByteArray::number(time.elapsed()));
    QCOMPARE(server.requests().size(), 1);
    QTRY_COMPARE(server.openConnections(), 0); // the page was stopped

    // The error page fails: nothing is tried again, and nothing redirected.
    QTest::qWait(1300); // longer than a reload waits
    QCOMPARE(server.requests().size(), 1);
    QCOMPARE(log.debugLines().count("Create request"), 2);
    QCOMPARE(plugin.browser()->url(), errors.url("/error"));
}

void TestErrorPage::withoutOneThePageIsOnlyStopped()
{
    HttpServer server;
    server.fallSilent();
    setPages(server.url(), QUrl());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(server.openConnections(), 1);

    QTRY_COMPARE_WITH_TIMEOUT(server.openConnections(), 0, 9000);
    QTest::qWait(1300); // longer than a reload waits
    QCOMPARE(server.requests().size(), 1);
}

void TestErrorPage::itIsGivenAllTheTimeItNeeds()
{
    HttpServer server;
    server.fallSilent();
    HttpServer errors;
    HttpServer::Page slow = {QByteArray(10000, ' ') + "<title>Error</title>"};
    slow.stallAt = 8000;
    errors.serve("/error", slow);
    setPages(server.url(), errors.url("/error"));
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QTRY_COMPARE_WITH_TIMEOUT(errors.requests().size(), 1, 12000);
    QTest::qWait(6500); // longer than the home page may make no progress
    QCOMPARE(errors.requests().size(), 1);
    QCOMPARE(errors.openConnections(), 1);
}

QTEST_MAIN(TestErrorPage)
#include "tst_errorpage.moc"
