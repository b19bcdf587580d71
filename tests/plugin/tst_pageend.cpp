// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QWebHistory>
#include <QWebView>
#include <QtTest>

namespace {

// The window's name is what outlives a page.
const char *const portal = "<title>Portal</title><script>"
                           "function note(event) { name += event.type + ' '; }"
                           "['beforeunload', 'pagehide', 'unload'].forEach(function (type) {"
                           "    addEventListener(type, note, false); });"
                           "</script>"
                           "<iframe src='/frame'></iframe>";
const char *const frame = "<script>onunload = function () { top.name += 'frame '; };</script>";

void go(HostedPlugin &plugin, const QUrl &url)
{
    QTimer::singleShot(0, plugin.browser(), [&url] {
        QWidget *const dialog = QApplication::activeModalWidget();
        dialog->findChild<QLineEdit *>()->setText(url.toString());
        dialog->findChild<QPushButton *>()->click();
    });
    QMetaObject::invokeMethod(plugin.browser(), "newUrl");
}

} // namespace

// What a page hears when the browser leaves it by itself.
class TestPageEnd : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aPageHearsThatItIsLeft_data();
    void aPageHearsThatItIsLeft();
    void nobodyIsAskedWhetherToLeave();
    void whatAPageDoesAtItsEndKeepsNobody_data();
    void whatAPageDoesAtItsEndKeepsNobody();
    void aPageMayBeLeftWhileItsDialogIsOpen();
    void loadingAgainIsOneLoad();
    void aLoadThatIsGivenUpForItHasFailed_data();
    void aLoadThatIsGivenUpForItHasFailed();

private:
    HttpServer m_server;
};

void TestPageEnd::init()
{
    m_server.serve("/", portal);
    m_server.serve("/frame", frame);
    m_server.serve("/other", "<title>Other</title>");
    m_server.serve("/error", "<title>Error</title>");
    PluginManifest manifest;
    manifest.homePage = m_server.url("/").toString();
    manifest.errorPage = m_server.url("/error").toString();
    HostedPlugin::writeManifest(manifest);
}

void TestPageEnd::aPageHearsThatItIsLeft_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<QString>("title");

    QTest::newRow("loaded again") << "reloadPage"
                                  << "Portal";
    QTest::newRow("another address") << "goToUrl"
                                     << "Other";
    QTest::newRow("the error page") << "loadErrorPage"
                                    << "Error";
}

void TestPageEnd::aPageHearsThatItIsLeft()
{
    QFETCH(QString, way);
    QFETCH(QString, title);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    plugin.evaluate("name = ''");

    if (way == "goToUrl")
        go(plugin, m_server.url("/other"));
    else
        QMetaObject::invokeMethod(plugin.browser(), way.toLatin1().constData());
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(plugin.browser()->title(), title);
    QCOMPARE(plugin.evaluate("name").toString(), QString("beforeunload pagehide unload frame "));
}

void TestPageEnd::nobodyIsAskedWhetherToLeave()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    plugin.evaluate("onbeforeunload = function () { return 'Stay, please'; };");
    const int requests = m_server.requestsFor("/").size();
    bool wasAsked = false;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &answer, [&wasAsked] {
        if (QWidget *const dialog = QApplication::activeModalWidget()) {
            wasAsked = true;
            dialog->close();
        }
    });
    answer.start(10);

    QMetaObject::invokeMethod(plugin.browser(), "reloadPage");
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(m_server.requestsFor("/").size(), requests + 1);
    QVERIFY(!wasAsked);
    // Where a page goes by itself, it may ask as ever.
    plugin.evaluate("onbeforeunload = function () { return 'Stay, please'; }; location.href = '/other'");
    QTRY_VERIFY(wasAsked);
}

void TestPageEnd::whatAPageDoesAtItsEndKeepsNobody_data()
{
    QTest::addColumn<QString>("script");

    QTest::newRow("an error") << "throw 'no'";
    QTest::newRow("an alert") << "alert('no')";
    QTest::newRow("another address") << "location.href = '/other'";
    QTest::newRow("another document") << "document.open(); document.write('no'); document.close()";
    QTest::newRow("a step back") << "history.back()";
    QTest::newRow("the end of loading") << "stop()";
    QTest::newRow("the frames' end") << "document.body.innerHTML = ''";
    QTest::newRow("all frames' end at the end of one")
        << "frames[0].addEventListener('unload', function () { document.body.innerHTML = ''; }, false)";
    QTest::newRow("a frame") << "document.body.appendChild(document.createElement('iframe')).src = '/frame'";
}

void TestPageEnd::whatAPageDoesAtItsEndKeepsNobody()
{
    QFETCH(QString, script);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    for (const char *event : {"beforeunload", "pagehide", "unload"}) {
        const int requests = m_server.requestsFor("/").size();
        plugin.evaluate(QString("addEventListener('%1', function () { %2; }, false)").arg(event, script));

        QMetaObject::invokeMethod(plugin.browser(), "reloadPage");
        QVERIFY(plugin.waitForLoad());
        QCOMPARE(m_server.requestsFor("/").size(), requests + 1);
        QCOMPARE(plugin.browser()->title(), QString("Portal"));
        QVERIFY(plugin.evaluate("typeof StbMedia.Stop === 'function'").toBool());
    }
}

void TestPageEnd::aPageMayBeLeftWhileItsDialogIsOpen()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    plugin.evaluate("name = ''");
    QTimer::singleShot(0, plugin.browser(), [&plugin] {
        QMetaObject::invokeMethod(plugin.browser(), "reloadPage");
        QApplication::activeModalWidget()->close();
    });
    plugin.evaluate("alert('Hello'); name += 'after '");

    QTRY_COMPARE(plugin.browser()->title(), QString("Portal"));
    QCOMPARE(plugin.evaluate("name").toString(), QString("beforeunload pagehide unload frame after "));
}

void TestPageEnd::loadingAgainIsOneLoad()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    const int steps = plugin.browser()->history()->count();
    const QSignalSpy started(plugin.browser(), SIGNAL(loadStarted()));
    const QSignalSpy finished(plugin.browser(), SIGNAL(loadFinished(bool)));
    const QSignalSpy addresses(plugin.browser(), SIGNAL(urlChanged(QUrl)));
    const MessageLog log;

    QMetaObject::invokeMethod(plugin.browser(), "reloadPage");
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(log.debugLines(),
             QStringList({"Try to load page QUrl(\"" + m_server.url("/").toString() + "\")", "Create request",
                          "Create request"}));
    QCOMPARE(started.size(), 1);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(addresses.size(), 1);
    QCOMPARE(plugin.browser()->history()->count(), steps);
    QCOMPARE(plugin.evaluate("[history.length, document.referrer]").toList(), QVariantList({steps, QString()}));
}

void TestPageEnd::aLoadThatIsGivenUpForItHasFailed_data()
{
    QTest::addColumn<bool>("answers");

    QTest::newRow("before it was answered") << false;
    QTest::newRow("on its way") << true;
}

void TestPageEnd::aLoadThatIsGivenUpForItHasFailed()
{
    QFETCH(bool, answers);
    HttpServer::Page stalling = {QByteArray(10000, ' ')};
    stalling.stallAt = 8000;
    stalling.answered = answers;
    m_server.serve("/stalling", stalling);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.waitForLoad());
    plugin.evaluate("location.href = '/stalling'");
    QTRY_COMPARE(m_server.requestsFor("/stalling").size(), 1);
    if (answers)
        QTRY_COMPARE(plugin.browser()->url(), m_server.url("/stalling"));
    const QUrl address = plugin.browser()->url();
    m_server.serve("/stalling", "<title>Portal</title>");
    const QSignalSpy finished(plugin.browser(), SIGNAL(loadFinished(bool)));

    QMetaObject::invokeMethod(plugin.browser(), "reloadPage");
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.at(0), QVariantList({false}));
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(finished.size(), 2);
    QCOMPARE(finished.at(1), QVariantList({true}));
    QCOMPARE(plugin.browser()->url(), address);
    QCOMPARE(plugin.browser()->title(), QString("Portal"));
}

QTEST_MAIN(TestPageEnd)
#include "tst_pageend.moc"
