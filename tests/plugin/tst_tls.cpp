// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/MessageLog.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QWebView>
#include <QtTest>

namespace {

// A port that nobody uses now.
quint16 freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

const char *const page = "<title>Portal</title>";

// A server of the TLS library's own tools with a self-signed certificate.
class TlsServer
{
public:
    explicit TlsServer(const QStringList &options)
    {
        // Served as it stands, head and all.
        writeBoxFile("/tmp/page",
                     "HTTP/1.0 200 OK\r\nContent-Type: text/html\r\nContent-Length: "
                         + QByteArray::number(int(qstrlen(page))) + "\r\n\r\n" + page);
        QProcess maker;
        maker.start("openssl",
                    {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext",
                     "subjectAltName=IP:127.0.0.1", "-keyout", "/tmp/key.pem", "-out", "/tmp/certificate.pem"});
        maker.waitForFinished();
        m_process.setWorkingDirectory("/tmp");
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start("openssl",
                        QStringList{"s_server", "-HTTP", "-accept", QString("127.0.0.1:%1").arg(m_port), "-key",
                                    "key.pem", "-cert", "certificate.pem"}
                            + options);
    }
    ~TlsServer()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool isUp()
    {
        QTcpSocket socket;
        return QTest::qWaitFor([this, &socket] {
            socket.connectToHost(QHostAddress::LocalHost, m_port);
            return socket.waitForConnected(100);
        });
    }
    QUrl url() const { return QUrl(QString("https://127.0.0.1:%1/page").arg(m_port)); }

private:
    quint16 m_port = freePort();
    QProcess m_process;
};

} // namespace

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
    QVERIFY(QFile::copy("/tmp/certificate.pem", bundle));
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
