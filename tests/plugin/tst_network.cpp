// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/DefaultCertificates.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QNetworkAccessManager>
#include <QWebFrame>
#include <QWebHistory>
#include <QWebView>
#include <QtTest>

namespace {

const char *const bundle = "/etc/ssl/certs/ca-bundle.crt";
const char *const ignored = "Ignore back/fwd action";

int requestLines(const MessageLog &log)
{
    return log.debugLines().count("Create request");
}

// Until a step through the history, for which the engine has a timer, would have begun.
void waitForTimersOf(HostedPlugin &plugin)
{
    plugin.evaluate("window.haveTimersPassed = false; setTimeout(function () { haveTimersPassed = true; }, 0)");
    QTRY_VERIFY(plugin.evaluate("window.haveTimersPassed").toBool());
}

} // namespace

// How the page reaches the network, and that it does not leave through its history.
class TestNetwork : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theUserAgentNamesTheDevice_data();
    void theUserAgentNamesTheDevice();
    void everyRequestIsTold_data();
    void everyRequestIsTold();
    void requestsArriveUnchanged();
    void pagesFromTheNetAreLocal_data();
    void pagesFromTheNetAreLocal();
    void theCertificatesAreThoseOfTheBox();
    void aBrowserThatEndsEarlyLeavesThoseOfTheBox();
    void theCertificatesOfTheLauncherStay();
    void historyDoesNotChangeThePage_data();
    void historyDoesNotChangeThePage();
    void actionsAreIgnoredWithNowhereToGoToo();
    void historyWithinAPageKeepsThePage_data();
    void historyWithinAPageKeepsThePage();
    void backspaceWritesInAField();
    void otherActionsWork();

private:
    HttpServer m_server;
};

void TestNetwork::init()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_server.serve("/first", "<title>First</title>");
    m_server.serve("/second", "<title>Second</title>");
    m_server.serve("/third", "<title>Third</title>");
}

void TestNetwork::theUserAgentNamesTheDevice_data()
{
    QTest::addColumn<QString>("load");

    QTest::newRow("page") << "location.href = '/asked'";
    QTest::newRow("image") << "new Image().src = '/asked'";
    QTest::newRow("request of a script") << "var r = new XMLHttpRequest(); r.open('GET', '/asked'); r.send()";
}

void TestNetwork::theUserAgentNamesTheDevice()
{
    QFETCH(QString, load);
    HttpServer server;
    server.serve("/", "Portal");
    server.serve("/asked", "Asked");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url()));
    plugin.evaluate(load);

    QTRY_COMPARE(server.requestsFor("/asked").size(), 1);
    const QByteArray agent = server.requestsFor("/asked").constFirst().headers.value("user-agent");
    QVERIFY2(agent.endsWith(" Kavro MZ412") && !agent.endsWith("  Kavro MZ412"), agent);
    QVERIFY2(agent.contains("AppleWebKit/"), agent);
    QCOMPARE(plugin.evaluate("navigator.userAgent").toByteArray(), agent);
}

void TestNetwork::everyRequestIsTold_data()
{
    QTest::addColumn<QByteArray>("html");
    QTest::addColumn<int>("requests");

    QTest::newRow("page alone") << QByteArray("Portal") << 1;
    QTest::newRow("image") << QByteArray("<img src='/a.png'>") << 2;
    QTest::newRow("two images") << QByteArray("<img src='/a.png'><img src='/b.png'>") << 3;
    QTest::newRow("script") << QByteArray("<script src='/a.js'></script>") << 2;
    QTest::newRow("style sheet") << QByteArray("<link rel='stylesheet' href='/a.css'>") << 2;
    QTest::newRow("frame") << QByteArray("<iframe src='/second'></iframe>") << 2;
    QTest::newRow("request of a script") << QByteArray(
        "<script>var r = new XMLHttpRequest(); r.open('GET', '/a'); r.send();</script>")
                                         << 2;
}

void TestNetwork::everyRequestIsTold()
{
    QFETCH(QByteArray, html);
    QFETCH(int, requests);
    m_server.serve("/page", html);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const MessageLog log;
    QVERIFY(plugin.load(m_server.url("/page")));

    QTRY_COMPARE(requestLines(log), requests);
    // More of them would come before those of another page.
    QVERIFY(plugin.load(m_server.url("/first")));
    QCOMPARE(requestLines(log), requests + 1);
}

void TestNetwork::requestsArriveUnchanged()
{
    HttpServer server;
    server.serve("/", "Portal");
    server.serve("/form?a=%2F", "Done");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url()));
    plugin.evaluate(
        "var r = new XMLHttpRequest(); r.open('POST', '/form?a=%2F');"
        "r.setRequestHeader('X-Box', 'one'); r.setRequestHeader('Content-Type', 'text/box'); r.send('body')");

    QTRY_COMPARE(server.requestsFor("/form?a=%2F").size(), 1);
    const HttpServer::Request request = server.requestsFor("/form?a=%2F").constFirst();
    QCOMPARE(request.method, QByteArray("POST"));
    QCOMPARE(request.body, QByteArray("body"));
    QCOMPARE(request.headers.value("x-box"), QByteArray("one"));
    QVERIFY2(request.headers.value("content-type").startsWith("text/box"), request.headers.value("content-type"));
}

void TestNetwork::pagesFromTheNetAreLocal_data()
{
    QTest::addColumn<bool>("isFile");

    QTest::newRow("another server") << false;
    QTest::newRow("a file of the box") << true;
}

void TestNetwork::pagesFromTheNetAreLocal()
{
    QFETCH(bool, isFile);
    HttpServer other;
    other.serve("/data", "from elsewhere");
    QFile file("/mnt/stb/data.txt");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("from elsewhere");
    file.close();
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));
    const QString address = isFile ? "file://" + file.fileName() : other.url("/data").toString();
    plugin.evaluate("var r = new XMLHttpRequest(); r.open('GET', '" + address + "'); r.send()");

    QTRY_COMPARE(plugin.evaluate("r.responseText").toString(), QString("from elsewhere"));
    QVERIFY(!QWebSettings::globalSettings()->testAttribute(QWebSettings::XSSAuditingEnabled));
    QVERIFY(QWebSettings::globalSettings()->testAttribute(QWebSettings::LocalContentCanAccessFileUrls));
    QVERIFY(QWebSettings::globalSettings()->testAttribute(QWebSettings::LocalContentCanAccessRemoteUrls));
}

void TestNetwork::theCertificatesAreThoseOfTheBox()
{
    const QList<QSslCertificate> all = QSslCertificate::fromPath(bundle);
    QVERIFY(!all.isEmpty());
    QFile::remove(bundle);
    {
        HostedPlugin plugin;
        QVERIFY(plugin.start());
        QTRY_COMPARE(defaultCertificates(), QList<QSslCertificate>());
    }

    QFile file(bundle);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(all.first().toPem() + all.last().toPem());
    file.close();
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(defaultCertificates(), QList<QSslCertificate>({all.first(), all.last()}));
}

void TestNetwork::aBrowserThatEndsEarlyLeavesThoseOfTheBox()
{
    const QList<QSslCertificate> all = QSslCertificate::fromPath(bundle);
    QVERIFY(!all.isEmpty());
    setDefaultCertificates({});
    HttpServer silent;
    silent.fallSilent(); // for a page that is there they would be read
    PluginManifest manifest;
    manifest.homePage = silent.url().toString();
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    plugin.destroy();
    QCOMPARE(defaultCertificates(), all);
}

void TestNetwork::theCertificatesOfTheLauncherStay()
{
    const QList<QSslCertificate> all = QSslCertificate::fromPath(bundle);
    QVERIFY(all.size() > 1);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    setDefaultCertificates({all.last()});
    QVERIFY(plugin.load(m_server.url("/first")));
    plugin.destroy(); // at the latest now all of the box would be read
    QCOMPARE(defaultCertificates(), QList<QSslCertificate>({all.last()}));
}

void TestNetwork::historyDoesNotChangeThePage_data()
{
    QTest::addColumn<QString>("action");

    QTest::newRow("script, back") << "history.back()";
    QTest::newRow("script, back by a number") << "history.go(-1)";
    QTest::newRow("script, back by two") << "history.go(-2)";
    QTest::newRow("script, forward") << "history.forward()";
    QTest::newRow("script, forward by a number") << "history.go(1)";
    QTest::newRow("script of a frame") << "frame.contentWindow.history.back()";
    QTest::newRow("backspace key") << "Backspace";
    QTest::newRow("shift and backspace keys") << "Shift+Backspace";
    QTest::newRow("back key") << "Back";
    QTest::newRow("forward key") << "Forward";
    QTest::newRow("the engine's own way back") << "back";
    QTest::newRow("the engine's own way forward") << "forward";
}

void TestNetwork::historyDoesNotChangeThePage()
{
    QFETCH(QString, action);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    for (const char *path : {"/first", "/second", "/third"})
        QVERIFY(plugin.load(m_server.url(path)));
    // The engine now stands at the second of three pages, although it could not go there.
    QWebHistory *const history = plugin.browser()->history();
    QVariantMap saved = history->toMap();
    saved["currentItemIndex"] = 2;
    history->loadFromMap(saved);
    QCOMPARE(history->currentItemIndex(), 2);
    QVERIFY(history->canGoBack() && history->canGoForward());
    plugin.evaluate("var frame = document.createElement('iframe'); document.body.appendChild(frame)");
    const int requests = m_server.requests().size();
    const MessageLog log;

    if (action == "back")
        plugin.browser()->back();
    else if (action == "forward")
        plugin.browser()->forward();
    else if (action.contains('('))
        plugin.evaluate(action);
    else
        QTest::keySequence(plugin.browser(), QKeySequence(action));

    QTRY_COMPARE(log.debugLines(), QStringList(ignored));
    waitForTimersOf(plugin); // and for no more than the line
    QCOMPARE(plugin.browser()->title(), QString("Third"));
    QCOMPARE(plugin.browser()->url(), m_server.url("/third"));
    QCOMPARE(m_server.requests().size(), requests);
    QCOMPARE(log.debugLines(), QStringList(ignored));
}

void TestNetwork::actionsAreIgnoredWithNowhereToGoToo()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));
    plugin.browser()->history()->clear();
    QVERIFY(!plugin.browser()->history()->canGoBack() && !plugin.browser()->history()->canGoForward());
    const MessageLog log;

    plugin.browser()->page()->triggerAction(QWebPage::Back);
    QCOMPARE(log.debugLines(), QStringList(ignored));
    plugin.browser()->page()->triggerAction(QWebPage::Forward);
    QCOMPARE(log.debugLines(), QStringList({ignored, ignored}));
}

void TestNetwork::historyWithinAPageKeepsThePage_data()
{
    QTest::addColumn<QString>("step");

    QTest::newRow("fragment") << "location.hash = '#there'";
    QTest::newRow("pushState") << "history.pushState('there', '', '/there')";
}

void TestNetwork::historyWithinAPageKeepsThePage()
{
    QFETCH(QString, step);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/second")));
    QVERIFY(plugin.load(m_server.url("/first")));
    plugin.evaluate("window.stays = true; " + step);
    const int requests = m_server.requests().size();

    // The first goes back within the page, the next would leave it.
    plugin.evaluate("history.back()");
    QTRY_COMPARE(plugin.browser()->url(), m_server.url("/first"));
    const MessageLog log;
    plugin.evaluate("history.back()");
    QTRY_COMPARE(log.debugLines(), QStringList(ignored));
    waitForTimersOf(plugin); // and for no more than the line
    QVERIFY(plugin.evaluate("window.stays").toBool());
    QCOMPARE(plugin.browser()->title(), QString("First"));
    QCOMPARE(m_server.requests().size(), requests);
}

void TestNetwork::backspaceWritesInAField()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));
    QVERIFY(plugin.loadHtml("<input id='field' value='ab'><script>document.getElementById('field').focus();"
                            "document.getElementById('field').setSelectionRange(2, 2);</script>"));
    const MessageLog log;
    QTest::keyClick(plugin.browser(), Qt::Key_Backspace);

    QTRY_COMPARE(plugin.evaluate("document.getElementById('field').value").toString(), QString("a"));
    QCOMPARE(log.debugLines(), QStringList());
}

void TestNetwork::otherActionsWork()
{
    HttpServer server;
    server.serve("/", "<title>Portal</title>");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url()));
    plugin.browser()->triggerPageAction(QWebPage::Reload);
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(server.requestsFor("/").size(), 2);

    plugin.evaluate("location.reload()");
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(server.requestsFor("/").size(), 3);

    server.fallSilent();
    plugin.browser()->triggerPageAction(QWebPage::Reload);
    QTRY_COMPARE(server.openConnections(), 1);
    plugin.browser()->triggerPageAction(QWebPage::Stop);
    QTRY_COMPARE(server.openConnections(), 0);
}

QTEST_MAIN(TestNetwork)
#include "tst_network.moc"
