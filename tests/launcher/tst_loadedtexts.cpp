// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/engine/LoadedTexts.h"
#include "tests/support/HttpServer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

// What is told of the texts that a network access manager loads for somebody else.
class TestLoadedTexts : public QObject
{
    Q_OBJECT

private slots:
    void scriptsStylesAndPagesAreTold_data();
    void scriptsStylesAndPagesAreTold();
    void eachLoadIsARequestAndIsTold();
    void whatIsBrokenOffIsNotTold();
    void textsThatAreTooLargeAreTakenInPart();
    void pagesCannotHaveItKeepMoreAndMore();
    void filesAreTold();

private:
    /// The body that the manager's user gets.
    QByteArray load(const QUrl &url);

    HttpServer m_server;
    QNetworkAccessManager m_manager;
    LoadedTexts *m_texts = new LoadedTexts(&m_manager);
};

QByteArray TestLoadedTexts::load(const QUrl &url)
{
    const std::unique_ptr<QNetworkReply> reply(m_manager.get(QNetworkRequest(url)));
    return QSignalSpy(&m_manager, &QNetworkAccessManager::finished).wait() ? reply->readAll() : QByteArray("no answer");
}

void TestLoadedTexts::scriptsStylesAndPagesAreTold_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("contentType");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("kind");
    const auto row = [](const char *path, const char *type, int status, const char *kind) {
        QTest::addRow("%s %s %d", path, type, status)
            << QByteArray(path) << QByteArray(type) << status << QString(kind);
    };
    row("/a.js", "application/javascript", 200, "script");
    row("/a", "text/javascript; charset=utf-8", 200, "script");
    row("/a.js", "text/plain", 200, "script");
    row("/a.js", "application/octet-stream", 200, "script");
    row("/a.css", "text/css", 200, "style");
    row("/a", "text/html; charset=utf-8", 200, "page");
    row("/a", "text/html", 404, ""); // what a server says, no text of an author's
    row("/a.png", "image/png", 200, "");
    row("/a.json", "application/json", 200, "");
    row("/a", "text/plain", 200, "");
}

void TestLoadedTexts::scriptsStylesAndPagesAreTold()
{
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, contentType);
    QFETCH(const int, status);
    QFETCH(const QString, kind);
    HttpServer::Page page = {QByteArray("text ").repeated(30000), contentType, status};
    page.headers = {{"Cache-Control", "no-store"}};
    m_server.serve(path, page);
    QSignalSpy told(m_texts, &LoadedTexts::loaded);
    QCOMPARE(load(m_server.url(path)), page.body);
    QCOMPARE(told.count(), kind.isEmpty() ? 0 : 1);
    if (kind.isEmpty())
        return;
    QCOMPARE(told.first().at(0).toString(), m_server.url(path).toString());
    QCOMPARE(told.first().at(1).toString(), kind);
    QCOMPARE(told.first().at(2).toByteArray(), page.body);
}

void TestLoadedTexts::eachLoadIsARequestAndIsTold()
{
    m_server.serve("/b.js", {"first", "text/javascript", 200, {{"Cache-Control", "max-age=3600"}}});
    QSignalSpy told(m_texts, &LoadedTexts::loaded);
    QCOMPARE(load(m_server.url("/b.js")), QByteArray("first"));
    m_server.serve("/b.js", {"second", "text/javascript"});
    QCOMPARE(load(m_server.url("/b.js")), QByteArray("second"));
    QCOMPARE(m_server.requestsFor("/b.js").size(), 2);
    QCOMPARE(told.count(), 2);
    QCOMPARE(told.last().at(2).toByteArray(), QByteArray("second"));
}

void TestLoadedTexts::whatIsBrokenOffIsNotTold()
{
    HttpServer::Page page = {QByteArray("text ").repeated(30000), "text/javascript"};
    page.stallAt = 1000;
    m_server.serve("/c.js", page);
    QSignalSpy told(m_texts, &LoadedTexts::loaded);
    const std::unique_ptr<QNetworkReply> reply(m_manager.get(QNetworkRequest(m_server.url("/c.js"))));
    QVERIFY(QSignalSpy(reply.get(), &QNetworkReply::readyRead).wait());
    QCOMPARE(m_texts->children().size(), 1);
    reply->abort();
    QCOMPARE(told.count(), 0);
    QCOMPARE(m_texts->children().size(), 0);
}

void TestLoadedTexts::textsThatAreTooLargeAreTakenInPart()
{
    const QByteArray large(LoadedTexts::largestText + 100000, ' ');
    m_server.serve("/large.js", {large, "text/javascript"});
    QSignalSpy told(m_texts, &LoadedTexts::loaded);
    QCOMPARE(load(m_server.url("/large.js")).size(), large.size());
    QCOMPARE(told.first().at(2).toByteArray().size(), LoadedTexts::largestText + 1);
}

// Not even while one load lasts forever.
void TestLoadedTexts::pagesCannotHaveItKeepMoreAndMore()
{
    HttpServer::Page page = {QByteArray("text ").repeated(30000), "text/javascript"};
    page.stallAt = 1000;
    m_server.serve("/d.js", page);
    const std::unique_ptr<QNetworkReply> lasting(m_manager.get(QNetworkRequest(m_server.url("/d.js"))));
    QVERIFY(QSignalSpy(lasting.get(), &QNetworkReply::readyRead).wait());
    for (int i = 0; i < 2 * LoadedTexts::mostTexts; ++i) {
        const std::unique_ptr<QNetworkReply> reply(m_manager.get(QNetworkRequest(m_server.url("/d.js"))));
        QVERIFY(QSignalSpy(reply.get(), &QNetworkReply::readyRead).wait());
        reply->abort();
    }
    QCOMPARE(m_texts->children().size(), LoadedTexts::mostTexts);
    lasting->abort();
    QCOMPARE(m_texts->children().size(), 0);
    QSignalSpy told(m_texts, &LoadedTexts::loaded);
    m_server.serve("/e.js", {"text", "text/javascript"});
    load(m_server.url("/e.js"));
    QCOMPARE(told.count(), 1);
}

void TestLoadedTexts::filesAreTold()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("a.js"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("let a") == 5);
    file.close();
    QSignalSpy told(m_texts, &LoadedTexts::loaded);
    QCOMPARE(load(QUrl::fromLocalFile(file.fileName())), QByteArray("let a"));
    QTRY_COMPARE(told.count(), 1);
    QCOMPARE(told.first().at(1).toString(), QString("script"));
    QCOMPARE(told.first().at(2).toByteArray(), QByteArray("let a"));
}

QTEST_MAIN(TestLoadedTexts)

#include "tst_loadedtexts.moc"
