// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HttpServer.h"

#include <QSemaphore>
#include <QtTest>
#include <array>
#include <memory>

namespace {

constexpr int threads = 4;
constexpr std::array<int, 12> codes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 14, 15};

// The argument tells which thread's which event it is.
RecordingPlatform::Event numberedEvent(int thread, int index, int eventsPerThread)
{
    return {1, codes[index % codes.size()], thread * eventsPerThread + index};
}

} // namespace

// Events by the thousand from several threads of the platform at once.
class TestEventBurst : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void noEventIsLostMergedOrReordered();
    void noEventIsLostWhileThePageChanges();

private:
    std::unique_ptr<ScriptSession> m_session;
};

void TestEventBurst::init()
{
    RecordingPlatform::reset();
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    m_session->run("StbMedia.CreatePlayer()");
}

void TestEventBurst::cleanup()
{
    RecordingPlatform::waitUntilFired();
    m_session.reset();
    RecordingPlatform::forgetHandlers();
}

void TestEventBurst::noEventIsLostMergedOrReordered()
{
    constexpr int eventsPerThread = 25000;
    m_session->plugin().evaluate(QString("var codes = [1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 14, 15];"
                                         "var next = [0, 0, 0, 0], changes = 0, last = -1, count = 0, faults = [];"
                                         "StbMedia.SetEventCallback(function (argument, code) {"
                                         "    var thread = Math.floor(argument / %1), index = argument % %1;"
                                         "    var event = StbMedia.GetEventDescription();"
                                         "    if (index !== next[thread]++ || code !== codes[index % 12]"
                                         "            || event.id !== argument || event.type !== code)"
                                         "        faults.push([argument, code]);"
                                         "    if (thread !== last) ++changes;"
                                         "    last = thread;"
                                         "    ++count;"
                                         "});")
                                     .arg(eventsPerThread));
    RecordingPlatform::fireFromThreads(
        threads, eventsPerThread, [](int thread, int index) { return numberedEvent(thread, index, eventsPerThread); });
    QTRY_COMPARE_WITH_TIMEOUT(m_session->plugin().evaluate("count").toInt(), threads * eventsPerThread, 60000);
    RecordingPlatform::waitUntilFired();
    QCoreApplication::processEvents();
    QCOMPARE(m_session->plugin().evaluateToJson("[count, faults.slice(0, 10), next]"),
             QString("[100000,[],[25000,25000,25000,25000]]"));
    // The threads were at it together, or this was no burst.
    QVERIFY(m_session->plugin().evaluate("changes").toInt() > threads);
}

void TestEventBurst::noEventIsLostWhileThePageChanges()
{
    constexpr int eventsPerThread = 5000;
    constexpr int firstAfterChange = 4000;
    HttpServer server;
    server.serve("/first",
                 "<!DOCTYPE html><title>First</title><script>var count = 0;"
                 "StbMedia.SetEventCallback(function () {"
                 "    if (++count == 2000) location.href = '/second';"
                 "});</script>");
    server.serve("/second",
                 "<!DOCTYPE html><title>Second</title><script>var count = 0;"
                 "StbMedia.SetEventCallback(function () { ++count; });</script>");
    QVERIFY(m_session->plugin().load(server.url("/first")));
    // The handler text survives the page, and the platform's log does.
    m_session->run("StbMedia.onEvent = 'var event = StbMedia.GetEventDescription();"
                   "StbMedia.SetSpeed(event.id, event.type)'");
    m_session->takeOutcome();

    QSemaphore pageHasChanged;
    RecordingPlatform::fireFromThreads(threads, eventsPerThread, [&](int thread, int index) {
        if (index == firstAfterChange)
            pageHasChanged.acquire();
        return numberedEvent(thread, index, eventsPerThread);
    });
    const auto title = [this] { return m_session->plugin().evaluate("document.title").toString(); };
    const bool hasChanged = QTest::qWaitFor([&] { return title() == "Second"; }, 20000);
    pageHasChanged.release(threads);
    RecordingPlatform::waitUntilFired();
    QVERIFY(hasChanged);
    QCoreApplication::processEvents();

    const QList<QByteArray> calls = m_session->takeOutcome().calls.split('\n');
    QCOMPARE(calls.size(), threads * eventsPerThread);
    std::array<int, threads> next = {};
    static const QRegularExpression call(R"(^KVR_SetSpeed\((\d+), (\d+)\)$)");
    for (const QByteArray &text : calls) {
        const QRegularExpressionMatch match = call.match(text);
        QVERIFY2(match.hasMatch(), text);
        const int thread = match.captured(1).toInt() / eventsPerThread;
        const RecordingPlatform::Event expected = numberedEvent(thread, next.at(thread)++, eventsPerThread);
        QCOMPARE(match.captured(1).toInt(), expected.argument);
        QCOMPARE(match.captured(2).toInt(), expected.type);
    }
    QVERIFY(m_session->plugin().evaluate("count").toInt() >= threads * (eventsPerThread - firstAfterChange));
}

QTEST_MAIN(TestEventBurst)
#include "tst_eventburst.moc"
