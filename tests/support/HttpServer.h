// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

/// A web server on 127.0.0.1, or another address of this PC, for one test, in the test's own thread, that can also fail
/// in all the ways that matter to a browser. Every connection carries one request.
class HttpServer : public QObject
{
    Q_OBJECT

public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    struct Request
    {
        QByteArray method;
        QByteArray path;                       ///< with the query, as it came
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        QByteArray body;
        qint64 time; ///< milliseconds since the server was made
    };

    struct Page
    {
        QByteArray body;
        QByteArray contentType = "text/html; charset=utf-8";
        int status = 200;
        Headers headers = {}; ///< besides those for type, length and connection
        int pause = 0;        ///< milliseconds after each byte of the body; 0 sends all at once
        int stallAt = -1;     ///< number of bytes of the body after which nothing more comes; -1 sends all
        int times = -1;       ///< so often, and 503 from then on; -1 always
        bool answered = true; ///< false takes the request and never answers
    };

    /// Listens on a port of its own.
    explicit HttpServer(const QHostAddress &address = QHostAddress::LocalHost);

    QUrl url(const QString &path = "/") const;
    quint16 port() const { return m_port; }

    /// What a path answers from now on; all others answer 404.
    void serve(const QByteArray &path, const Page &page);
    void serve(const QByteArray &path, const QByteArray &html);
    void redirect(const QByteArray &path, const QUrl &target, int status = 302);
    /// Accepts connections and never answers, whatever the path.
    void fallSilent();
    /// Closes the connection in place of an answer, that many times, whatever the path.
    void failNext(int times);
    /// Refuses connections and keeps the port, until listen().
    void refuse();
    void listen();

    const QList<Request> &requests() const { return m_requests; }
    QList<Request> requestsFor(const QByteArray &path) const;
    /// Connections of which any end is still open.
    int openConnections() const { return m_connections; }

private:
    void accept();
    void read(QTcpSocket *socket, QByteArray *received);
    void answer(QTcpSocket *socket, const QByteArray &path);
    void sendSlowly(QTcpSocket *socket, const Page &page, int sent);

    const QHostAddress m_address;
    QTcpServer m_server;
    QTcpSocket m_reservation; // holds the port while the server does not
    QElapsedTimer m_clock;
    quint16 m_port = 0;
    QHash<QByteArray, Page> m_pages;
    QList<Request> m_requests;
    int m_failures = 0;
    int m_connections = 0;
    bool m_silent = false;
};
