// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MessageLog.h"

#include <QtTest>
#include <atomic>
#include <thread>
#include <vector>

namespace {

std::atomic<int> outerMessages{0};

void countMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++outerMessages;
}

} // namespace

class TestMessageLog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void messagesAreCollectedByType();
    void messagesAreForwardedWhenAskedFor_data();
    void messagesAreForwardedWhenAskedFor();
    void theHandlerBeforeItComesBack();
    void anyThreadMayWrite();

private:
    QtMessageHandler m_outer = nullptr;
};

void TestMessageLog::init()
{
    outerMessages = 0;
    m_outer = qInstallMessageHandler(countMessage);
}

void TestMessageLog::cleanup()
{
    qInstallMessageHandler(m_outer);
    qunsetenv("KAVRO_TEST_MESSAGES");
}

void TestMessageLog::messagesAreCollectedByType()
{
    MessageLog log;
    qDebug("one");
    qWarning("Invalid Id");
    qDebug() << "two" << 2;
    qCritical("bad");
    QCOMPARE(log.debugLines(), (QStringList{"one", "two 2"}));
    QCOMPARE(log.warnings(), QStringList{"Invalid Id"});
    QCOMPARE(log.messages().size(), 4);
    QVERIFY(log.contains("bad"));
    QVERIFY(!log.contains("ba"));
    log.clear();
    QVERIFY(log.messages().isEmpty());
}

void TestMessageLog::messagesAreForwardedWhenAskedFor_data()
{
    QTest::addColumn<bool>("asked");

    QTest::newRow("asked") << true;
    QTest::newRow("not asked") << false;
}

void TestMessageLog::messagesAreForwardedWhenAskedFor()
{
    QFETCH(const bool, asked);
    if (asked)
        qputenv("KAVRO_TEST_MESSAGES", "1");
    const MessageLog log;
    qWarning("careful");
    QCOMPARE(int(outerMessages), asked ? 1 : 0);
    QCOMPARE(log.warnings(), QStringList{"careful"});
}

void TestMessageLog::theHandlerBeforeItComesBack()
{
    {
        const MessageLog log;
        qDebug("inside");
    }
    QCOMPARE(int(outerMessages), 0);
    qDebug("outside");
    QCOMPARE(int(outerMessages), 1);
}

void TestMessageLog::anyThreadMayWrite()
{
    constexpr int threads = 4;
    constexpr int lines = 500;
    const MessageLog log;
    std::vector<std::thread> writers;
    writers.reserve(threads);
    for (int i = 0; i < threads; ++i) {
        writers.emplace_back([] {
            for (int line = 0; line < lines; ++line)
                qDebug("line");
        });
    }
    for (std::thread &writer : writers)
        writer.join();
    QCOMPARE(log.debugLines().size(), threads * lines);
}

QTEST_APPLESS_MAIN(TestMessageLog)

#include "tst_messagelog.moc"
