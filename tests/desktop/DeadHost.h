// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QTcpServer>
#include <QTcpSocket>

#include <array>
#include <sys/socket.h>

/// A host that drops what is sent to it, as one behind a broken line does: a connection is neither taken nor refused.
class DeadHost
{
public:
    DeadHost()
    {
        m_server.listen(QHostAddress::LocalHost);
        // The kernel drops what finds the queue of a server full that accepts nothing.
        ::listen(static_cast<int>(m_server.socketDescriptor()), 0);
        m_server.pauseAccepting();
        for (QTcpSocket &socket : m_queue)
            socket.connectToHost(QHostAddress::LocalHost, m_server.serverPort());
        m_queue.front().waitForConnected();
    }

    quint16 port() const { return m_server.serverPort(); }

private:
    QTcpServer m_server;
    std::array<QTcpSocket, 3> m_queue;
};
