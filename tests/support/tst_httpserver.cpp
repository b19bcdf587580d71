// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HttpServer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QtTest>
#include <memory>

// The web server of the tests, asked by a real client.
class TestHttpServer : public QObject
{
    Q_OBJECT

private slots:
    void pagesComeWithTypeStatusAndHeaders_data();
    void pagesComeWithTypeStatusAndHeaders();
    void requestsAreNoted();
    void aRedirectionLeadsToItsTarget();
    void refusedConnectionsKeepThePort();
    void aSilentServerTakesTheRequestAndSaysNothing_data();
    void aSilentServerTakesTheRequestAndSaysNothing();
    void someRequestsFailAndTheNextIsServed();
    void aSlowPageComesByteByByte();
    void aStallingPageNeverEnds();

private:
    using Reply = std::unique_ptr<QNetworkReply>;

    Reply get(const QUrl &url);

    QNetworkAccessManager m_client;
};

TestHttpServer::Reply TestHttpServer::get(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    return Reply(m_client.get(request));
}

void TestHttpServer::pagesComeWithTypeStatusAndHeaders_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("header");

    QTest::newRow("html") << "/" << 200 << QByteArray("text/html; charset=utf-8") << QByteArray("<p>1</p>")
                          << QByteArray();
    QTest::newRow("error with header") << "/e" << 503 << QByteArray("a/b") << QByteArray("no\0pe", 5)
                                       << QByteArray("9");
    QTest::newRow("query") << "/?x=1" << 200 << QByteArray("text/plain") << QByteArray() << QByteArray();
    QTest::newRow("unknown") << "/none" << 404 << QByteArray("text/plain") << QByteArray("There is nothing here.")
                             << QByteArray();
}

void TestHttpServer::pagesComeWithTypeStatusAndHeaders()
{
    QFETCH(const QString, path);
    HttpServer server;
    server.serve("/", "<p>1</p>");
    server.serve("/e", {QByteArray("no\0pe", 5), "a/b", 503, {{"X-Test", "9"}}});
    server.serve("/?x=1", {"", "text/plain"});

    const Reply reply = get(server.url(path));
    QTRY_VERIFY(reply->isFinished());
    QTEST(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), "status");
    QTEST(reply->rawHeader("Content-Type"), "type");
    QTEST(reply->rawHeader("X-Test"), "header");
    QTEST(reply->readAll(), "body");
    QTRY_COMPARE(server.openConnections(), 0);
}

void TestHttpServer::requestsAreNoted()
{
    HttpServer server;
    QNetworkRequest request(server.url("/a?b=%2F"));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "x/y");
    request.setRawHeader("X-Mixed-Case", "Value: 1");
    const Reply reply(m_client.post(request, QByteArray(100000, 'z')));
    QTRY_VERIFY(reply->isFinished());

    QCOMPARE(server.requests().size(), 1);
    const HttpServer::Request noted = server.requestsFor("/a?b=%2F").value(0);
    QCOMPARE(noted.method, QByteArray("POST"));
    QCOMPARE(noted.headers.value("x-mixed-case"), QByteArray("Value: 1"));
    QCOMPARE(noted.body.size(), 100000);
    QVERIFY(noted.time >= 0);
    QVERIFY(server.requestsFor("/a").isEmpty());
}

void TestHttpServer::aRedirectionLeadsToItsTarget()
{
    HttpServer server;
    server.redirect("/old", server.url("/new"));
    server.serve("/new", "new");
    const Reply reply = get(server.url("/old"));
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->readAll(), QByteArray("new"));
    QCOMPARE(server.requests().size(), 2);
}

void TestHttpServer::refusedConnectionsKeepThePort()
{
    HttpServer server;
    server.serve("/", "here");
    const QUrl url = server.url();
    {
        const Reply reply = get(url);
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(reply->error(), QNetworkReply::NoError);
    }
    server.refuse();
    {
        const Reply reply = get(url);
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(reply->error(), QNetworkReply::ConnectionRefusedError);
    }
    server.listen();
    QCOMPARE(server.url(), url);
    const Reply reply = get(url);
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->readAll(), QByteArray("here"));
}

void TestHttpServer::aSilentServerTakesTheRequestAndSaysNothing_data()
{
    QTest::addColumn<bool>("wholeServer");

    QTest::newRow("whole server") << true;
    QTest::newRow("one page") << false;
}

void TestHttpServer::aSilentServerTakesTheRequestAndSaysNothing()
{
    QFETCH(const bool, wholeServer);
    HttpServer server;
    HttpServer::Page page;
    page.answered = false;
    server.serve("/", page);
    server.serve("/other", "other");
    if (wholeServer)
        server.fallSilent();

    const Reply reply = get(server.url());
    const Reply other = get(server.url("/other"));
    QTRY_COMPARE(server.requests().size(), 2);
    QTRY_COMPARE(other->isFinished(), !wholeServer);
    QVERIFY(!QSignalSpy(reply.get(), &QNetworkReply::finished).wait(200));
    QCOMPARE(other->isFinished(), !wholeServer);
    QVERIFY(server.openConnections() > 0);
}

void TestHttpServer::someRequestsFailAndTheNextIsServed()
{
    HttpServer server;
    server.serve("/", "at last");
    server.failNext(2);
    QByteArrayList bodies;
    // The client itself tries again when a connection closes without an answer.
    for (int attempt = 0; attempt < 3 && !bodies.contains("at last"); ++attempt) {
        const Reply reply = get(server.url());
        QTRY_VERIFY(reply->isFinished());
        bodies += reply->readAll();
    }
    QCOMPARE(bodies.last(), QByteArray("at last"));
    QCOMPARE(server.requests().size(), 3);
}

void TestHttpServer::aSlowPageComesByteByByte()
{
    HttpServer server;
    HttpServer::Page page{"12345"};
    page.pause = 20;
    server.serve("/", page);
    const Reply reply = get(server.url());
    const QSignalSpy parts(reply.get(), &QNetworkReply::readyRead);
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->readAll(), QByteArray("12345"));
    QVERIFY(parts.count() > 1);
}

void TestHttpServer::aStallingPageNeverEnds()
{
    HttpServer server;
    HttpServer::Page page{"12345"};
    page.stallAt = 2;
    server.serve("/", page);
    const Reply reply = get(server.url());
    QTRY_COMPARE(reply->bytesAvailable(), 2);
    QVERIFY(!QSignalSpy(reply.get(), &QNetworkReply::finished).wait(200));
    QCOMPARE(reply->bytesAvailable(), 2);
}

QTEST_GUILESS_MAIN(TestHttpServer)

#include "tst_httpserver.moc"
