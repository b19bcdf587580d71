// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "BoxFile.h"

#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QUrl>

/// A server of the TLS library's own tools with a self-signed certificate, for one page.
class TlsServer
{
public:
    static constexpr char page[] = "<title>Portal</title>";
    static constexpr char certificate[] = "/tmp/certificate.pem";

    /// With further options of that tool.
    explicit TlsServer(const QStringList &options = {})
    {
        // Served as it stands, head and all.
        writeBoxFile("/tmp/page",
                     "HTTP/1.0 200 OK\r\nContent-Type: text/html\r\nContent-Length: "
                         + QByteArray::number(int(qstrlen(page))) + "\r\n\r\n" + page);
        QProcess maker;
        maker.start("openssl",
                    {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext",
                     "subjectAltName=IP:127.0.0.1", "-keyout", "/tmp/key.pem", "-out", certificate});
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
    TlsServer(const TlsServer &) = delete;
    TlsServer &operator=(const TlsServer &) = delete;

    bool isUp()
    {
        QTcpSocket socket;
        return QTest::qWaitFor([this, &socket] {
            socket.connectToHost(QHostAddress::LocalHost, m_port);
            return socket.waitForConnected(100);
        });
    }
    /// Whether a client has come so far as to ask for the page.
    bool isAsked()
    {
        m_output += m_process.readAll();
        return m_output.contains("FILE:page");
    }
    QUrl url() const { return QUrl(QString("https://127.0.0.1:%1/page").arg(m_port)); }

private:
    // One that nobody uses now.
    static quint16 freePort()
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        return server.serverPort();
    }

    quint16 m_port = freePort();
    QProcess m_process;
    QByteArray m_output;
};
