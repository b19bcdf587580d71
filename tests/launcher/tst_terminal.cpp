// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"

#include <QSocketNotifier>
#include <QTest>

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

// The desk box with both outputs on one descriptor of the test's.
class ProgramOn : public Program
{
public:
    ProgramOn(const QString &program, int descriptor)
        : Program(program)
        , m_descriptor(descriptor)
    {
        setProcessChannelMode(ForwardedChannels);
    }

protected:
    void setupChildProcess() override
    {
        dup2(m_descriptor, STDOUT_FILENO);
        dup2(m_descriptor, STDERR_FILENO);
    }

private:
    const int m_descriptor;
};

// Of a page, by all the ways that lead to the user's terminal.
const char forgeries[] = "StbDisplay.Debug('\\x1b]0;title\\x07 \\x9b31m red');"
                         "StbDisplay.Debug('\\nkavro-box: forged by a line');"
                         "StbDisplay.Debug('\\rkavro-box: forged by a return');"
                         "console.log('of the console\\nkavro-box: forged there');"
                         "throw new Error('\\x1b[2J an error'); //# sourceURL=\\x1b[0m";

} // namespace

/// What the user finds on standard output and error, and outputs that nobody reads.
class TestTerminal : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init();

    void aPageCannotCommandTheTerminalNorForgeOurLines();
    void aLineWithoutAnEndIsNotKeptFromTheTerminal();
    void inAFileItIsAsThePageWroteIt();
    void linesComeInTheOrderInWhichTheyWereWritten();
    void itEndsAlthoughNobodyReadsIt_data();
    void itEndsAlthoughNobodyReadsIt();
    void whatIsReadLateIsNotLost();
    void whatNobodyHasReadIsSaidToBeLost();

private:
    /// Runs the desk box with both outputs on a terminal and a page that leaves by itself, until this is shown at the
    /// end.
    void runOnTerminal(const QByteArray &script, const QByteArray &end, QByteArray *lines);
    /// Starts the desk box with both outputs in a pipe, of which the reading end is m_end.
    void beginInPipe(const QStringList &arguments);

    bool isPipeFull() const;

    int m_end = -1;
    int m_boxEnd = -1; // of the pipe
};

void TestTerminal::init()
{
    setUp();
    for (int *end : {&m_end, &m_boxEnd}) {
        if (*end >= 0)
            close(*end);
        *end = -1;
    }
}

void TestTerminal::beginInPipe(const QStringList &arguments)
{
    int ends[2];
    QCOMPARE(pipe2(ends, O_CLOEXEC), 0);
    m_end = ends[0];
    m_boxEnd = ends[1];
    m_program.reset(new ProgramOn("bin/kavro-box", m_boxEnd));
    begin(arguments);
    QVERIFY(m_program->waitForStarted());
}

bool TestTerminal::isPipeFull() const
{
    pollfd writable = {m_boxEnd, POLLOUT, 0};
    return poll(&writable, 1, 0) == 0;
}

void TestTerminal::runOnTerminal(const QByteArray &script, const QByteArray &end, QByteArray *lines)
{
    m_server->serve("/", page("leave(500);" + script));
    m_end = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    QVERIFY(m_end >= 0 && grantpt(m_end) == 0 && unlockpt(m_end) == 0);
    const int terminal = open(ptsname(m_end), O_RDWR | O_NOCTTY | O_CLOEXEC);
    QVERIFY(terminal >= 0);
    QSocketNotifier notifier(m_end, QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, this, [this, lines] {
        char bytes[4096];
        for (ssize_t count = 0; (count = read(m_end, bytes, sizeof bytes)) > 0;)
            lines->append(bytes, int(count));
    });
    m_program.reset(new ProgramOn("bin/kavro-box", terminal));
    m_program->setVariable("LC_ALL", "C.UTF-8");
    QCOMPARE(run({m_server->url().toString()}), 0);
    QTRY_VERIFY(lines->contains(end));
    close(terminal);
    lines->replace("\r\n", "\n");
}

void TestTerminal::aPageCannotCommandTheTerminalNorForgeOurLines()
{
    QByteArray lines;
    runOnTerminal(forgeries, "an error", &lines);
    for (const char byte : qAsConst(lines))
        QVERIFY2(uchar(byte) >= ' ' || byte == '\n' || byte == '\t', lines.toPercentEncoding(" :\n").constData());
    QVERIFY2(lines.contains("debug\\x1b]0;title\\x07 \\u009b31m red\n"), lines.constData());
    QVERIFY2(lines.contains("\nkavro-box\\: forged by a line\n"), lines.constData());
    QVERIFY2(lines.contains("debug\\x0dkavro-box\\: forged by a return\n"), lines.constData());
    QVERIFY2(lines.contains("\nkavro-box: console: of the console kavro-box\\: forged there ("), lines.constData());
    QVERIFY2(lines.contains("\nkavro-box: console error: "), lines.constData());
    QVERIFY2(!lines.contains("kavro-box: forged"), lines.constData());
}

void TestTerminal::aLineWithoutAnEndIsNotKeptFromTheTerminal()
{
    const int longest = 1 << 16;
    QByteArray lines;
    runOnTerminal("StbDisplay.Debug(new Array(100001).join('x') + 'end');", "xend\r\n", &lines);
    QVERIFY(lines.count('x') >= 100000);
    const QList<QByteArray> all = lines.split('\n');
    for (const QByteArray &line : all)
        QVERIFY2(line.size() <= longest, QByteArray::number(line.size()));
}

void TestTerminal::inAFileItIsAsThePageWroteIt()
{
    m_server->serve("/", page(QByteArray("leave(500);") + forgeries));
    QCOMPARE(run({m_server->url().toString()}), 0);
    QCOMPARE(m_program->output(),
             QByteArray("debug\x1b]0;title\x07 \xc2\x9b"
                        "31m red\n"
                        "debug\nkavro-box: forged by a line\n"
                        "debug\rkavro-box: forged by a return\n"));
    QVERIFY(m_program->errors().contains("\nkavro-box: console: of the console kavro-box: forged there ("));
}

void TestTerminal::linesComeInTheOrderInWhichTheyWereWritten()
{
    m_server->serve("/",
                    page("for (var i = 0; i < 1000; ++i) { StbDisplay.Debug(' first ' + i);"
                         "console.log('second ' + i); } leave(0);"));
    m_usual << "--engine"
            << "pc";
    m_program->setProcessChannelMode(QProcess::MergedChannels);
    QCOMPARE(run({m_server->url().toString()}), 0);
    QStringList order;
    const QList<QByteArray> lines = m_program->output().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("debug first "))
            order += QString::fromUtf8(line.mid(6));
        else if (line.startsWith("kavro-box: console: second "))
            order += QString::fromUtf8(line.mid(20)).section(' ', 0, 1);
    }
    QStringList expected;
    for (int i = 0; i < 1000; ++i)
        expected << QString("first %1").arg(i) << QString("second %1").arg(i);
    QCOMPARE(order, expected);
}

void TestTerminal::itEndsAlthoughNobodyReadsIt_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("--exit-after") << QStringList{"--exit-after", "4"} << 0;
    QTest::newRow("F1") << QStringList{"--keys", "wait:8000 F1"} << 0;
    QTest::newRow("a signal") << QStringList() << SIGTERM;
}

void TestTerminal::itEndsAlthoughNobodyReadsIt()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, signalNumber);
    m_server->serve(
        "/",
        page("onload = function () { tell('loaded'); setInterval(function () { for (var i = 0; i < 2000; ++i) {"
             "StbDisplay.Debug('a line that nobody is ever going to read, and one of many');"
             "console.log('another'); } }, 10); };"));
    beginInPipe(arguments + QStringList(m_server->url().toString()));
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("loaded"), patience);
    if (signalNumber != 0) {
        QTest::qWait(2000); // until it has nowhere to write to any more
        kill(pid_t(m_program->processId()), signalNumber);
    }
    QCOMPARE(m_program->finish(), 0);
}

void TestTerminal::whatIsReadLateIsNotLost()
{
    const int count = 100000;
    m_server->serve("/",
                    page(QString("onload = function () { tell('loaded'); for (var i = 0; i < %1; ++i)"
                                 "StbDisplay.Debug(' ' + i); leave(0); };")
                             .arg(count)
                             .toUtf8()));
    beginInPipe({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("loaded"), patience);
    QTRY_VERIFY_WITH_TIMEOUT(isPipeFull(), patience);
    close(m_boxEnd);
    m_boxEnd = -1;
    fcntl(m_end, F_SETFL, O_NONBLOCK);
    QByteArray all;
    bool isOver = false;
    QSocketNotifier notifier(m_end, QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, this, [&] {
        char bytes[65536];
        const ssize_t size = read(m_end, bytes, sizeof bytes);
        all.append(bytes, int(qMax(size, ssize_t(0))));
        isOver = size == 0;
        notifier.setEnabled(!isOver);
    });
    QCOMPARE(m_program->finish(), 0);
    QTRY_VERIFY(isOver);
    int next = 0;
    const QList<QByteArray> lines = all.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("debug "))
            QCOMPARE(line.mid(6).toInt(), next++);
    }
    QCOMPARE(next, count);
}

void TestTerminal::whatNobodyHasReadIsSaidToBeLost()
{
    m_server->serve("/",
                    page("onload = function () { tell('loaded'); for (var i = 0; i < 400000; ++i)"
                         "StbDisplay.Debug('a line that nobody reads in time'); tell('written');"
                         "setTimeout(function () { StbDisplay.Debug(' the last'); leave(0); }, 3000); };"));
    beginInPipe({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList({"loaded", "written"}), patience);
    fcntl(m_end, F_SETFL, O_NONBLOCK);
    QByteArray all;
    QSocketNotifier notifier(m_end, QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, this, [&] {
        char bytes[65536];
        const ssize_t size = read(m_end, bytes, sizeof bytes);
        all.append(bytes, int(qMax(size, ssize_t(0))));
        notifier.setEnabled(size != 0);
    });
    QCOMPARE(m_program->finish(), 0);
    QTRY_VERIFY(all.contains("debug the last\n"));
    QVERIFY(all.contains(" bytes that the box wrote are lost, because nobody has read its output for 2 s\n"));
}

QTEST_GUILESS_MAIN(TestTerminal)

#include "tst_terminal.moc"
