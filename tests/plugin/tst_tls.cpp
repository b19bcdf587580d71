// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"
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
};

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
    const QString bundle = "/etc/ssl/certs/ca-bundle.crt";
    QVERIFY(QFile::remove(bundle)); // it may be a link to the PC's
    QVERIFY(QFile::copy(TlsServer::certificate, bundle));
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

QTEST_MAIN(TestTls)
#include "tst_tls.moc"
