// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/BoxFile.h"
#include "tests/support/DefaultCertificates.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"
#include "tests/support/TlsServer.h"

#include <QWebView>
#include <QtTest>

// Pages from servers that speak TLS.
class TestTls : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aServerOfThatVersionIsReached();
    void aCertificateOfTheBoxIsTrusted();
    void aServerWithoutThatVersionIsTriedAgain();
    void aCertificateIsAcceptedByThoseWhoWaitToo();
    void aSocketOfTheFirstPageTrustsTheBox_data();
    void aSocketOfTheFirstPageTrustsTheBox();

private:
    // It may be a link to the PC's.
    static void trustNobodyButTheServer();
};

void TestTls::trustNobodyButTheServer()
{
    const QString bundle = "/etc/ssl/certs/ca-bundle.crt";
    QVERIFY(QFile::remove(bundle));
    QVERIFY(QFile::copy(TlsServer::certificate, bundle));
}

void TestTls::init()
{
    HostedPlugin::writeManifest(PluginManifest());
}

void TestTls::aServerOfThatVersionIsReached()
{
    TlsServer server({"-tls1", "-cipher", "ALL:@SECLEVEL=0"});
    QVERIFY(server.isUp());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const MessageLog log;

    QVERIFY(plugin.load(server.url()));
    QCOMPARE(plugin.browser()->title(), QString("Portal"));
    // The certificate is signed by nobody; that is logged and no more.
    QCOMPARE(log.debugLines(),
             QStringList({"Create request",
                          "--->sslErrorHandler: ", "ssl error:  \"The certificate is self-signed, and untrusted\""}));
}

void TestTls::aCertificateOfTheBoxIsTrusted()
{
    TlsServer server({"-tls1", "-cipher", "ALL:@SECLEVEL=0"});
    QVERIFY(server.isUp());
    trustNobodyButTheServer();
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const MessageLog log;

    QVERIFY(plugin.load(server.url()));
    QCOMPARE(plugin.browser()->title(), QString("Portal"));
    QCOMPARE(log.debugLines(), QStringList("Create request"));
}

void TestTls::aServerWithoutThatVersionIsTriedAgain()
{
    TlsServer server({"-no_tls1", "-no_tls1_1", "-cipher", "ALL:@SECLEVEL=0"});
    QVERIFY(server.isUp());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const MessageLog log;

    QVERIFY(!plugin.load(server.url()));
    QTRY_VERIFY(log.contains("Try to load page QUrl(\"" + server.url().toString() + "\")"));
    QCOMPARE(log.debugLines().count("--->sslErrorHandler: "), 0);
}

void TestTls::aCertificateIsAcceptedByThoseWhoWaitToo()
{
    TlsServer server({"-tls1", "-cipher", "ALL:@SECLEVEL=0"});
    QVERIFY(server.isUp());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal", QUrl("http://127.0.0.1/")));

    QCOMPARE(plugin
                 .evaluate("var request = new XMLHttpRequest(); request.open('GET', '" + server.url().toString()
                           + "', false); request.send(); request.responseText")
                 .toString(),
             QString(TlsServer::page));
}

void TestTls::aSocketOfTheFirstPageTrustsTheBox_data()
{
    QTest::addColumn<QString>("script");

    QTest::newRow("of the page") << "new WebSocket(address);";
    QTest::newRow("of a frame") << "document.documentElement.appendChild(document.createElement('iframe'));"
                                   "new frames[0].WebSocket(address);";
    QTest::newRow("looked for before") << "if (!window.WebSocket || WebSocket !== WebSocket || WebSocket.OPEN !== 1)"
                                          "    throw new Error('not as it should be');"
                                          "var socket = new WebSocket(address);"
                                          "if (!(socket instanceof WebSocket))"
                                          "    socket.close();";
}

void TestTls::aSocketOfTheFirstPageTrustsTheBox()
{
    QFETCH(QString, script);
    TlsServer server;
    QVERIFY(server.isUp());
    trustNobodyButTheServer();
    HttpServer portal;
    QUrl address = server.url();
    address.setScheme("wss");
    portal.serve("/", QString("<script>var address = '%1'; %2</script>").arg(address.toString(), script).toUtf8());
    PluginManifest manifest;
    manifest.homePage = portal.url().toString();
    HostedPlugin::writeManifest(manifest);
    setDefaultCertificates({});
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QTRY_VERIFY(server.isAsked());
}

QTEST_MAIN(TestTls)
#include "tst_tls.moc"
