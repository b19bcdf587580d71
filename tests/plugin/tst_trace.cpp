// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/bridge/JsApiTracer.h"
#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"
#include "tests/support/OddFile.h"

#include <QWebView>
#include <QtTest>

namespace {

const char *const levelFile = "/etc/stbjsapi_debug";
const char *const dumpFile = "/tmp/page.html";

// Puts the file there in one step, so that nobody sees it empty.
void placeLevelFile(const QByteArray &content)
{
    const QString other = QString(levelFile) + ".new";
    writeBoxFile(other, content);
    if (rename(qPrintable(other), levelFile) != 0)
        qFatal("Cannot place %s", levelFile);
}

// Notices a change of the level file after any that were there before it: the kernel tells all at once, and then it is
// the turn of those that watch.
class Watch
{
public:
    bool hasNoticed() const { return !m_changes.isEmpty(); }

private:
    QFileSystemWatcher m_watcher{QStringList(levelFile)};
    QSignalSpy m_changes{&m_watcher, &QFileSystemWatcher::fileChanged};
};

// The argument of a trace line that counts how often it was made a text.
struct Counted
{
    int *texts;
};

QString traceText(const Counted &counted)
{
    ++*counted.texts;
    return "counted";
}

} // namespace

// The technician's switch for the trace of script calls and page dumps, and what these look like.
class TestTrace : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aTraceLineHasDateTimeAndCall_data();
    void aTraceLineHasDateTimeAndCall();
    void nothingIsFormattedWhileOff();

    void theFileIsReadAtTheStart_data();
    void theFileIsReadAtTheStart();
    void anOddFileIsNoLevel_data() { addKinds(); }
    void anOddFileIsNoLevel();
    void theFileIsReadAgainWhenItChanges_data();
    void theFileIsReadAgainWhenItChanges();
    void theFileComesAndGoes();
    void aReplacedFileIsStillWatched();

    void aLoadedPageIsDumpedWhileOn();
    void aFailedPageIsDumpedToo();
    void nothingIsDumpedWhileOff_data();
    void nothingIsDumpedWhileOff();
    void aDumpThatCannotBeWrittenIsTold_data() { addKinds(); }
    void aDumpThatCannotBeWrittenIsTold();

    void aNegativeLevelOutlivesItsFile(); // the last one: the level would stay for others

private:
    static void addKinds();
    static bool isTraced(HostedPlugin &plugin, MessageLog &log);
};

void TestTrace::init()
{
    for (const char *file : {levelFile, dumpFile}) {
        QFile::remove(file);
        QDir().rmdir(file);
    }
    HostedPlugin::writeManifest(PluginManifest());
}

void TestTrace::addKinds()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QString(row.what);
}

bool TestTrace::isTraced(HostedPlugin &plugin, MessageLog &log)
{
    const int before = log.debugLines().filter("StbMedia.Pause(1)").size();
    plugin.evaluate("StbMedia.Pause(1)");
    return log.debugLines().filter("StbMedia.Pause(1)").size() > before;
}

void TestTrace::aTraceLineHasDateTimeAndCall_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "StbMedia.Pause(1)"
                           << "StbMedia.Pause(1)";
    QTest::newRow("percent signs stand as they are") << "StbMedia.PlayHttp(1, 'http://h/%2F%1?%3', '%1%2')"
                                                     << "StbMedia.PlayHttp(1, http://h/%2F%1?%3, %1%2)";
    QTest::newRow("quotes are the log's") << "StbMedia.PlayStream(1, 'a\"b')"
                                          << "StbMedia.PlayStream(1, a\\\"b)";
}

void TestTrace::aTraceLineHasDateTimeAndCall()
{
    QFETCH(QString, script);
    QFETCH(QString, text);
    writeBoxFile(levelFile, "1\n");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    const MessageLog log;
    const QDateTime before = QDateTime::currentDateTime();
    plugin.evaluate(script);

    QCOMPARE(log.debugLines().size(), 1);
    static const QRegularExpression form(
        "^\\[ \"([A-Z][a-z]{2} [A-Z][a-z]{2} \\d{1,2} \\d{4})\" \"(\\d\\d:\\d\\d:\\d\\d)\" \\] "
        "\"(.*)\"$");
    const QRegularExpressionMatch match = form.match(log.debugLines().constFirst());
    QVERIFY2(match.hasMatch(), qPrintable(log.debugLines().constFirst()));
    QCOMPARE(match.captured(3), text);
    const QDateTime time(QDate::fromString(match.captured(1), Qt::TextDate), QTime::fromString(match.captured(2)));
    QVERIFY(before.addSecs(-1) <= time && time <= QDateTime::currentDateTime());
}

void TestTrace::nothingIsFormattedWhileOff()
{
    const MessageLog log;
    int texts = 0;

    JsApiTracer::debug_level = 0;
    trace("Call(%1)", Counted{&texts});
    QCOMPARE(texts, 0);
    QCOMPARE(log.debugLines(), QStringList());

    JsApiTracer::debug_level = 1;
    trace("Call(%1)", Counted{&texts});
    QCOMPARE(texts, 1);
    QCOMPARE(log.debugLines().size(), 1);
    QVERIFY(log.debugLines().constFirst().endsWith("] \"Call(counted)\""));
}

void TestTrace::theFileIsReadAtTheStart_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("traced");

    QTest::newRow("1") << QByteArray("1") << "Set level to  1" << true;
    QTest::newRow("2 and a line end") << QByteArray("2\n") << "Set level to  2" << true;
    QTest::newRow("0") << QByteArray("0") << "Set level to  0" << false;
    QTest::newRow("the first line only") << QByteArray("3\nabc\n") << "Set level to  3" << true;
    QTest::newRow("no number") << QByteArray("abc\n") << "ERROR! Wrong debug level:  \"abc\"" << false;
    QTest::newRow("a number and more") << QByteArray("1 on\n") << "ERROR! Wrong debug level:  \"1 on\"" << false;
    QTest::newRow("not decimal") << QByteArray("0x1\n") << "ERROR! Wrong debug level:  \"0x1\"" << false;
    QTest::newRow("too large") << QByteArray("99999999999") << "ERROR! Wrong debug level:  \"99999999999\"" << false;
    QTest::newRow("empty") << QByteArray() << "ERROR! Wrong debug level:  \"\"" << false;
    QTest::newRow("an empty first line") << QByteArray("\n1\n") << "ERROR! Wrong debug level:  \"\"" << false;
}

void TestTrace::theFileIsReadAtTheStart()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, line);
    QFETCH(bool, traced);
    // The level is the process's; a browser without a file begins anew.
    HostedPlugin().start();
    writeBoxFile(levelFile, content);
    MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));

    QCOMPARE(log.debugLines().filter("level"), QStringList(line));
    QCOMPARE(isTraced(plugin, log), traced);
}

void TestTrace::anOddFileIsNoLevel()
{
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    QVERIFY(OddFile::put(levelFile, OddFile::Kind(kind)));
    MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QCOMPARE(log.debugLines().filter("level"), QStringList());
    QCOMPARE(log.warnings().filter(QString(levelFile) + " is " + what).size(), 1);
    QVERIFY(plugin.loadHtml("Portal"));
    QVERIFY(!isTraced(plugin, log));
    // A file in its place counts at once.
    QDir().rmdir(levelFile);
    placeLevelFile("1\n");
    QTRY_VERIFY(isTraced(plugin, log));
    placeLevelFile("0\n"); // the level outlives the plugin
    QTRY_VERIFY(!isTraced(plugin, log));
}

void TestTrace::theFileIsReadAgainWhenItChanges_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("traced");

    QTest::newRow("off") << QByteArray("1\n") << QByteArray("0\n") << "Set level to  0" << false;
    QTest::newRow("on") << QByteArray("0\n") << QByteArray("1\n") << "Set level to  1" << true;
    QTest::newRow("below zero") << QByteArray("1\n") << QByteArray("-1\n") << "Set level to  -1" << false;
    QTest::newRow("to no number, on") << QByteArray("1\n") << QByteArray("abc") << "ERROR! Wrong debug level:  \"abc\""
                                      << true;
    QTest::newRow("to no number, off") << QByteArray("0\n") << QByteArray("abc") << "ERROR! Wrong debug level:  \"abc\""
                                       << false;
}

void TestTrace::theFileIsReadAgainWhenItChanges()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QString, line);
    QFETCH(bool, traced);
    writeBoxFile(levelFile, first);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    MessageLog log;

    writeBoxFile(levelFile, second);
    QTRY_VERIFY(log.contains(line));
    QCOMPARE(isTraced(plugin, log), traced);
}

void TestTrace::theFileComesAndGoes()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    MessageLog log;
    QVERIFY(!isTraced(plugin, log));

    for (int i = 0; i < 2; ++i) {
        writeBoxFile(levelFile, "1\n");
        QTRY_VERIFY(isTraced(plugin, log));
        writeBoxFile(levelFile, "0\n");
        QTRY_VERIFY(!isTraced(plugin, log));
        writeBoxFile(levelFile, "2\n");
        QTRY_VERIFY(isTraced(plugin, log));
        QFile::remove(levelFile);
        QTRY_VERIFY(!isTraced(plugin, log));
    }
}

void TestTrace::aReplacedFileIsStillWatched()
{
    writeBoxFile(levelFile, "0\n");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    MessageLog log;

    for (int i = 0; i < 2; ++i) {
        placeLevelFile("1\n");
        QTRY_VERIFY(isTraced(plugin, log));
        placeLevelFile("0\n");
        QTRY_VERIFY(!isTraced(plugin, log));
    }
}

void TestTrace::aLoadedPageIsDumpedWhileOn()
{
    HttpServer server;
    server.serve("/first", "<title>First</title>");
    server.serve("/second", "<p>2</p><script>document.body.appendChild(document.createElement('hr'))</script>");
    writeBoxFile(levelFile, "1\n");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const MessageLog log;

    QVERIFY(plugin.load(server.url("/first")));
    QCOMPARE(boxFile(dumpFile), QByteArray("<html><head><title>First</title></head><body></body></html>"));
    QVERIFY2(
        log.contains("Page loaded:  true Page:  QUrl(\"" + server.url("/first").toString() + "\")  Page size[[ 20 ]]"),
        qPrintable(log.debugLines().join('\n')));

    // Overwritten, not added to; and as it is now, not as it came.
    QVERIFY(plugin.load(server.url("/second")));
    const QByteArray dump = boxFile(dumpFile);
    QVERIFY2(dump.startsWith("<html>") && dump.endsWith("<hr></body></html>") && !dump.contains("First"), dump);
}

void TestTrace::aFailedPageIsDumpedToo()
{
    HttpServer server;
    server.refuse();
    writeBoxFile(levelFile, "1\n");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    QFile::remove(dumpFile);
    const MessageLog log;

    QVERIFY(!plugin.load(server.url()));
    QVERIFY(QFile::exists(dumpFile));
    QCOMPARE(log.debugLines().filter("Page loaded:  false Page:  QUrl(\"" + server.url().toString() + "\")").size(), 1);
}

void TestTrace::nothingIsDumpedWhileOff_data()
{
    QTest::addColumn<QByteArray>("level");

    QTest::newRow("no file") << QByteArray();
    QTest::newRow("0") << QByteArray("0\n");
    QTest::newRow("below zero") << QByteArray("-1\n");
}

void TestTrace::nothingIsDumpedWhileOff()
{
    QFETCH(QByteArray, level);
    if (!level.isEmpty())
        writeBoxFile(levelFile, level);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const MessageLog log;

    QVERIFY(plugin.loadHtml("Portal"));
    QVERIFY(!QFile::exists(dumpFile));
    QCOMPARE(log.debugLines().filter("Page loaded"), QStringList());
}

void TestTrace::aDumpThatCannotBeWrittenIsTold()
{
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    writeBoxFile(levelFile, "1\n");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    QVERIFY(OddFile::put(dumpFile, OddFile::Kind(kind)));
    const MessageLog log;

    QVERIFY(plugin.loadHtml("Portal"));
    const bool isEmptied = kind == OddFile::Gigabyte;
    QCOMPARE(log.debugLines().filter("dump"), isEmptied ? QStringList() : QStringList("Cannot open file to dump html"));
    QCOMPARE(log.warnings().filter(QString(dumpFile) + " is " + what).size(), isEmptied ? 0 : 1);
    QCOMPARE(boxFile(isEmptied ? dumpFile : "").contains("Portal"), isEmptied);
}

void TestTrace::aNegativeLevelOutlivesItsFile()
{
    writeBoxFile(levelFile, "0\n");
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    MessageLog log;
    writeBoxFile(levelFile, "-5\n");
    QTRY_VERIFY(log.contains("Set level to  -5"));
    {
        const Watch watch;
        QFile::remove(levelFile);
        QTRY_VERIFY(watch.hasNoticed());
    }

    // The folder's watch sees the new file, but the file itself is not watched any more.
    placeLevelFile("1\n");
    QTRY_VERIFY(isTraced(plugin, log));
    const Watch watch;
    writeBoxFile(levelFile, "0\n");
    QTRY_VERIFY(watch.hasNoticed());
    QVERIFY(isTraced(plugin, log));
    QVERIFY(!log.contains("Set level to  0"));
}

QTEST_MAIN(TestTrace)
#include "tst_trace.moc"
