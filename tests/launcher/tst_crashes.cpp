// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "InsideProcess.h"

#include "launcher/CrashFile.h"

#include "tests/support/FileSizeLimit.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

namespace {

// Keys would come long before the page's last word.
const char tellStart[] = "tell('start'); document.onkeydown = function (event) { tell(event.keyCode); };"
                         "onload = function () { setTimeout(function () { tell('later'); }, 1000); };";

} // namespace

/// What is said and kept of a box that crashes, and how it goes on.
class TestCrashes : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init() { setUp(); }

    void aCrashIsSaidAndKept_data();
    void aCrashIsSaidAndKept();
    void aCrashFileFollowsNoLinks();
    void aCrashFileThatDoesNotFitIsNotKept();
    void theOldestCrashFilesGo();
    void keptRunningItStartsAgainAndPressesNoKeys();
    void keptRunningItStillEndsAtItsTime();
    void keptRunningItWaitsLongerAfterMoreCrashes();
    void aSignalEndsAnEndlessScriptToo_data();
    void aSignalEndsAnEndlessScriptToo();
    void anEndlessScriptOutlivesNoTime();
    void aStallIsSaidWhateverItsCause();

private:
    QByteArray address() const { return m_server->url().toString().toUtf8(); }
    /// Kills the process inside, which must be there.
    bool crash(int signalNumber = SIGKILL);
    /// Whether a signal to the process outside is still to be taken.
    bool isWaiting(int signalNumber) const;
    QStringList crashFiles() const { return QDir(m_box + "/tmp").entryList({"crash-*.txt"}); }
};

bool TestCrashes::crash(int signalNumber)
{
    const pid_t process = insideProcess(address());
    return process > 0 && kill(process, signalNumber) == 0;
}

bool TestCrashes::isWaiting(int signalNumber) const
{
    static const QRegularExpression form("ShdPnd:\\s*([0-9a-f]+)");
    const QByteArray status = contentOf(QString("/proc/%1/status").arg(m_program->processId()));
    const quint64 signalSet = form.match(status).captured(1).toULongLong(nullptr, 16);
    return signalSet >> (signalNumber - 1) & 1;
}

void TestCrashes::aCrashIsSaidAndKept_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("ABRT") << SIGABRT << QByteArray("the box crashed (signal 6, Aborted)");
    QTest::newRow("ILL") << SIGILL << QByteArray("the box crashed (signal 4, Illegal instruction)");
    QTest::newRow("KILL") << SIGKILL << QByteArray("the box was killed (signal 9, Killed; ");
#ifndef __SANITIZE_ADDRESS__ // which has its own end for these
    QTest::newRow("SEGV") << SIGSEGV << QByteArray("the box crashed (signal 11, Segmentation fault)");
    QTest::newRow("BUS") << SIGBUS << QByteArray("the box crashed (signal 7, Bus error)");
#endif
}

void TestCrashes::aCrashIsSaidAndKept()
{
    QFETCH(int, signalNumber);
    QFETCH(QByteArray, said);
    m_server->serve("/", page("onload = function () { location = '/second?a=b'; };"));
    m_server->serve("/second?a=b",
                    page("for (var i = 1; i <= 60; ++i) StbDisplay.Debug(' \\x1b ' + i); tell('second');"));
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("second"), patience);
    QVERIFY(crash(signalNumber));
    QCOMPARE(m_program->finish(), 128 + signalNumber);

    const QByteArray page = " on " + m_server->url("/second?a=b").toString().toUtf8();
    const QStringList files = crashFiles();
    QCOMPARE(files.size(), 1);
    const QByteArray line = m_program->errors().trimmed().split('\n').last();
    QVERIFY2(line.startsWith("kavro-box: " + said), line.constData());
    QVERIFY2(line.contains(page + "; "), line.constData());
    QVERIFY2(line.endsWith(" is in " + m_box.toUtf8() + "/tmp/" + files.first().toUtf8()), line.constData());
    const QList<QByteArray> lines = contentOf(m_box + "/tmp/" + files.first()).trimmed().split('\n');
    QVERIFY2(lines.first().startsWith(said), lines.first().constData());
    QVERIFY2(lines.first().endsWith(page), lines.first().constData());
    QCOMPARE(lines.size(), 3 + 50);
    QVERIFY(lines.contains("debug \\x1b 60"));
    QVERIFY(lines.contains("debug \\x1b 20"));
    QVERIFY(!lines.contains("debug \\x1b 10"));
}

void TestCrashes::aCrashFileFollowsNoLinks()
{
    QVERIFY(QDir(m_folder->path()).mkpath("box"));
    QVERIFY(QDir(m_folder->path()).mkpath("elsewhere"));
    QVERIFY(QFile::link(m_folder->filePath("elsewhere"), m_box + "/tmp"));
    QString error;
    QCOMPARE(CrashFile::write(m_box, "text", &error), QString());
    QVERIFY(!error.isEmpty());
    QCOMPARE(QDir(m_folder->filePath("elsewhere")).entryList(QDir::Files), QStringList());
}

void TestCrashes::aCrashFileThatDoesNotFitIsNotKept()
{
    QVERIFY(QDir(m_box).mkpath("tmp"));
    QString error;
    {
        const FileSizeLimit limit(100);
        QCOMPARE(CrashFile::write(m_box, QByteArray(1000, 'x'), &error), QString());
    }
    QCOMPARE(error, QString("File too large"));
    QCOMPARE(crashFiles(), QStringList());
}

void TestCrashes::theOldestCrashFilesGo()
{
    QVERIFY(QDir(m_box).mkpath("tmp"));
    for (int i = 10; i < 40; ++i)
        QVERIFY(writeFile(m_box + QString("/tmp/crash-202001%1-000000-000.txt").arg(i), "old"));
    QVERIFY(writeFile(m_box + "/tmp/crash-mine.txt", "somebody else's"));
    QString error;
    const QString file = CrashFile::write(m_box, "text", &error);
    QCOMPARE(contentOf(file), QByteArray("text"));
    const QStringList files = crashFiles();
    QCOMPARE(files.size(), 20 + 1);
    QCOMPARE(files.first(), QString("crash-20200121-000000-000.txt"));
    QVERIFY(files.contains("crash-mine.txt"));
}

void TestCrashes::keptRunningItStartsAgainAndPressesNoKeys()
{
    m_server->serve("/", page(tellStart));
    begin({"--keep-running", "--keys", "Down", m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList({"start", "40", "later"}), patience);
    QVERIFY(crash());
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList({"start", "40", "later", "start", "later"}), patience);
    m_program->terminate();
    QCOMPARE(m_program->finish(), 0);
    QVERIFY(m_program->errors().contains("\nkavro-box: it is started again\n"));
    QVERIFY(QFile::exists(m_picture));
}

void TestCrashes::keptRunningItStillEndsAtItsTime()
{
    m_server->serve("/", page("tell('start'); setTimeout(function () { tell('late'); }, 5000);"));
    QElapsedTimer clock;
    begin({"--keep-running", "--exit-after", "8", m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("start"), patience);
    clock.start();
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList({"start", "late"}), patience);
    QVERIFY(crash());
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(told(), QStringList({"start", "late", "start"}));
    QVERIFY2(clock.elapsed() < 5000 + 8000, "the time has begun again");
}

void TestCrashes::keptRunningItWaitsLongerAfterMoreCrashes()
{
    m_server->serve("/", page("tell('start');"));
    begin({"--keep-running", m_server->url().toString()});
    QStringList starts;
    for (int i = 0; i < 4; ++i) {
        starts += "start";
        QTRY_COMPARE_WITH_TIMEOUT(told(), starts, patience);
        QVERIFY(crash());
    }
    QTRY_VERIFY(m_program->errors().contains(
        "\nkavro-box: it has crashed 4 times within seconds of its start, and is started again in 5 s\n"));
    starts += "start";
    QTRY_COMPARE_WITH_TIMEOUT(told(), starts, patience);
    QVERIFY(crash());
    QTRY_VERIFY(m_program->errors().contains(
        "\nkavro-box: it has crashed 5 times within seconds of its start, and is started again in 10 s\n"));
    // It can be ended meanwhile.
    m_program->terminate();
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(told(), starts);
    QCOMPARE(crashFiles().size(), 5);
}

void TestCrashes::aSignalEndsAnEndlessScriptToo_data()
{
    QTest::addColumn<bool>("hasPicture");
    QTest::addColumn<int>("times");
    QTest::addColumn<int>("status");
    QTest::newRow("once") << false << 1 << 0;
    QTest::newRow("twice") << false << 2 << 0;
    QTest::newRow("with a picture that there is none of") << true << 2 << 1;
}

void TestCrashes::aSignalEndsAnEndlessScriptToo()
{
    QFETCH(bool, hasPicture);
    QFETCH(int, times);
    m_server->serve("/", page("setTimeout(function () { tell('endless'); for (;;); }, 100);"));
    m_usual = QStringList{"--headless", "--box", m_box};
    if (hasPicture)
        m_usual << "--screenshot" << m_picture;
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("endless"), patience);
    for (int i = 0; i < times; ++i) {
        kill(pid_t(m_program->processId()), SIGTERM);
        QTRY_VERIFY(!isWaiting(SIGTERM)); // two at once would be one
    }
    QTEST(m_program->finish(), "status");
    QVERIFY(m_program->errors().endsWith("kavro-box: the box did not end by itself, so it was ended as it was\n"));
    QCOMPARE(crashFiles(), QStringList());
}

void TestCrashes::anEndlessScriptOutlivesNoTime()
{
    m_server->serve("/", page("tell('endless'); for (;;);"));
    QCOMPARE(run({"--exit-after", "8", m_server->url().toString()}), 1); // without its picture
    QCOMPARE(told(), QStringList("endless"));
    QVERIFY(m_program->errors().endsWith(
        "\nkavro-box: what the page has begun does not end, so the desk box leaves without waiting for it\n"));
}

void TestCrashes::aStallIsSaidWhateverItsCause()
{
    const QByteArray stall =
        "\nkavro-box: nothing has moved for 10 s: a script, the layout or a picture of the page, or a "
        "file, takes so long; keys and events wait\n";
    m_server->serve("/", page("setTimeout(function () { for (;;); }, 100);"));
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(m_program->errors().count(stall), 1, patience);
    m_program->terminate();
    QCOMPARE(m_program->finish(), 1);
    QCOMPARE(m_program->errors().count(stall), 1);
    QVERIFY(!m_program->errors().contains("the page's script"));
}

QTEST_GUILESS_MAIN(TestCrashes)

#include "tst_crashes.moc"
