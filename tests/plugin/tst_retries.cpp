// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QWebView>
#include <QtTest>

namespace {

// Stands in the way of the C library's function that rereads the name resolver's configuration.
int resolverReadings = 0;

void setPages(const QUrl &homePage, const QUrl &errorPage)
{
    PluginManifest manifest;
    manifest.homePage = homePage.toString();
    manifest.errorPage = errorPage.toString();
    HostedPlugin::writeManifest(manifest);
}

// When each failed load of a browser ended.
class Failures : public QObject
{
public:
    explicit Failures(QWebView *browser)
    {
        connect(browser, &QWebView::loadFinished, this, [this](bool isLoaded) {
            if (!isLoaded)
                times += m_clock.elapsed();
        });
        m_clock.start();
    }

    // Whether the first ones came one second after each other, which is how long a reload waits.
    bool areOneSecondApart(int count) const
    {
        for (int i = 1; i < count; ++i) {
            const qint64 pause = times.at(i) - times.at(i - 1);
            if (pause < 940 || pause > 3000) {
                qWarning("%lld ms between two failures", pause);
                return false;
            }
        }
        return true;
    }

    QList<qint64> times;

private:
    QElapsedTimer m_clock;
};

QString retryLine(const QUrl &url)
{
    return QString("Try to load page QUrl(\"%1\")").arg(url.toString());
}

} // namespace

extern "C" Q_DECL_EXPORT int __res_init() // NOLINT(bugprone-reserved-identifier): the C library's own name
{
    ++resolverReadings;
    return 0;
}

// A home page that cannot be loaded, and what becomes of the attempts.
class TestRetries : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void fiveReloadsThenTheErrorPage();
    void aPageThatComesBackIsShown();
    void failuresAreCountedForLife();
};

void TestRetries::init()
{
    resolverReadings = 0;
}

void TestRetries::fiveReloadsThenTheErrorPage()
{
    HttpServer server;
    HttpServer errors;
    server.refuse();
    errors.refuse();
    setPages(server.url("/home"), errors.url("/error"));
    const MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const Failures failures(plugin.browser());

    QTRY_COMPARE_WITH_TIMEOUT(plugin.browser()->url(), errors.url("/error"), 15000);
    // The error page fails too: that is the end.
    QTRY_COMPARE(failures.times.size(), 7);
    QVERIFY(failures.areOneSecondApart(6));
    QCOMPARE(log.debugLines().filter("Try to load page"), QVector<QString>(5, retryLine(server.url("/home"))).toList());
    QCOMPARE(resolverReadings, 7);
    QTest::qWait(1300); // longer than a reload waits
    QCOMPARE(failures.times.size(), 7);
    QCOMPARE(log.debugLines().count("Create request"), 7);

    // So is any other page.
    QVERIFY(!plugin.load(server.url("/other")));
    QTest::qWait(1300);
    QCOMPARE(failures.times.size(), 8);
    QCOMPARE(resolverReadings, 8);
    QCOMPARE(log.debugLines().count("Create request"), 8);
    QCOMPARE(plugin.browser()->url(), server.url("/other"));
}

void TestRetries::aPageThatComesBackIsShown()
{
    HttpServer server;
    server.serve("/", "<title>Portal</title>");
    server.refuse();
    HttpServer errors;
    setPages(server.url(), errors.url());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(resolverReadings, 1);

    server.listen();
    QTRY_COMPARE(plugin.browser()->title(), QString("Portal"));
    QTest::qWait(1300); // longer than a reload waits
    QCOMPARE(server.requestsFor("/").size(), 1);
    QCOMPARE(errors.requests().size(), 0);
    QCOMPARE(resolverReadings, 1);
}

void TestRetries::failuresAreCountedForLife()
{
    HttpServer server;
    server.serve("/", "<title>Portal</title>");
    server.refuse();
    HttpServer errors;
    errors.serve("/error", "<title>Error</title>");
    setPages(server.url(), errors.url("/error"));
    const MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const Failures failures(plugin.browser());
    QTRY_COMPARE_WITH_TIMEOUT(failures.times.size(), 3, 10000);
    server.listen();
    QTRY_COMPARE_WITH_TIMEOUT(plugin.browser()->title(), QString("Portal"), 10000);
    QCOMPARE(failures.times.size(), 3);
    QCOMPARE(resolverReadings, 3);

    // Two reloads are left.
    server.refuse();
    QVERIFY(!plugin.load(server.url("/again")));
    QTRY_COMPARE_WITH_TIMEOUT(plugin.browser()->title(), QString("Error"), 10000);
    QCOMPARE(failures.times.size(), 6);
    QCOMPARE(log.debugLines().filter(retryLine(server.url("/again"))).size(), 2);
    QCOMPARE(errors.requestsFor("/error").size(), 1);
}

QTEST_MAIN(TestRetries)
#include "tst_retries.moc"
