// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/SeekProgress.h"

#include <QtTest>

#include <utility>

using Desk::SeekProgress;

// When a seek of the player core is over, after which its positions count again.
class TestSeekProgress : public QObject
{
    Q_OBJECT

private slots:
    void whatTheCoreTellsInTurnEndsASeek_data();
    void whatTheCoreTellsInTurnEndsASeek();
    void anOrderThatIsRefusedEndsTheLastSeekAlone();
    void whatIsPlayedAnewHasNoSeek();
};

// Each letter is something told: o a seek ordered, t the last order taken, T the one before, b a seek begun, r a
// restart.
void TestSeekProgress::whatTheCoreTellsInTurnEndsASeek_data()
{
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<bool>("isOver");

    const auto row = [](const char *told, bool isOver) { QTest::newRow(told) << QByteArray(told) << isOver; };
    row("", true);
    row("o", false);
    row("otb", false);
    row("otbr", true);
    row("or", false);
    row("otr", false);
    row("obr", false);
    row("otbo", false);
    row("otbor", false);
    row("otboTbr", false);
    row("otbortbr", true);
}

void TestSeekProgress::whatTheCoreTellsInTurnEndsASeek()
{
    QFETCH(QByteArray, told);
    QFETCH(bool, isOver);
    SeekProgress seek;
    unsigned number = 0;
    for (const char event : std::as_const(told)) {
        switch (event) {
        case 'o':
            number = seek.order();
            break;
        case 't':
            seek.taken(number);
            break;
        case 'T':
            seek.taken(number - 1);
            break;
        case 'b':
            seek.begun();
            break;
        case 'r':
            seek.restarted();
            break;
        }
    }
    QCOMPARE(!seek.isUnderWay(), isOver);
}

void TestSeekProgress::anOrderThatIsRefusedEndsTheLastSeekAlone()
{
    SeekProgress seek;
    const unsigned first = seek.order();
    const unsigned second = seek.order();
    seek.refused(first);
    QVERIFY(seek.isUnderWay());
    seek.refused(second);
    QVERIFY(!seek.isUnderWay());
}

void TestSeekProgress::whatIsPlayedAnewHasNoSeek()
{
    SeekProgress seek;
    seek.order();
    seek.forget();
    QVERIFY(!seek.isUnderWay());
}

QTEST_APPLESS_MAIN(TestSeekProgress)
#include "tst_seekprogress.moc"
