// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/PageServer.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

namespace {

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

} // namespace

/// The web server for pages on the command line and for the demonstration portal.
class TestPageServer : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aFileComesAsWhatItIs_data();
    void aFileComesAsWhatItIs();
    void aPartOfAFileIsServed_data();
    void aPartOfAFileIsServed();
    void nothingOutsideTheFolderIsServed_data();
    void nothingOutsideTheFolderIsServed();
    void aLinkInTheFolderIsFollowed();
    void aFolderStandsForItsIndex();
    void anEditedFileIsServedAtOnceAndNeverCached();
    void onlyReadingIsAllowed();
    void theWishedPortIsTakenOrAnother();
    void oddNamesAreFound();

private:
    Answer ask(const QByteArray &path, const QByteArray &method = "GET", const QByteArray &headers = {}) const;
    void write(const QString &name, const QByteArray &content) const;

    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<PageServer> m_server;
};

void TestPageServer::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    write("root/index.html", "index");
    write("root/ten.mp4", "0123456789");
    write("root-secret", "secret");
    write("secret", "secret");
    m_server.reset(new PageServer);
    QVERIFY(m_server->start(m_folder->filePath("root"), 0));
}

void TestPageServer::write(const QString &name, const QByteArray &content) const
{
    QDir(m_folder->path()).mkpath(QFileInfo(name).path());
    QFile file(m_folder->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

Answer TestPageServer::ask(const QByteArray &path, const QByteArray &method, const QByteArray &headers) const
{
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", quint16(m_server->address({}).port()));
    socket.write(method + ' ' + path + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + headers + "\r\n");
    QByteArray received;
    while (socket.waitForReadyRead(5000))
        received += socket.readAll();
    const int end = received.indexOf("\r\n\r\n");
    return {received.mid(9, 3).toInt(), received.left(end + 2), received.mid(end + 4)};
}

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

void TestPageServer::aLinkInTheFolderIsFollowed()
{
    write("elsewhere/clip.ts", "clip");
    write("elsewhere/index.html", "elsewhere");
    QVERIFY(QFile::link(m_folder->filePath("elsewhere/clip.ts"), m_folder->filePath("root/file.mp4")));
    QVERIFY(QFile::link("../elsewhere", m_folder->filePath("root/media")));
    QVERIFY(QFile::link("nowhere", m_folder->filePath("root/dangling")));
    QCOMPARE(ask("/file.mp4").body, QByteArray("clip"));
    QCOMPARE(ask("/file.mp4").header("Content-Type"), QByteArray("video/mp4"));
    QCOMPARE(ask("/media/clip.ts").body, QByteArray("clip"));
    QCOMPARE(ask("/media/").body, QByteArray("elsewhere"));
    QCOMPARE(ask("/media/../index.html").body, QByteArray("index"));
    QCOMPARE(ask("/media/../secret").status, 404);
    QCOMPARE(ask("/dangling").status, 404);
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
    PageServer second;
    QVERIFY(second.start(m_folder->filePath("root"), port));
    QVERIFY(second.address("index.html").port() != port);
    owner.close();
    PageServer third;
    QVERIFY(third.start(m_folder->filePath("root"), port));
    QCOMPARE(third.address("index.html"), QUrl(QString("http://127.0.0.1:%1/index.html").arg(port)));
}

void TestPageServer::oddNamesAreFound()
{
    write("root/a b#ю?.html", "odd");
    QCOMPARE(ask(m_server->address("a b#ю?.html").toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority)).body,
             QByteArray("odd"));
}

QTEST_GUILESS_MAIN(TestPageServer)

#include "tst_pageserver.moc"
