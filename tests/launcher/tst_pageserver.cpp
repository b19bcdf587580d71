// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageServerTest.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTcpServer>
#include <QTest>

#include <atomic>
#include <cstdio>
#include <thread>

#include <unistd.h>

/// What the web server for pages on the command line and for the demonstration portal delivers.
class TestPageServer : public PageServerTest
{
    Q_OBJECT

private slots:
    void init() { setUp(); }

    void aFileComesAsWhatItIs_data();
    void aFileComesAsWhatItIs();
    void aPartOfAFileIsServed_data();
    void aPartOfAFileIsServed();
    void nothingOutsideTheFolderIsServed_data();
    void nothingOutsideTheFolderIsServed();
    void nothingHiddenIsServed_data();
    void nothingHiddenIsServed();
    void aLinkIsFollowedInTheFolderAlone_data();
    void aLinkIsFollowedInTheFolderAlone();
    void aLinkThatChangesDoesNotLeadOut();
    void aFolderReachedByALinkIsServed();
    void oddRequestsAreAnswered_data();
    void oddRequestsAreAnswered();
    void requestsAreAnsweredOneAfterTheOther();
    void aFolderStandsForItsIndex();
    void anEditedFileIsServedAtOnceAndNeverCached();
    void onlyReadingIsAllowed();
    void theWishedPortIsTakenOrAnother();
    void thePortCannotBeGuessed();
    void oddNamesAreFound();
};

void TestPageServer::aFileComesAsWhatItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("page") << "a.html" << QByteArray("text/html");
    QTest::newRow("capital suffix") << "A.HTML" << QByteArray("text/html");
    QTest::newRow("style") << "a.css" << QByteArray("text/css");
    QTest::newRow("script") << "a.js" << QByteArray("application/javascript");
    QTest::newRow("data") << "a.json" << QByteArray("application/json");
    QTest::newRow("png") << "a.png" << QByteArray("image/png");
    QTest::newRow("jpeg") << "a.jpg" << QByteArray("image/jpeg");
    QTest::newRow("svg") << "a.svg" << QByteArray("image/svg+xml");
    QTest::newRow("mp4") << "a.mp4" << QByteArray("video/mp4");
    QTest::newRow("transport stream") << "a.ts" << QByteArray("video/mp2t");
    QTest::newRow("playlist") << "a.m3u8" << QByteArray("application/vnd.apple.mpegurl");
    QTest::newRow("subtitles") << "a.vtt" << QByteArray("text/vtt");
    QTest::newRow("font") << "a.woff" << QByteArray("font/woff");
    QTest::newRow("anything else") << "a.bin" << QByteArray("application/octet-stream");
    QTest::newRow("two suffixes") << "a.html.gz" << QByteArray("application/octet-stream");
}

void TestPageServer::aFileComesAsWhatItIs()
{
    QFETCH(QString, name);
    write("root/" + name, "content");
    const Answer answer = ask('/' + name.toUtf8());
    QCOMPARE(answer.status, 200);
    QTEST(answer.header("Content-Type"), "type");
    QCOMPARE(answer.header("Accept-Ranges"), QByteArray("bytes"));
    QCOMPARE(answer.body, QByteArray("content"));
    const Answer head = ask('/' + name.toUtf8(), "HEAD");
    QCOMPARE(head.status, 200);
    QCOMPARE(head.header("Content-Length"), QByteArray("7"));
    QCOMPARE(head.body, QByteArray());
}

void TestPageServer::aPartOfAFileIsServed_data()
{
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("contentRange");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("first bytes") << QByteArray("bytes=0-3") << 206 << QByteArray("bytes 0-3/10") << QByteArray("0123");
    QTest::newRow("one byte") << QByteArray("bytes=9-9") << 206 << QByteArray("bytes 9-9/10") << QByteArray("9");
    QTest::newRow("from a byte on") << QByteArray("bytes=7-") << 206 << QByteArray("bytes 7-9/10") << QByteArray("789");
    QTest::newRow("last bytes") << QByteArray("bytes=-2") << 206 << QByteArray("bytes 8-9/10") << QByteArray("89");
    QTest::newRow("more last bytes than there are")
        << QByteArray("bytes=-20") << 206 << QByteArray("bytes 0-9/10") << QByteArray("0123456789");
    QTest::newRow("beyond the end") << QByteArray("bytes=8-20") << 206 << QByteArray("bytes 8-9/10")
                                    << QByteArray("89");
    QTest::newRow("behind the end") << QByteArray("bytes=10-") << 416 << QByteArray("bytes */10") << QByteArray();
    QTest::newRow("no last bytes") << QByteArray("bytes=-0") << 416 << QByteArray("bytes */10") << QByteArray();
    QTest::newRow("backwards") << QByteArray("bytes=3-1") << 200 << QByteArray() << QByteArray("0123456789");
    QTest::newRow("two parts") << QByteArray("bytes=0-1,3-4") << 200 << QByteArray() << QByteArray("0123456789");
    QTest::newRow("no numbers") << QByteArray("bytes=-") << 200 << QByteArray() << QByteArray("0123456789");
    QTest::newRow("other unit") << QByteArray("pages=1-2") << 200 << QByteArray() << QByteArray("0123456789");
}

void TestPageServer::aPartOfAFileIsServed()
{
    QFETCH(QByteArray, range);
    const Answer answer = ask("/ten.mp4", "GET", "Range: " + range + "\r\n");
    QTEST(answer.status, "status");
    QTEST(answer.header("Content-Range"), "contentRange");
    QTEST(answer.body, "body");
    QCOMPARE(answer.header("Content-Length"), QByteArray::number(answer.body.size()));
}

void TestPageServer::nothingOutsideTheFolderIsServed_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const char *path : {"/../secret", "/%2e%2e/secret", "/..%2fsecret", "/x/../../secret", "/../root-secret",
                             "//etc/passwd", "/etc/passwd", "/none.html", "/pipe", "/ten.mp4/more"})
        QTest::newRow(path) << QByteArray(path);
}

void TestPageServer::nothingOutsideTheFolderIsServed()
{
    QFETCH(QByteArray, path);
    QVERIFY(QDir(m_folder->path()).mkpath("root/x"));
    QVERIFY(QProcess::execute("mkfifo", {m_folder->filePath("root/pipe")}) == 0);
    const Answer answer = ask(path);
    QCOMPARE(answer.status, 404);
    QCOMPARE(answer.body, QByteArray());
}

void TestPageServer::nothingHiddenIsServed_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const char *path :
         {"/.env", "/%2eenv", "/%2Eenv", "/./.env", "/.git/config", "/.git%2fconfig", "/%2egit/config",
          "/x/.git/config", "/x/../.env", "/.git/", "/.git", "/.git/../.env", "/..."})
        QTest::newRow(path) << QByteArray(path);
}

void TestPageServer::nothingHiddenIsServed()
{
    QFETCH(QByteArray, path);
    for (const char *name : {"root/.env", "root/.git/config", "root/x/.git/config", "root/.git/index.html", "root/..."})
        write(name, "hidden");
    const Answer answer = ask(path);
    QCOMPARE(answer.status, 404);
    QCOMPARE(answer.body, QByteArray());
}

void TestPageServer::aLinkIsFollowedInTheFolderAlone_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body"); // null if there is none
    QTest::newRow("file inside") << "file.mp4"
                                 << "media/clip.ts" << QByteArray("/file.mp4") << QByteArray("clip");
    QTest::newRow("file inside, absolute") << "file.mp4"
                                           << "ROOT/media/clip.ts" << QByteArray("/file.mp4") << QByteArray("clip");
    QTest::newRow("file inside, from below") << "media/up.html"
                                             << "../index.html" << QByteArray("/media/up.html") << QByteArray("index");
    QTest::newRow("folder inside") << "films"
                                   << "media" << QByteArray("/films/clip.ts") << QByteArray("clip");
    QTest::newRow("folder inside, its index") << "media/site"
                                              << ".." << QByteArray("/media/site/") << QByteArray("index");
    QTest::newRow("out and in again") << "file.mp4"
                                      << "../root/media/clip.ts" << QByteArray("/file.mp4") << QByteArray("clip");
    QTest::newRow("file outside") << "file.mp4"
                                  << "../secret" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("file outside, absolute") << "file.mp4"
                                            << "/etc/passwd" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("a name that begins alike") << "file.mp4"
                                              << "../root-secret" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("folder outside") << "films"
                                    << ".." << QByteArray("/films/secret") << QByteArray();
    QTest::newRow("folder outside, its index") << "films"
                                               << "../elsewhere" << QByteArray("/films/") << QByteArray();
    QTest::newRow("by a link to a link") << "file.mp4"
                                         << "media/out" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("by the process") << "file.mp4"
                                    << "/proc/self/environ" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("by the process's root") << "all"
                                           << "/proc/self/root" << QByteArray("/all/etc/passwd") << QByteArray();
    QTest::newRow("hidden file") << "file.mp4"
                                 << ".env" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("nothing") << "file.mp4"
                             << "nowhere" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("itself") << "file.mp4"
                            << "file.mp4" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("device") << "file.mp4"
                            << "/dev/zero" << QByteArray("/file.mp4") << QByteArray();
    QTest::newRow("pipe") << "file.mp4"
                          << "pipe" << QByteArray("/file.mp4") << QByteArray();
}

void TestPageServer::aLinkIsFollowedInTheFolderAlone()
{
    QFETCH(QString, link);
    QFETCH(QString, target);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    write("root/media/clip.ts", "clip");
    write("root/.env", "hidden");
    write("elsewhere/index.html", "elsewhere");
    QVERIFY(QFile::link("../../secret", m_folder->filePath("root/media/out")));
    QVERIFY(QProcess::execute("mkfifo", {m_folder->filePath("root/pipe")}) == 0);
    QVERIFY(QFile::link(target.replace("ROOT", m_folder->filePath("root")), m_folder->filePath("root/" + link)));
    const Answer answer = ask(path);
    QCOMPARE(answer.status, body.isNull() ? 404 : 200);
    QCOMPARE(answer.body, body);
}

void TestPageServer::aLinkThatChangesDoesNotLeadOut()
{
    const QByteArray link = QFile::encodeName(m_folder->filePath("root/link"));
    const QByteArray next = QFile::encodeName(m_folder->filePath("root/next"));
    std::atomic_bool isDone{false};
    std::thread changing([&] {
        for (int i = 0; !isDone; ++i) {
            if (symlink(i % 2 ? "index.html" : "../secret", next.constData()) == 0)
                rename(next.constData(), link.constData());
        }
    });
    QByteArrayList bodies;
    for (int i = 0; i < 2000 && !bodies.contains("secret"); ++i)
        bodies << ask("/link").body;
    isDone = true;
    changing.join();
    QVERIFY(bodies.contains("index"));
    QVERIFY(bodies.contains(""));
    QVERIFY(!bodies.contains("secret"));
}

void TestPageServer::aFolderReachedByALinkIsServed()
{
    write("other/.hidden/page/index.html", "linked");
    QVERIFY(QFile::link("other/.hidden/page", m_folder->filePath("link")));
    QString error;
    m_server.reset(new PageServer);
    QVERIFY2(m_server->start(m_folder->filePath("link"), 0, &error), qPrintable(error));
    QCOMPARE(ask("/index.html").body, QByteArray("linked"));
}

void TestPageServer::oddRequestsAreAnswered_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<int>("status");
    const QByteArray host = " HTTP/1.1\r\nHost: HOST\r\nConnection: close\r\n";
    QTest::newRow("long address") << QByteArray("GET /" + QByteArray(8000, 'x') + host + "\r\n") << 404;
    QTest::newRow("address that is too long") << QByteArray("GET /" + QByteArray(100000, 'x') + host + "\r\n") << 414;
    QTest::newRow("long header") << QByteArray("GET /index.html" + host + "X: " + QByteArray(8000, 'x') + "\r\n\r\n")
                                 << 200;
    QTest::newRow("header that is too long")
        << QByteArray("GET /index.html" + host + "X: " + QByteArray(100000, 'x') + "\r\n\r\n") << 431;
    QTest::newRow("query") << QByteArray("GET /index.html?" + QByteArray(3000, '%') + host + "\r\n") << 200;
    QTest::newRow("body of a GET") << QByteArray("GET /index.html" + host + "Content-Length: 3\r\n\r\nabc") << 200;
    QTest::newRow("body of a POST") << QByteArray("POST /index.html" + host + "Content-Length: 3\r\n\r\nabc") << 405;
    QTest::newRow("all of the server") << QByteArray("OPTIONS *" + host + "\r\n") << 421;
    QTest::newRow("tunnel") << QByteArray("CONNECT HOST" + host + "\r\n") << 421;
}

void TestPageServer::oddRequestsAreAnswered()
{
    QFETCH(QByteArray, request);
    QTEST(send(request.replace("HOST", host())).status, "status");
    QCOMPARE(ask("/index.html").status, 200);
}

void TestPageServer::requestsAreAnsweredOneAfterTheOther()
{
    const QByteArray start = "GET /index.html HTTP/1.1\r\nHost: " + host() + "\r\n";
    const QByteArray part = start + "Range: bytes=1-2\r\n\r\n";
    const Answer answer = send(start + "\r\n" + part + QByteArray(start).replace("GET", "HEAD") + "\r\n" + start
                               + "Connection: close\r\n\r\n");
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.body.count("HTTP/1.1 200 OK"), 2);
    QVERIFY2(answer.body.startsWith("indexHTTP/1.1 206 "), answer.body.constData());
    QVERIFY2(answer.body.contains("\r\n\r\nndHTTP/1.1 200 "), answer.body.constData());
    QVERIFY2(answer.body.contains("\r\n\r\nHTTP/1.1 200 "), answer.body.constData());
    QVERIFY2(answer.body.endsWith("\r\n\r\nindex"), answer.body.constData());
}

void TestPageServer::aFolderStandsForItsIndex()
{
    QCOMPARE(ask("/").body, QByteArray("index"));
    QCOMPARE(ask("/").header("Content-Type"), QByteArray("text/html"));
    QVERIFY(QDir(m_folder->path()).mkpath("root/empty"));
    QCOMPARE(ask("/empty/").status, 404);
    write("root/blank.txt", "");
    QCOMPARE(ask("/blank.txt").status, 200);
}

void TestPageServer::anEditedFileIsServedAtOnceAndNeverCached()
{
    QCOMPARE(ask("/index.html").header("Cache-Control"), QByteArray("no-store"));
    write("root/index.html", "edited");
    QCOMPARE(ask("/index.html?v=2").body, QByteArray("edited"));
}

void TestPageServer::onlyReadingIsAllowed()
{
    const Answer answer = ask("/index.html", "POST", "Content-Length: 0\r\n");
    QCOMPARE(answer.status, 405);
    QCOMPARE(answer.header("Allow"), QByteArray("GET, HEAD"));
    QCOMPARE(ask("/index.html", "DELETE").status, 405);
}

void TestPageServer::theWishedPortIsTakenOrAnother()
{
    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress::LocalHost));
    const quint16 port = owner.serverPort();
    QString error;
    PageServer second;
    QVERIFY(second.start(m_folder->filePath("root"), port, &error));
    QVERIFY(second.port() != port);
    QCOMPARE(second.address("index.html"), QUrl(QString("http://127.0.0.1:%1/index.html").arg(second.port())));
    owner.close();
    PageServer third;
    QVERIFY(third.start(m_folder->filePath("root"), port, &error));
    QCOMPARE(third.address("index.html"), QUrl(QString("http://127.0.0.1:%1/index.html").arg(port)));
    QCOMPARE(error, QString());
}

void TestPageServer::thePortCannotBeGuessed()
{
    QSet<quint16> ports;
    for (int i = 0; i < 20; ++i) {
        QString error;
        PageServer server;
        QVERIFY(server.start(m_folder->filePath("root"), 0, &error));
        QVERIFY2(server.port() >= 20000 && server.port() < 30000, qPrintable(QString::number(server.port())));
        ports << server.port();
    }
    QVERIFY2(ports.size() > 10, qPrintable(QString::number(ports.size())));
}

void TestPageServer::oddNamesAreFound()
{
    write("root/a b#ю?.html", "odd");
    QCOMPARE(ask(m_server->address("a b#ю?.html").toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority)).body,
             QByteArray("odd"));
}

QTEST_GUILESS_MAIN(TestPageServer)

#include "tst_pageserver.moc"
