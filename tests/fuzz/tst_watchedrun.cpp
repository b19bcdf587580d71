// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "WatchedRun.h"

#include <QtTest>

#include <csignal>
#include <cstdlib>
#include <vector>

// What the fuzzer would not notice would not be found.
class TestWatchedRun : public QObject
{
    Q_OBJECT

private slots:
    void theOutcomeTellsHowTheProcessEnded_data();
    void theOutcomeTellsHowTheProcessEnded();
    void theLatestActionsOutliveTheProcess();
};

using Body = void (*)(ActionLog *log);
Q_DECLARE_METATYPE(Body)

void TestWatchedRun::theOutcomeTellsHowTheProcessEnded_data()
{
    QTest::addColumn<Body>("body");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("longestAction");
    const auto row = [](const char *name, Body body, const char *fault, int longestAction = 60000) {
        QTest::newRow(name) << body << QString(fault) << longestAction;
    };
    row(
        "good end", [](ActionLog *) {}, "");
    row(
        "crash", [](ActionLog *) { std::raise(SIGSEGV); }, "was ended by signal 11, Segmentation fault");
    row(
        "exit", [](ActionLog *) { std::_Exit(3); }, "ended itself with status 3");
    row(
        "early exit", [](ActionLog *) { std::_Exit(0); }, "left before the end");
    row(
        "hang", [](ActionLog *) { QThread::sleep(60); }, "did not come to an end within 1 s", 1000);
    row(
        "slow, but going on",
        [](ActionLog *log) {
            for (int i = 0; i < 15; ++i) {
                log->begin("action");
                QThread::msleep(100);
            }
        },
        "", 1000);
    row(
        "growth",
        [](ActionLog *) {
            const std::vector<char> memory(500 << 20, 'x');
            QThread::sleep(60);
        },
        "took more than 300 MiB");
}

void TestWatchedRun::theOutcomeTellsHowTheProcessEnded()
{
    QFETCH(const Body, body);
    std::signal(SIGSEGV, SIG_DFL); // not QtTest's own
    QFETCH(const int, longestAction);
    QTEST(WatchedRun::run(body, {longestAction, 300 << 20}).fault, "fault");
}

void TestWatchedRun::theLatestActionsOutliveTheProcess()
{
    const WatchedRun::Outcome outcome = WatchedRun::run(
        [](ActionLog *log) {
            for (int i = 0; i < 10; ++i)
                log->begin("action " + QByteArray::number(i * i));
            log->begin(QByteArray(100000, 'x'));
            std::abort();
        },
        {1000, 300 << 20});
    QCOMPARE(outcome.actions, 11U);
    QCOMPARE(outcome.latest.size(), 8);
    QCOMPARE(outcome.latest.first(), QByteArray("3: action 9"));
    QCOMPARE(outcome.latest.at(6), QByteArray("9: action 81"));
    QVERIFY(outcome.latest.last().startsWith("10: xxxx"));
}

QTEST_APPLESS_MAIN(TestWatchedRun)

#include "tst_watchedrun.moc"
