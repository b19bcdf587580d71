// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "launcher/PageServer.h"

#include <QScopedPointer>
#include <QTemporaryDir>

/// A test of the web server for pages, with a folder for each test, and a server that serves "root" in it.
class PageServerTest : public QObject
{
    Q_OBJECT

protected:
    struct Answer
    {
        int status = 0;
        QByteArray head;
        QByteArray body;

        QByteArray header(const QByteArray &name) const
        {
            const QByteArray start = "\r\n" + name.toLower() + ": ";
            const int at = head.toLower().indexOf(start);
            return at < 0 ? QByteArray() : head.mid(at + start.size()).split('\r').first();
        }
    };

    /// To be called before each test.
    void setUp();
    void write(const QString &name, const QByteArray &content) const;

    int port() const { return m_server->port(); }
    QByteArray host() const { return "127.0.0.1:" + QByteArray::number(port()); }
    Answer send(const QByteArray &request) const;
    Answer ask(const QByteArray &path, const QByteArray &method = "GET", const QByteArray &headers = {}) const;

    /// How long a busy machine may take, in milliseconds.
    static constexpr int patience = 60000;

    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<PageServer> m_server;
};
