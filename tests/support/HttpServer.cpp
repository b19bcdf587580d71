// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HttpServer.h"

#include <QTimer>
#include <algorithm>
#include <memory>

namespace {

const char *const headEnd = "\r\n\r\n";

// The request once all of it is there.
bool parse(const QByteArray &received, HttpServer::Request *request)
{
    const int head = received.indexOf(headEnd);
    if (head < 0)
        return false;
    QList<QByteArray> lines = received.left(head).split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    request->method = words.value(0);
    request->path = words.value(1);
    for (const QByteArray &line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        request->headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
    }
    request->body = received.mid(head + int(qstrlen(headEnd)));
    return request->body.size() >= request->headers.value("content-length").toInt();
}

QByteArray headOf(const HttpServer::Page &page)
{
    const HttpServer::Headers own = {{"Content-Type", page.contentType},
                                     {"Content-Length", QByteArray::number(page.body.size())},
                                     {"Connection", "close"}};
    QByteArray head = "HTTP/1.1 " + QByteArray::number(page.status) + " Test\r\n";
    const HttpServer::Headers all = own + page.headers;
    for (const auto &header : all)
        head += header.first + ": " + header.second + "\r\n";
    return head + "\r\n";
}

} // namespace

HttpServer::HttpServer(const QHostAddress &address)
    : m_address(address)
{
    m_clock.start();
    connect(&m_server, &QTcpServer::newConnection, this, &HttpServer::accept);
    listen();
}

QUrl HttpServer::url(const QString &path) const
{
    return QUrl(QString("http://%1:%2%3").arg(m_address.toString()).arg(m_port).arg(path));
}

void HttpServer::serve(const QByteArray &path, const Page &page)
{
    m_pages.insert(path, page);
}

void HttpServer::serve(const QByteArray &path, const QByteArray &html)
{
    serve(path, Page{html});
}

void HttpServer::redirect(const QByteArray &path, const QUrl &target, int status)
{
    Page page;
    page.status = status;
    page.headers = {{"Location", target.toEncoded()}};
    serve(path, page);
}

void HttpServer::fallSilent()
{
    m_silent = true;
}

void HttpServer::failNext(int times)
{
    m_failures = times;
}

void HttpServer::refuse()
{
    m_server.close();
    // Bound, but not listening: the system refuses connections and gives the port to nobody else.
    if (!m_reservation.bind(m_address, m_port, QAbstractSocket::ReuseAddressHint))
        qFatal("Cannot keep port %d: %s", m_port, qPrintable(m_reservation.errorString()));
}

void HttpServer::listen()
{
    m_reservation.abort();
    if (!m_server.listen(m_address, m_port))
        qFatal("Cannot listen on port %d: %s", m_port, qPrintable(m_server.errorString()));
    m_port = m_server.serverPort();
}

QList<HttpServer::Request> HttpServer::requestsFor(const QByteArray &path) const
{
    QList<Request> found;
    std::copy_if(m_requests.begin(), m_requests.end(), std::back_inserter(found),
                 [&path](const Request &request) { return request.path == path; });
    return found;
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        ++m_connections;
        const auto received = std::make_shared<QByteArray>();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket, received] { read(socket, received.get()); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            --m_connections;
            socket->deleteLater();
        });
        read(socket, received.get());
    }
}

void HttpServer::read(QTcpSocket *socket, QByteArray *received)
{
    *received += socket->readAll();
    Request request;
    if (!parse(*received, &request))
        return;
    received->clear();
    request.time = m_clock.elapsed();
    m_requests += request;
    answer(socket, request.path);
}

void HttpServer::answer(QTcpSocket *socket, const QByteArray &path)
{
    if (m_silent)
        return;
    if (m_failures > 0) {
        --m_failures;
        socket->abort();
        return;
    }
    Page page = m_pages.value(path, {"There is nothing here.", "text/plain", 404});
    if (page.times == 0)
        page = {"Not now.", "text/plain", 503};
    else if (page.times > 0)
        --m_pages[path].times;
    if (!page.answered)
        return;
    socket->write(headOf(page));
    sendSlowly(socket, page, 0);
}

void HttpServer::sendSlowly(QTcpSocket *socket, const Page &page, int sent)
{
    const int end = page.stallAt < 0 ? page.body.size() : std::min(page.stallAt, page.body.size());
    const int next = page.pause > 0 ? std::min(sent + 1, end) : end;
    socket->write(page.body.mid(sent, next - sent));
    if (next < end)
        QTimer::singleShot(page.pause, socket, [this, socket, page, next] { sendSlowly(socket, page, next); });
    else if (page.stallAt < 0)
        socket->disconnectFromHost();
}
