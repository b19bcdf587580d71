// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/LastLines.h"
#include "launcher/TerminalText.h"

#include <QTest>

#include <clocale>

/// What is shown on a terminal of what a box writes, and what is kept of it.
class TestTerminalText : public QObject
{
    Q_OBJECT

private slots:
    void aLineIsMadeHarmless_data();
    void aLineIsMadeHarmless();
    void aTerminalOfBytesGetsNoOthersThanAscii();
    void theLastFiftyLinesAreKept();
    void streamsDoNotMixTheirLines();
    void aLineWithoutAnEndIsCut();
};

void TestTerminalText::aLineIsMadeHarmless_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("empty") << QByteArray("") << QByteArray("");
    QTest::newRow("plain") << QByteArray("a \\ line\twith tab") << QByteArray("a \\ line\twith tab");
    QTest::newRow("letters") << QByteArray("Привет, é, 漢字, 😀") << QByteArray("Привет, é, 漢字, 😀");
    QTest::newRow("escape") << QByteArray("\x1b[31mred") << QByteArray("\\x1b[31mred");
    QTest::newRow("carriage return") << QByteArray("a\rb") << QByteArray("a\\x0db");
    QTest::newRow("NUL and DEL") << QByteArray("a\0b\x7f", 4) << QByteArray("a\\x00b\\x7f");
    QTest::newRow("CSI in UTF-8") << QByteArray("\xc2\x9b"
                                                "31m")
                                  << QByteArray("\\u009b31m");
    QTest::newRow("CSI as a byte") << QByteArray("\x9b"
                                                 "31m")
                                   << QByteArray("\xef\xbf\xbd"
                                                 "31m");
    QTest::newRow("an overlong escape") << QByteArray("\xc0\x9b[m") << QByteArray("\xef\xbf\xbd\xef\xbf\xbd[m");
    QTest::newRow("other direction") << QByteArray("\xe2\x80\xaetxt") << QByteArray("\\u202etxt");
    QTest::newRow("line separator") << QByteArray("a\xe2\x80\xa8"
                                                  "b")
                                    << QByteArray("a\\u2028b");
    QTest::newRow("our own prefix") << QByteArray("kavro-box: no") << QByteArray("kavro-box\\: no");
    QTest::newRow("after blanks") << QByteArray("  \tkavro-box: no") << QByteArray("  \tkavro-box\\: no");
    QTest::newRow("after what fills a row")
        << QByteArray(80, ' ') + "kavro-box: no" << QByteArray(80, ' ') + "kavro-box\\: no";
    QTest::newRow("in capitals") << QByteArray("KAVRO-box: no") << QByteArray("KAVRO-box\\: no");
    QTest::newRow("twice") << QByteArray("kavro-box:kavro-box:") << QByteArray("kavro-box\\:kavro-box\\:");
    QTest::newRow("blank before the colon") << QByteArray("kavro-box : no") << QByteArray("kavro-box \\: no");
    QTest::newRow("invisible characters between")
        << QByteArray("kav\xe2\x80\x8bro-box: no") << QByteArray("kav\\u200bro-box: no");
    QTest::newRow("invisible accents between")
        << QByteArray("kav\xcd\x8fro-box: no") << QByteArray("kav\xcd\x8fro-box\\: no");
    QTest::newRow("other names") << QByteArray("in-box: kavro box: kavro-boxes:")
                                 << QByteArray("in-box: kavro box: kavro-boxes:");
}

void TestTerminalText::aLineIsMadeHarmless()
{
    QFETCH(QByteArray, line);
    QVERIFY(std::setlocale(LC_CTYPE, "C.UTF-8"));
    QTEST(TerminalText::harmless(line), "shown");
}

void TestTerminalText::aTerminalOfBytesGetsNoOthersThanAscii()
{
    QVERIFY(std::setlocale(LC_CTYPE, "C"));
    // Its second byte is a control character for such a terminal.
    QCOMPARE(TerminalText::harmless("\xd0\x9b kavro-box: no"), QByteArray("\\xd0\\x9b kavro-box\\: no"));
}

void TestTerminalText::theLastFiftyLinesAreKept()
{
    QVERIFY(std::setlocale(LC_CTYPE, "C.UTF-8"));
    QByteArray text;
    QList<QByteArray> expected;
    for (int i = 0; i < 200; ++i) {
        const QByteArray line = "line " + QByteArray::number(i);
        text += line + '\n';
        if (i >= 150)
            expected += line;
    }
    for (const int size : {1, 7, 100, 100000}) {
        LastLines lines;
        lines.add(0, "begun "); // the first of the lines
        for (int begin = 0; begin < text.size(); begin += size)
            lines.add(0, text.mid(begin, size));
        QCOMPARE(lines.lines(), expected);
    }
}

void TestTerminalText::streamsDoNotMixTheirLines()
{
    LastLines lines;
    lines.add(0, "of one ");
    lines.add(1, "of the other\nnot complete");
    lines.add(0, "stream\nkavro-box: forged\n");
    lines.addOwn("kavro-box: our own");
    QCOMPARE(lines.lines(),
             QList<QByteArray>(
                 {"of the other", "of one stream", "kavro-box\\: forged", "kavro-box: our own", "not complete"}));
}

void TestTerminalText::aLineWithoutAnEndIsCut()
{
    LastLines lines;
    for (int i = 0; i < 100; ++i)
        lines.add(0, QByteArray(1000, 'x'));
    lines.add(0, "\n");
    QCOMPARE(lines.lines(), QList<QByteArray>({QByteArray(4096, 'x')}));
}

QTEST_GUILESS_MAIN(TestTerminalText)

#include "tst_terminaltext.moc"
