// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

/// A server on loopback that answers with bytes as they are and closes the connection, for answers that no proper
/// server gives.
class RawServer : public QTcpServer
{
    Q_OBJECT

public:
    /// The same, whatever it is asked.
    explicit RawServer(const QByteArray &answer)
        : RawServer([answer](const QByteArray &) { return answer; })
    {
    }

    /// answer: of a request's head.
    explicit RawServer(const std::function<QByteArray(const QByteArray &)> &answer)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, answer] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
                const QByteArray request = socket->readAll();
                if (!request.contains("\r\n\r\n"))
                    return;
                socket->write(answer(request));
                socket->disconnectFromHost();
            });
        });
    }

    QString url() const { return QString("http://127.0.0.1:%1/stream.ts").arg(serverPort()); }

    /// An answer that promises more bytes than it brings.
    static QByteArray cutOff(const QByteArray &body, int promised)
    {
        return "HTTP/1.1 200 OK\r\nContent-Type: video/mp4\r\nContent-Length: " + QByteArray::number(promised)
            + "\r\nConnection: close\r\n\r\n" + body;
    }
};
