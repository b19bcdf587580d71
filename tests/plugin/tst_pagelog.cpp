// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "StreamCapture.h"
#include "tests/support/BoxFile.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OddFile.h"

#include <QRegularExpression>
#include <QtTest>

#include <memory>

namespace {

const char *const logFile = "/tmp/jsbrowser.log";
const qint64 sizeLimit = 1048576;

// The times that begin the lines, and the lines without them.
struct Log
{
    QList<QTime> times;
    QByteArrayList texts;
};

Log readLog()
{
    Log log;
    const QByteArrayList lines = boxFile(logFile).split('\n');
    for (const QByteArray &line : lines) {
        log.times += QTime::fromString(QString::fromLatin1(line.left(9)), "hh:mm:ss ");
        log.texts += line.mid(9);
    }
    return log;
}

} // namespace

// The log that pages write, and their lines on standard output.
class TestPageLog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void linesHaveTheirTime();
    void textsAreWrittenAsUtf8_data();
    void textsAreWrittenAsUtf8();
    void eachLineIsThereAtOnce();
    void theLogIsEmptiedWhenItIsTooLarge_data();
    void theLogIsEmptiedWhenItIsTooLarge();
    void aLineGoesToTheEndOfTheLogAfterItWasEmptied();
    void theLogIsEmptiedAtTheStart();
    void aPageDoesNotEmptyTheLog();
    void theDeprecatedObjectHasAHandleOfItsOwn();
    void aFullDiskIsNotThePagesConcern();
    void onADiskThatGetsRoomAgainWritingGoesOn();
    void anOddFileIsNoLog_data();
    void anOddFileIsNoLog();
    void debugGoesToStandardOutput_data();
    void debugGoesToStandardOutput();

private:
    bool start(); ///< anew, and so with an empty log
    QString result(const QString &script) { return m_session->run(script).result; }

    std::unique_ptr<ScriptSession> m_session;
};

bool TestPageLog::start()
{
    m_session.reset();
    m_session = std::make_unique<ScriptSession>();
    return m_session->start();
}

void TestPageLog::init()
{
    if (!m_session)
        QVERIFY(start());
}

void TestPageLog::cleanup()
{
    if (QFileInfo(logFile).isFile() && !QFileInfo(logFile).isSymLink())
        return;
    m_session.reset();
    QFile::remove(logFile);
    QDir().rmdir(logFile);
}

void TestPageLog::linesHaveTheirTime()
{
    QVERIFY(start());
    // Whole seconds, as in the log. At midnight the test waits for the new day.
    QTRY_VERIFY(QTime::currentTime() <= QTime(23, 59, 58));
    const QTime before = QTime::currentTime().addMSecs(-QTime::currentTime().msec());
    QCOMPARE(result("StbDisplay.Log('first')"), QString("0"));
    QCOMPARE(result("StbDisplay.Log('second')"), QString("0"));
    const QTime after = QTime::currentTime();
    const Log log = readLog();
    QCOMPARE(log.texts, QByteArrayList({"first", "second", ""}));
    for (int i = 0; i < 2; ++i)
        QVERIFY2(before <= log.times[i] && log.times[i] <= after, qPrintable(log.times[i].toString()));
    static const QRegularExpression bothLines("^\\d\\d:\\d\\d:\\d\\d first\n\\d\\d:\\d\\d:\\d\\d second\n$");
    QVERIFY(bothLines.match(boxFile(logFile)).hasMatch());
}

void TestPageLog::textsAreWrittenAsUtf8_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << "''" << QByteArray();
    QTest::newRow("non-Latin") << "'\u043f\u20ac\u4e2d'" << QByteArray("\u043f\u20ac\u4e2d");
    QTest::newRow("beyond 16 bits") << "'\\ud83d\\ude00'" << QByteArray("\U0001f600");
    QTest::newRow("quotes and percent signs") << "'\"%1\"'" << QByteArray("\"%1\"");
    QTest::newRow("lines") << "'a\\r\\nb\\n'" << QByteArray("a\r\nb\n");
    QTest::newRow("NUL") << "'a\\0b'" << QByteArray("a\0b", 3);
    QTest::newRow("number") << "12" << QByteArray("12");
    QTest::newRow("a million letters") << "new Array(1000001).join('x')" << QByteArray(1000000, 'x');
}

void TestPageLog::textsAreWrittenAsUtf8()
{
    QFETCH(const QString, script);
    QFETCH(const QByteArray, text);
    result("StbDisplay.Log('before')");
    QCOMPARE(result("StbDisplay.Log(" + script + ")"), QString("0"));
    QCOMPARE(boxFile(logFile).right(7 + 9 + text.size() + 1).remove(7, 9), QByteArray("before\n" + text + '\n'));
}

void TestPageLog::eachLineIsThereAtOnce()
{
    QVERIFY(start());
    result("StbDisplay.Log('1234567890')");
    QCOMPARE(QFileInfo(logFile).size(), qint64(20));
    result("StbDisplay.Log('1')");
    QCOMPARE(QFileInfo(logFile).size(), qint64(20 + 11));
}

void TestPageLog::theLogIsEmptiedWhenItIsTooLarge_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("emptied");
    QTest::newRow("one byte less") << sizeLimit - 1 << false;
    QTest::newRow("exactly the limit") << sizeLimit << false;
    QTest::newRow("one byte more") << sizeLimit + 1 << true;
    QTest::newRow("much more") << 3 * sizeLimit << true;
}

void TestPageLog::theLogIsEmptiedWhenItIsTooLarge()
{
    QVERIFY(start());
    QFETCH(const qint64, size);
    QFETCH(const bool, emptied);
    // Nine bytes of time and a line feed are added.
    result(QString("StbDisplay.Log(new Array(%1 + 1).join('x'))").arg(size - 10));
    QCOMPARE(QFileInfo(logFile).size(), size);
    result("StbDisplay.Log('y')");
    QCOMPARE(QFileInfo(logFile).size(), emptied ? qint64(11) : size + 11);
    QCOMPARE(readLog().texts.first().left(1), QByteArray(emptied ? "y" : "x"));
}

void TestPageLog::aLineGoesToTheEndOfTheLogAfterItWasEmptied()
{
    QVERIFY(start());
    result(QString("StbDisplay.Log(new Array(%1).join('x'))").arg(sizeLimit + 1));
    result("StbDisplay.Log('a'); StbDisplay.Log('b'); StbDisplay.Log('c')");
    QCOMPARE(readLog().texts, QByteArrayList({"a", "b", "c", ""}));
}

void TestPageLog::theLogIsEmptiedAtTheStart()
{
    QVERIFY(start());
    result("StbDisplay.Log('of the first run')");
    QVERIFY(start());
    QCOMPARE(boxFile(logFile), QByteArray());
    result("StbDisplay.Log('of the second run')");
    QCOMPARE(readLog().texts, QByteArrayList({"of the second run", ""}));
}

void TestPageLog::aPageDoesNotEmptyTheLog()
{
    QVERIFY(start());
    result("StbDisplay.Log('one page')");
    QVERIFY(m_session->plugin().loadHtml("<title>another</title>"));
    result("StbDisplay.Log('another page')");
    QCOMPARE(readLog().texts, QByteArrayList({"one page", "another page", ""}));
}

void TestPageLog::theDeprecatedObjectHasAHandleOfItsOwn()
{
    QVERIFY(start());
    // Each handle has its own position, so the second one writes over the first one's lines.
    result("StbDisplay.Log('a long line of the newer object')");
    result("stb_display.log('older')");
    const QByteArray both = boxFile(logFile);
    QCOMPARE(both.mid(9, 6), QByteArray("older\n"));
    QVERIFY(both.endsWith(" of the newer object\n"));
    QCOMPARE(QFileInfo(logFile).size(), qint64(9 + 31 + 1));

    // The size that counts is the file's, whoever has written it.
    result(QString("stb_display.log(new Array(%1).join('x'))").arg(sizeLimit + 1));
    result("StbDisplay.Log('new')");
    QCOMPARE(readLog().texts, QByteArrayList({"new", ""}));
}

void TestPageLog::aFullDiskIsNotThePagesConcern()
{
    QVERIFY(start());
    const FileSizeLimit full(0);
    QCOMPARE(result("var sum = 0; for (var i = 0; i < 1000; ++i) sum += StbDisplay.Log('a line'); sum"), QString("0"));
    QCOMPARE(result("StbDisplay.Log(new Array(2000000).join('x'))"), QString("0"));
}

void TestPageLog::onADiskThatGetsRoomAgainWritingGoesOn()
{
    QVERIFY(start());
    result("StbDisplay.Log('before')");
    {
        const FileSizeLimit full(16);
        QCOMPARE(result("StbDisplay.Log('lost')"), QString("0"));
        QCOMPARE(boxFile(logFile).mid(9), QByteArray("before\n"));
    }
    QCOMPARE(result("StbDisplay.Log('after')"), QString("0"));
    QCOMPARE(readLog().texts, QByteArrayList({"before", "after", ""}));
}

void TestPageLog::anOddFileIsNoLog_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QString(row.what);
}

void TestPageLog::anOddFileIsNoLog()
{
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    m_session.reset();
    QVERIFY(OddFile::put(logFile, OddFile::Kind(kind)));
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->plugin().start());
    const bool isEmptied = kind == OddFile::Gigabyte; // as any log is at the start
    QCOMPARE(m_session->log().warnings().filter(QString(logFile) + " is " + what).size(), isEmptied ? 0 : 1);
    QVERIFY(m_session->plugin().loadHtml("<title>Empty</title>"));
    QCOMPARE(result("StbDisplay.Log('a line')"), QString("0"));
    QCOMPARE(result("stb_display.log('a line')"), QString("0"));
    QCOMPARE(isEmptied ? readLog().texts : QByteArrayList(),
             isEmptied ? QByteArrayList({"a line", ""}) : QByteArrayList());
}

void TestPageLog::debugGoesToStandardOutput_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("text") << "'x'" << QByteArray("debugx\n");
    QTest::newRow("empty") << "''" << QByteArray("debug\n");
    QTest::newRow("blank") << "' x'" << QByteArray("debug x\n");
    QTest::newRow("non-Latin") << "'\u043f\u20ac'" << QByteArray("debug\u043f\u20ac\n");
    QTest::newRow("quotes and percent signs") << "'\"%1%s\"'" << QByteArray("debug\"%1%s\"\n");
    QTest::newRow("NUL") << "'a\\0b'" << QByteArray("debuga\0b\n", 9);
}

void TestPageLog::debugGoesToStandardOutput()
{
    QFETCH(const QString, script);
    const QByteArray logBefore = boxFile(logFile);
    const StreamCapture output(std::cout);
    QCOMPARE(result("StbDisplay.Debug(" + script + ")"), QString("0"));
    QTEST(output.text(), "line");
    QCOMPARE(boxFile(logFile), logBefore);
}

QTEST_MAIN(TestPageLog)

#include "tst_pagelog.moc"
