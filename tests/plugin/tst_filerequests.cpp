// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QBuffer>
#include <QImage>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QWebPage>
#include <QWebView>
#include <QtTest>

namespace {

const char *const folder = "/mnt/stb";
const char *const kept = "/mnt/stb/kept.txt";
const char *const fresh = "/mnt/stb/fresh.txt";
const char *const content = "the box's own";

// A script that sends a request, of which result tells the end: method, address, and whether it goes on meanwhile.
const char *const request =
    "var result = ''; var r = new XMLHttpRequest(); r.onload = function () { result += 'done' };"
    "r.onerror = function () { result += 'failed' }; r.open('%1', '%2', %3);"
    "try { r.send('from the page') } catch (error) { result = result || 'failed' }";

bool write(const QString &fileName, const QByteArray &text)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int refusals(const MessageLog &log)
{
    return log.warnings().filter(QRegularExpression("^Refused: ")).size();
}

} // namespace

// Pages read the box's files, but no request writes one, and no server sends a request to one.
class TestFileRequests : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void noRequestOfAPageWritesAFile_data();
    void noRequestOfAPageWritesAFile();
    void aFormSentToAFileWritesNothing();
    void noOperationOfTheManagerWritesAFile_data();
    void noOperationOfTheManagerWritesAFile();
    void aRefusedRequestFailsOnceAndLeavesItsData();
    void noRedirectionLeadsAScriptsRequestToAFile_data();
    void noRedirectionLeadsAScriptsRequestToAFile();
    void noRedirectionLeadsARequestThatIsWaitedForToAFile_data();
    void noRedirectionLeadsARequestThatIsWaitedForToAFile();
    void noRedirectionLeadsAnElementToAFile_data();
    void noRedirectionLeadsAnElementToAFile();
    void noRedirectionLeadsAFrameToAFile();
    void aPageThatRedirectsToAFileHasFailed();
    void everySpellingOfAFileIsRefusedAsTarget_data();
    void everySpellingOfAFileIsRefusedAsTarget();
    void theBodyOfARefusedRedirectionIsNotWaitedFor();
    void redirectionsBetweenServersAreFollowed_data();
    void redirectionsBetweenServersAreFollowed();
    void pagesReadFiles_data();
    void pagesReadFiles();

private:
    void verifyFilesAreAsBefore();

    HttpServer m_server;
};

void TestFileRequests::init()
{
    HostedPlugin::writeManifest(PluginManifest());
    QVERIFY(write(kept, content));
    QFile::remove(fresh);
    m_server.serve("/page", "<title>Page</title>");
}

void TestFileRequests::verifyFilesAreAsBefore()
{
    QCOMPARE(contentOf(kept), QByteArray(content));
    QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList("kept.txt"));
}

void TestFileRequests::noRequestOfAPageWritesAFile_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("waits");

    for (const char *method : {"PUT", "DELETE", "OPTIONS", "PATCH", "MKCOL", "put"}) {
        for (const bool waits : {false, true}) {
            for (const char *file : {kept, fresh})
                QTest::addRow("%s of %s%s", method, file, waits ? ", waited for" : "")
                    << method << QString("file://") + file << waits;
        }
    }
    QTest::newRow("scheme in capitals") << "PUT"
                                        << "FILE:///mnt/stb/kept.txt" << false;
    QTest::newRow("one slash") << "PUT"
                               << "file:/mnt/stb/kept.txt" << false;
    QTest::newRow("this host") << "PUT"
                               << "file://localhost/mnt/stb/kept.txt" << false;
    QTest::newRow("many slashes") << "PUT"
                                  << "file://///mnt//stb/kept.txt" << false;
    QTest::newRow("back and forth") << "PUT"
                                    << "file:///etc/../mnt/stb/kept.txt" << false;
    QTest::newRow("with a query") << "PUT"
                                  << "file:///mnt/stb/kept.txt?a#b" << false;
    QTest::newRow("resource of the plugin") << "PUT"
                                            << "qrc:/page/events.js" << false;
}

void TestFileRequests::noRequestOfAPageWritesAFile()
{
    QFETCH(QString, method);
    QFETCH(QString, address);
    QFETCH(bool, waits);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    const MessageLog log;
    plugin.evaluate(QString(request).arg(method, address, waits ? "false" : "true"));

    // Whoever waits is told of no failure with a file, not even when there is none to read.
    QTRY_COMPARE(plugin.evaluate("result").toString(), QString(waits ? "done" : "failed"));
    QCOMPARE(plugin.evaluate("r.status + r.responseText").toString(), QString("0"));
    QCOMPARE(refusals(log), 1);
    verifyFilesAreAsBefore();
}

// The engine itself makes the request one that reads.
void TestFileRequests::aFormSentToAFileWritesNothing()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    plugin.evaluate(
        QString("var r = new XMLHttpRequest(); r.open('POST', 'file://%1'); r.send('from the page')").arg(kept));
    QTRY_COMPARE(plugin.evaluate("r.readyState").toInt(), 4);
    verifyFilesAreAsBefore();

    plugin.evaluate(
        QString("document.body.innerHTML = \"<form method='post' action='file://%1'><input name='a' value='b'>"
                "</form>\"; document.forms[0].submit()")
            .arg(kept));
    QVERIFY(plugin.waitForLoad());
    verifyFilesAreAsBefore();
}

void TestFileRequests::noOperationOfTheManagerWritesAFile_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QUrl>("url");

    for (const char *method : {"PUT", "POST", "DELETE", "MKCOL"}) {
        QTest::addRow("%s", method) << QByteArray(method) << QUrl::fromLocalFile(kept);
        QTest::addRow("%s of a new file", method) << QByteArray(method) << QUrl::fromLocalFile(fresh);
        // The toolkit takes a protocol that it does not know for the beginning of a file's name.
        QTest::addRow("%s to an unknown protocol", method) << QByteArray(method) << QUrl("notes:page");
    }
}

void TestFileRequests::noOperationOfTheManagerWritesAFile()
{
    QFETCH(QByteArray, method);
    QFETCH(QUrl, url);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(QDir::setCurrent(folder));
    const MessageLog log;
    QBuffer data;
    QVERIFY(data.open(QIODevice::ReadWrite));
    QNetworkAccessManager *manager = plugin.browser()->page()->networkAccessManager();
    QNetworkReply *reply = manager->sendCustomRequest(QNetworkRequest(url), method, &data);
    if (method == "PUT")
        reply = manager->put(QNetworkRequest(url), &data);
    else if (method == "POST")
        reply = manager->post(QNetworkRequest(url), &data);
    else if (method == "DELETE")
        reply = manager->deleteResource(QNetworkRequest(url));
    QSignalSpy finished(reply, SIGNAL(finished()));

    QTRY_COMPARE(finished.size(), 1);
    QVERIFY(reply->error() != QNetworkReply::NoError);
    QVERIFY(refusals(log) > 0);
    verifyFilesAreAsBefore();
}

void TestFileRequests::aRefusedRequestFailsOnceAndLeavesItsData()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QBuffer data;
    data.setData("from the page");
    QVERIFY(data.open(QIODevice::ReadOnly));
    const QNetworkRequest put(QUrl::fromLocalFile(kept));
    QScopedPointer<QNetworkReply> reply(plugin.browser()->page()->networkAccessManager()->put(put, &data));
    QSignalSpy finished(reply.data(), SIGNAL(finished()));
    QTRY_COMPARE(finished.size(), 1);
    reply->abort();
    // Another end would be told by the queue of events, before what comes into it now.
    bool isQueueDone = false;
    QTimer::singleShot(0, this, [&isQueueDone] { isQueueDone = true; });
    QTRY_VERIFY(isQueueDone);

    QCOMPARE(finished.size(), 1);
    QCOMPARE(reply->error(), QNetworkReply::ContentOperationNotPermittedError);
    QCOMPARE(reply->url(), put.url());
    QCOMPARE(reply->operation(), QNetworkAccessManager::PutOperation);
    QCOMPARE(reply->readAll(), QByteArray());
    QCOMPARE(data.pos(), 0);
    verifyFilesAreAsBefore();
}

void TestFileRequests::noRedirectionLeadsAScriptsRequestToAFile_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("path");

    for (const int status : {301, 302, 303, 307, 308}) {
        for (const char *method : {"GET", "HEAD", "PUT", "POST", "DELETE", "MKCOL"}) {
            QTest::addRow("%d, %s", status, method) << status << method << "/moved";
        }
        QTest::addRow("%d, GET behind another redirection", status) << status << "GET"
                                                                    << "/first";
        QTest::addRow("%d, PUT behind another redirection", status) << status << "PUT"
                                                                    << "/first";
    }
}

void TestFileRequests::noRedirectionLeadsAScriptsRequestToAFile()
{
    QFETCH(int, status);
    QFETCH(QString, method);
    QFETCH(QString, path);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    m_server.redirect("/moved", QUrl::fromLocalFile(kept), status);
    m_server.redirect("/first", m_server.url("/moved"), 307);
    const MessageLog log;
    plugin.evaluate(QString(request).arg(method, path, "true"));

    QTRY_COMPARE(plugin.evaluate("result").toString(), QString("failed"));
    QCOMPARE(plugin.evaluate("r.status + r.responseText").toString(), QString("0"));
    QCOMPARE(refusals(log), 1);
    QVERIFY2(log.warnings().join('\n').contains("file://"), qPrintable(log.warnings().join('\n')));
    verifyFilesAreAsBefore();
}

void TestFileRequests::noRedirectionLeadsARequestThatIsWaitedForToAFile_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("method");

    for (const int status : {301, 302, 303, 307, 308}) {
        for (const char *method : {"GET", "HEAD", "PUT", "POST", "DELETE", "MKCOL"})
            QTest::addRow("%d, %s", status, method) << status << method;
    }
}

void TestFileRequests::noRedirectionLeadsARequestThatIsWaitedForToAFile()
{
    QFETCH(int, status);
    QFETCH(QString, method);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    // The test's own thread waits too.
    QUrl address;
    QSemaphore isServing;
    const QScopedPointer<QThread> thread(QThread::create([&] {
        HttpServer server;
        server.serve("/page", "Page");
        server.redirect("/moved", QUrl::fromLocalFile(kept), status);
        address = server.url("/page");
        isServing.release();
        QEventLoop().exec();
    }));
    thread->start();
    isServing.acquire();
    const MessageLog log;
    if (plugin.load(address))
        plugin.evaluate(QString(request).arg(method, "/moved", "false"));
    thread->quit();
    QVERIFY(thread->wait());

    QCOMPARE(plugin.evaluate("result").toString(), QString("failed"));
    QCOMPARE(refusals(log), 1);
    verifyFilesAreAsBefore();
}

void TestFileRequests::noRedirectionLeadsAnElementToAFile_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("element");

    for (const int status : {301, 302, 303, 307, 308}) {
        QTest::addRow("%d, image", status) << status << "img";
        QTest::addRow("%d, script", status) << status << "script";
    }
}

void TestFileRequests::noRedirectionLeadsAnElementToAFile()
{
    QFETCH(int, status);
    QFETCH(QString, element);
    const QString file = "/tmp/" + element;
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(element == "img" ? picture.save(file, "PNG") : write(file, "var reached = true"));
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    m_server.redirect("/moved", QUrl::fromLocalFile(file), status);
    const MessageLog log;
    const QString load = QString("var result = ''; var element = document.createElement('%1');"
                                 "element.onload = function () { result = 'loaded' };"
                                 "element.onerror = function () { result = 'failed' };"
                                 "document.body.appendChild(element); element.src = '%2'")
                             .arg(element);
    plugin.evaluate(load.arg("/moved"));
    QTRY_COMPARE(plugin.evaluate("result").toString(), QString("failed"));
    QCOMPARE(plugin.evaluate("typeof reached + (element.naturalWidth || 0)").toString(), QString("undefined0"));
    QCOMPARE(refusals(log), 1);

    // It can be reached.
    plugin.evaluate(load.arg("file://" + file));
    QTRY_COMPARE(plugin.evaluate("result").toString(), QString("loaded"));
}

void TestFileRequests::noRedirectionLeadsAFrameToAFile()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    m_server.redirect("/moved", QUrl::fromLocalFile(kept), 302);
    const MessageLog log;
    plugin.evaluate("var frame = document.createElement('iframe'); document.body.appendChild(frame);"
                    "frame.src = '/moved'");

    QVERIFY(plugin.waitForLoad());
    QCOMPARE(refusals(log), 1);
    QVERIFY(!plugin.evaluate("frame.contentDocument.documentElement.textContent").toString().contains(content));
}

void TestFileRequests::aPageThatRedirectsToAFileHasFailed()
{
    HttpServer server;
    server.serve("/", "<title>Portal</title>");
    server.redirect("/moved", QUrl::fromLocalFile(kept), 302);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url()));
    QVERIFY(!plugin.load(server.url("/moved")));
    QVERIFY(!plugin.browser()->url().isLocalFile());

    // Like any other page that has failed, it is tried again.
    server.serve("/moved", "<title>Back</title>");
    QTRY_COMPARE(plugin.browser()->title(), QString("Back"));
}

void TestFileRequests::everySpellingOfAFileIsRefusedAsTarget_data()
{
    QTest::addColumn<QByteArray>("location");

    for (const char *location :
         {"file:///mnt/stb/kept.txt", "FILE:///mnt/stb/kept.txt", "file:/mnt/stb/kept.txt", "File:/mnt/stb/kept.txt",
          "file://localhost/mnt/stb/kept.txt", " file:///mnt/stb/kept.txt", "file:///mnt/stb/kept.txt#part",
          "file:///mnt/stb/./kept.txt?query", "qrc:/page/events.js", "notes:page"})
        QTest::addRow("%s", location) << QByteArray(location);
}

void TestFileRequests::everySpellingOfAFileIsRefusedAsTarget()
{
    QFETCH(QByteArray, location);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    m_server.serve("/moved", {{}, "text/html", 302, {{"Location", location}}});
    const MessageLog log;
    plugin.evaluate(QString(request).arg("GET", "/moved", "true"));

    QTRY_COMPARE(plugin.evaluate("result").toString(), QString("failed"));
    QCOMPARE(refusals(log), 1);
}

void TestFileRequests::theBodyOfARefusedRedirectionIsNotWaitedFor()
{
    HttpServer server;
    server.serve("/", "Portal");
    server.serve("/moved", {"Moved", "text/html", 302, {{"Location", "file:///mnt/stb/kept.txt"}}, 0, 2});
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url()));
    plugin.evaluate(QString(request).arg("GET", "/moved", "true"));

    QTRY_COMPARE(plugin.evaluate("result").toString(), QString("failed"));
    QTRY_COMPARE(server.openConnections(), 0);
}

void TestFileRequests::redirectionsBetweenServersAreFollowed_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QByteArray>("next");

    QTest::newRow("GET") << 302 << "GET" << QByteArray("GET");
    QTest::newRow("form") << 302 << "POST" << QByteArray("GET");
    QTest::newRow("form that stays one") << 307 << "POST" << QByteArray("POST");
    QTest::newRow("PUT") << 301 << "PUT" << QByteArray("PUT");
}

void TestFileRequests::redirectionsBetweenServersAreFollowed()
{
    QFETCH(int, status);
    QFETCH(QString, method);
    QFETCH(QByteArray, next);
    HttpServer server;
    server.serve("/", "Portal");
    server.serve("/there", "There");
    server.redirect("/moved", QUrl("/there"), status);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(server.url()));
    const MessageLog log;
    plugin.evaluate(QString("var r = new XMLHttpRequest(); r.open('%1', '/moved'); r.send('text')").arg(method));

    QTRY_COMPARE(plugin.evaluate("r.responseText").toString(), QString("There"));
    QCOMPARE(server.requestsFor("/there").constFirst().method, next);
    QCOMPARE(refusals(log), 0);
}

void TestFileRequests::pagesReadFiles_data()
{
    QTest::addColumn<bool>("waits");

    QTest::newRow("in the background") << false;
    QTest::newRow("waited for") << true;
}

void TestFileRequests::pagesReadFiles()
{
    QFETCH(bool, waits);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/page")));
    const MessageLog log;
    plugin.evaluate(QString("var r = new XMLHttpRequest(); r.open('GET', 'file://%1', %2); r.send()")
                        .arg(kept, waits ? "false" : "true"));

    QTRY_COMPARE(plugin.evaluate("r.responseText").toString(), QString(content));
    QCOMPARE(refusals(log), 0);
}

QTEST_MAIN(TestFileRequests)
#include "tst_filerequests.moc"
