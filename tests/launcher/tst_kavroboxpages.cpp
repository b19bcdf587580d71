// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>

#include <sys/fsuid.h>
#include <unistd.h>

namespace {

const char traceLevel[] = "/etc/stbjsapi_debug";

} // namespace

/// The pages that the desk box opens, and what else it sets in the box.
class TestKavroBoxPages : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init() { setUp(); }

    void aFileIsServedAsAPage();
    void theAddressOfAServedFileStaysTheSame();
    void aTakenPortIsSaidAndKeptForTheNextTime();
    void anUnusablePortIsReplaced_data();
    void anUnusablePortIsReplaced();
    void aPortThatCannotBeKeptIsSaid();
    void otherUsersGetNothingOfAPage();
    void aLinkStandsForTheFileThatItLeadsTo_data();
    void aLinkStandsForTheFileThatItLeadsTo();
    void aFileThatIsNotServedIsRefused();
    void aPageGivenOnceIsNotTheNextHomePage();
    void theAuthorsOwnHomePageIsOpened();
    void aMalformedManifestIsSaidAndTheBoxStarts();
    void keysComeWithoutAPageToo();
    void itMayBeLeftWhileTheSplashIsShown();
    void tracingLastsForOneRun_data();
    void tracingLastsForOneRun();
    void theModelIsTheOneGiven();
    void theOutputIsThePluginsAlone();
    void thePagesConsoleIsShown();
    void thereIsStackForDeeplyNestedElements();
    void pagesFindTheEngineThatIsAskedFor_data();
    void pagesFindTheEngineThatIsAskedFor();
    void whatABoxDoesNotKnowIsSaidOnce();
    void whatABoxDoesNotKnowIsSaidAgainWhenTheFileHasChanged();

private:
    /// The script of a page of another server that tells its address and leaves.
    QByteArray tellAddress() const;
    QByteArray keptPort() const { return contentOf(m_box + "/port").trimmed(); }
    QString manifest() const;
    QString homePage(const QString &attribute) const;
};

QByteArray TestKavroBoxPages::tellAddress() const
{
    return "var image = new Image(); image.onerror = function () { StbDisplay.ExitToMenu(); }; image.src = '"
        + m_server->url("/told/").toEncoded() + "' + encodeURIComponent(location.href);";
}

QString TestKavroBoxPages::manifest() const
{
    return m_box + "/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
}

QString TestKavroBoxPages::homePage(const QString &attribute) const
{
    QXmlStreamReader reader(contentOf(manifest()));
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.attributes().value("type") == "homepage")
            return reader.attributes().value(attribute).toString();
    }
    return {};
}

void TestKavroBoxPages::aFileIsServedAsAPage()
{
    const QString file = m_folder->filePath("my page.html");
    QVERIFY(writeFile(file, "<script src='my.js'></script>"));
    QVERIFY(writeFile(m_folder->filePath("my.js"), tellAddress()));
    QCOMPARE(run({file}), 0);
    const QString address = told().join(' ');
    QVERIFY2(address.startsWith("http://127.0.0.1:2") && address.endsWith("/my%20page.html"), qPrintable(address));
}

void TestKavroBoxPages::theAddressOfAServedFileStaysTheSame()
{
    QVERIFY(writeFile(m_folder->filePath("a.html"), "<script>" + tellAddress() + "</script>"));
    for (int i = 0; i < 2; ++i)
        QCOMPARE(run({m_folder->filePath("a.html")}), 0);
    const QStringList addresses = told();
    QCOMPARE(addresses.size(), 2);
    QCOMPARE(addresses.first(), addresses.last());
}

void TestKavroBoxPages::aTakenPortIsSaidAndKeptForTheNextTime()
{
    QVERIFY(writeFile(m_folder->filePath("a.html"), "<script>" + tellAddress() + "</script>"));
    QCOMPARE(run({m_folder->filePath("a.html")}), 0);
    const QByteArray port = keptPort();
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost, port.toUShort()));
    QCOMPARE(run({m_folder->filePath("a.html")}), 0);
    QVERIFY2(m_program->errors().startsWith("kavro-box: port " + port + " of 127.0.0.1, "), m_program->errors());
    QVERIFY(!other.hasPendingConnections());
    other.close();
    QCOMPARE(run({m_folder->filePath("a.html")}), 0);
    QVERIFY2(!m_program->errors().contains("is taken"), m_program->errors());

    const QStringList addresses = told();
    QCOMPARE(addresses.size(), 3);
    QCOMPARE(addresses.first(), QString("http://127.0.0.1:%1/a.html").arg(QString::fromLatin1(port)));
    QVERIFY(addresses.at(1) != addresses.first());
    QCOMPARE(addresses.last(), addresses.first());
}

void TestKavroBoxPages::anUnusablePortIsReplaced_data()
{
    QTest::addColumn<QByteArray>("made");
    QTest::newRow("empty") << QByteArray(": >\"$0\"");
    QTest::newRow("text") << QByteArray("echo none >\"$0\"");
    QTest::newRow("too large") << QByteArray("echo 70000 >\"$0\"");
    QTest::newRow("much") << QByteArray("truncate -s 1G \"$0\"");
    QTest::newRow("pipe") << QByteArray("mkfifo \"$0\"");
    QTest::newRow("device") << QByteArray("ln -s /dev/zero \"$0\"");
}

void TestKavroBoxPages::anUnusablePortIsReplaced()
{
    QFETCH(QByteArray, made);
    QVERIFY(QDir().mkpath(m_box));
    QCOMPARE(QProcess::execute("sh", {"-c", made, m_box + "/port"}), 0);
    QCOMPARE(run({"--exit-after", "0"}), 0);
    const QByteArray port = keptPort();
    QVERIFY2(m_program->errors().contains("kavro-box: portal http://127.0.0.1:" + port + '/'), m_program->errors());
    QCOMPARE(QFileInfo(m_box + "/port").permissions() & ~(QFile::ReadUser | QFile::WriteUser),
             QFile::ReadOwner | QFile::WriteOwner);
}

void TestKavroBoxPages::aPortThatCannotBeKeptIsSaid()
{
    QVERIFY(QDir().mkpath(m_box + "/port"));
    QCOMPARE(run({"--exit-after", "0"}), 0);
    QVERIFY2(m_program->errors().startsWith("kavro-box: the address of the pages cannot be kept in " + m_box.toUtf8()
                                            + "/port, "),
             m_program->errors());
}

void TestKavroBoxPages::otherUsersGetNothingOfAPage()
{
    if (geteuid() != 0)
        QSKIP("Only root can connect as another user");
    QVERIFY(writeFile(m_folder->filePath("b.html"), "private"));
    const auto received = [this](uid_t user) {
        const QByteArray port = keptPort();
        setfsuid(user); // whose the socket is then
        QTcpSocket socket;
        socket.connectToHost("127.0.0.1", port.toUShort());
        setfsuid(geteuid());
        socket.write("GET /b.html HTTP/1.0\r\nHost: 127.0.0.1:" + port + "\r\n\r\n");
        QByteArray text;
        while (socket.waitForReadyRead(patience))
            text += socket.readAll();
        return text;
    };
    begin({"--exit-after", "3", m_folder->filePath("b.html")});
    QTRY_VERIFY_WITH_TIMEOUT(m_program->errors().contains("kavro-box: page "), patience);
    QCOMPARE(received(65534), QByteArray());
    QCOMPARE(received(1), QByteArray());
    QVERIFY(received(0).endsWith("\r\n\r\nprivate"));
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(m_program->errors().count("kavro-box: user 65534 of this PC was refused the pages, "), 1);
    QCOMPARE(m_program->errors().count("was refused"), 1);
}

void TestKavroBoxPages::aLinkStandsForTheFileThatItLeadsTo_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("path"); // of the page's address
    QTest::newRow("elsewhere") << "desk/portal.html"
                               << "portal/page.html"
                               << "/page.html";
    QTest::newRow("beside it") << "portal/portal.html"
                               << "portal/page.html"
                               << "/portal.html";
    QTest::newRow("hidden below it") << "portal.html"
                                     << ".portal/page.html"
                                     << "/page.html";
}

void TestKavroBoxPages::aLinkStandsForTheFileThatItLeadsTo()
{
    QFETCH(QString, link);
    QFETCH(QString, target);
    QFETCH(QString, path);
    link = m_folder->filePath(link);
    target = m_folder->filePath(target);
    QVERIFY(writeFile(target, "<script src='my.js'></script>"));
    QVERIFY(writeFile(QFileInfo(target).path() + "/my.js", tellAddress()));
    QVERIFY(QDir().mkpath(QFileInfo(link).path()));
    QVERIFY(QFile::link(target, link));
    QCOMPARE(run({link}), 0);
    const QStringList addresses = told();
    QCOMPARE(addresses.size(), 1);
    QCOMPARE(QUrl(addresses.first()).path(), path);
    const QString line = QString("kavro-box: \"%1\" is a link to %2, whose folder is served\n").arg(link, target);
    QCOMPARE(m_program->errors().contains(line.toUtf8()), path == "/page.html");
}

void TestKavroBoxPages::aFileThatIsNotServedIsRefused()
{
    const QString file = m_folder->filePath(".page.html");
    QVERIFY(writeFile(file, "page"));
    QCOMPARE(run({file}), 2);
    QCOMPARE(m_program->errors(),
             "kavro-box: " + file.toUtf8()
                 + " cannot be shown, because files whose names begin with a dot are not served; give it another "
                   "name\n");
    QVERIFY(!QFile::exists(m_box));
}

void TestKavroBoxPages::aPageGivenOnceIsNotTheNextHomePage()
{
    QCOMPARE(run({"--exit-after", "0", m_server->url("/?a=1&b=<2>").toString()}), 0);
    QCOMPARE(homePage("src"), m_server->url("/?a=1&b=<2>").toString());
    QCOMPARE(homePage("desk-page"), QString("portal"));
    QCOMPARE(run({"--exit-after", "0"}), 0);
    QVERIFY(homePage("src").startsWith("http://127.0.0.1:2"));
    QVERIFY(homePage("src").endsWith("/index.html"));
    QCOMPARE(homePage("desk-page"), QString("portal"));
}

void TestKavroBoxPages::theAuthorsOwnHomePageIsOpened()
{
    m_server->serve("/own", page("tell('own'); leave();"));
    m_server->serve("/given", page("tell('given'); leave();"));
    QVERIFY(writeFile(manifest(), "<m><p type='homepage' src='" + m_server->url("/own").toEncoded() + "'/></m>"));
    QCOMPARE(run({}), 0);
    QCOMPARE(run({m_server->url("/given").toString()}), 0);
    QCOMPARE(run({}), 0);
    QCOMPARE(told(), QStringList({"own", "given", "own"}));
}

void TestKavroBoxPages::aMalformedManifestIsSaidAndTheBoxStarts()
{
    QVERIFY(writeFile(manifest(), "<m><p type='homepage'>"));
    QCOMPARE(run({"--exit-after", "0.3", m_server->url().toString()}), 0);
    QCOMPARE(contentOf(manifest()), QByteArray("<m><p type='homepage'>"));
    QVERIFY(m_program->errors().contains("kavro-box: " + manifest().toUtf8() + " is malformed ("));
    QVERIFY(m_program->errors().contains("Malformed Manifest\n"));
    QCOMPARE(QImage(m_picture).size(), QSize(1920, 1080));
}

void TestKavroBoxPages::keysComeWithoutAPageToo()
{
    QVERIFY(writeFile(manifest(), "<m><p type='homepage'>")); // nothing is loaded, or fails to
    QCOMPARE(run({"--keys", "F1"}), 0);
}

void TestKavroBoxPages::itMayBeLeftWhileTheSplashIsShown()
{
    QImage splash(200, 100, QImage::Format_RGB32);
    splash.fill(Qt::red);
    QVERIFY(writeFile(manifest(), "<m><p type='homepage' src=''/><p type='splash_image' src='splash.png'/></m>"));
    QVERIFY(splash.save(QFileInfo(manifest()).path() + "/splash.png"));
    QCOMPARE(run({"--exit-after", "1.5", "http://127.0.0.1:1/"}), 0);
    QCOMPARE(QImage(m_picture).pixelColor(20, 50), QColor(Qt::red));
}

void TestKavroBoxPages::tracingLastsForOneRun_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("no level set") << QByteArray();
    QTest::newRow("a level set") << QByteArray("0\n");
}

void TestKavroBoxPages::tracingLastsForOneRun()
{
    QFETCH(QByteArray, before);
    if (!before.isEmpty())
        QVERIFY(writeFile(m_box + traceLevel, before));
    m_server->serve("/", page("StbDisplay.GetAlphaLevel(); tell('called');"));
    begin({"--trace", m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("called"), patience);
    QCOMPARE(contentOf(m_box + traceLevel), QByteArray("1\n"));
    m_program->terminate();
    QCOMPARE(m_program->finish(), 0);
    QVERIFY2(m_program->errors().contains("\"StbDisplay.GetAlphaLevel()\""), m_program->errors().constData());
    QCOMPARE(QFile::exists(m_box + traceLevel), !before.isEmpty());
    QCOMPARE(contentOf(m_box + traceLevel), before);
}

void TestKavroBoxPages::theModelIsTheOneGiven()
{
    m_server->serve("/", page("tell(StbDisplay.DeviceModel); leave();"));
    QCOMPARE(run({m_server->url().toString()}), 0);
    QCOMPARE(run({"--model", "Test 1", m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList({"MZ-600 desk", "Test 1"}));
}

void TestKavroBoxPages::theOutputIsThePluginsAlone()
{
    m_server->serve("/", page("StbDisplay.Debug('Привет'); leave();"));
    QCOMPARE(run({"--trace", m_server->url().toString()}), 0);
    QCOMPARE(m_program->output(), QByteArray("debugПривет\n"));
    QCOMPARE(m_program->errors().count("kavro-box: "), 1);
    QVERIFY2(m_program->errors().contains("Привет"), m_program->errors().constData());
}

// Laying out as many as would exceed the usual one takes longer than a test may.
void TestKavroBoxPages::thePagesConsoleIsShown()
{
    m_server->serve("/",
                    page("console.log('one\\ntwo'); console.warn('three');\n"
                         "console.error(new Array(3001).join('x'));\n"
                         "onload = function () { leave(100); missing(); };"
                         "onunload = function () { StbMedia.Pause(1); };"));
    QCOMPARE(run({m_server->url().toString()}), 0);
    const QByteArray start = "kavro-box: console";
    const QByteArray address = " (" + m_server->url().toEncoded() + ":";
    QByteArrayList lines = m_program->errors().split('\n');
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [&start](const QByteArray &line) { return !line.startsWith(start); }),
                lines.end());
    QCOMPARE(lines,
             QByteArrayList({start + ": one two" + address + "3)", start + " warning: three" + address + "3)",
                             start + " error: " + QByteArray(2000, 'x') + "..." + address + "4)",
                             start + " error: ReferenceError: Can't find variable: missing" + address + "5)"}));
    QCOMPARE(m_program->output(), QByteArray());
}

void TestKavroBoxPages::thereIsStackForDeeplyNestedElements()
{
    const QString script = m_box + "/usr/local/bin/custom/stack";
    QVERIFY(writeFile(script, "#!/bin/sh\nulimit -s\n"));
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
    m_server->serve("/stack", page("tell(StbDisplay.ExecBlocking('stack', '').stdout[0]); leave();"));
    QCOMPARE(run({m_server->url("/stack").toString()}), 0);
    QCOMPARE(told(), QStringList("262144"));
}

void TestKavroBoxPages::pagesFindTheEngineThatIsAskedFor_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("types");
    QTest::newRow("usual") << QStringList() << "undefined undefined object";
    QTest::newRow("box") << QStringList{"--engine", "box"} << "undefined undefined object";
    QTest::newRow("pc") << QStringList{"--engine", "pc"} << "function function object";
}

void TestKavroBoxPages::pagesFindTheEngineThatIsAskedFor()
{
    QFETCH(const QStringList, options);
    QFETCH(const QString, types);
    m_server->serve("/",
                    page("tell([typeof Promise, typeof Function.prototype.bind, typeof StbMedia].join(' '));"
                         "function later() { return () => 1; } leave(2000);"));
    QCOMPARE(run(options + QStringList(m_server->url().toString())), 0);
    QCOMPARE(told(), QStringList(types));
    QCOMPARE(m_program->errors().contains("the box's engine"), options != QStringList({"--engine", "pc"}));
}

// The page's own console has it too.
void TestKavroBoxPages::whatABoxDoesNotKnowIsSaidOnce()
{
    m_server->serve("/a.js", {"var a = 1;\nvar b = () => a;\n", "application/javascript"});
    m_server->serve("/a.css", {"a { width: calc(1px) }", "text/css"});
    m_server->serve(
        "/",
        page("var said = 0; console.warn = function (text) {"
             "if (++said === 2) { tell(said + ' ' + text); setTimeout(function () { leave(0); }, 1000); } };",
             "<link rel='stylesheet' href='a.css'><script src='a.js'></script>"));
    QCOMPARE(run({m_server->url().toString()}), 0);
    const QByteArray script = "kavro-box: " + m_server->url("/a.js").toEncoded() + ":2: the box's engine ";
    const QByteArray style = "kavro-box: " + m_server->url("/a.css").toEncoded() + ":1: the box's engine ";
    QCOMPARE(m_program->errors().count("the box's engine"), 2);
    QCOMPARE(m_program->errors().count(script), 1);
    QCOMPARE(m_program->errors().count(style), 1);
    QCOMPARE(m_server->requestsFor("/a.js").size(), 1);
    const QStringList warned = told();
    QCOMPARE(warned.size(), 1);
    QVERIFY2(warned.first().startsWith("2 http://127.0.0.1:"), qPrintable(warned.first()));
}

void TestKavroBoxPages::whatABoxDoesNotKnowIsSaidAgainWhenTheFileHasChanged()
{
    const QString file = m_folder->filePath("page.html");
    QVERIFY(writeFile(file, "<script>let a;</script>"));
    begin({"--exit-after", "8", "--keys", "wait:2000 Ctrl+R wait:2000 Ctrl+R", file});
    QTRY_COMPARE_WITH_TIMEOUT(m_program->errors().count("reads no script with let"), 1, patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_program->errors().count("Try to load page"), 1, patience);
    QVERIFY(writeFile(file, "<p>\n<script>let a;</script>"));
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(m_program->errors().count("page.html:1: the box's engine reads no script with let"), 1);
    QCOMPARE(m_program->errors().count("page.html:2: the box's engine reads no script with let"), 1);
}

QTEST_GUILESS_MAIN(TestKavroBoxPages)

#include "tst_kavroboxpages.moc"
