// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/TaskQueue.h"

#include <QByteArray>
#include <QTest>

#include <atomic>
#include <mutex>

using Desk::TaskQueue;

namespace {

constexpr std::chrono::hours never{1};
constexpr std::chrono::milliseconds soon{20};

// What has run, in its order.
class Diary
{
public:
    TaskQueue::Task entry(char letter)
    {
        return [this, letter] {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_text += letter;
        };
    }

    QByteArray text()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_text;
    }

private:
    std::mutex m_mutex;
    QByteArray m_text;
};

} // namespace

/// The queue of tasks that a thread runs.
class TestTaskQueue : public QObject
{
    Q_OBJECT

private slots:
    void tasksRunInTheirOrder();
    void aTaskRunsAtItsTime();
    void ofTwoTimesTheEarlierOneCounts();
    void aTimedTaskRunsOnce();
    void tasksRunWhileOneWaitsForItsTime();
    void theEndRunsWhatWasPostedAndDropsWhatIsTimed();
    void nothingIsTakenAfterTheEnd();
};

void TestTaskQueue::tasksRunInTheirOrder()
{
    Diary diary;
    TaskQueue queue;
    for (const char letter : {'a', 'b', 'c'})
        QVERIFY(queue.post(diary.entry(letter)));
    queue.drain();
    QCOMPARE(diary.text(), QByteArray("abc"));
}

void TestTaskQueue::aTaskRunsAtItsTime()
{
    TaskQueue queue;
    const auto time = TaskQueue::Clock::now() + soon;
    std::atomic<bool> hasRun{false};
    std::atomic<bool> wasEarly{false};
    QVERIFY(queue.postAt(time, [&] {
        wasEarly = TaskQueue::Clock::now() < time;
        hasRun = true;
    }));
    QTRY_VERIFY(hasRun);
    QVERIFY(!wasEarly);
    queue.finish();
}

void TestTaskQueue::ofTwoTimesTheEarlierOneCounts()
{
    const auto start = TaskQueue::Clock::now();
    Diary diary;
    TaskQueue first;
    first.postAt(start + never, diary.entry('x'));
    first.postAt(start + soon, diary.entry('a'));
    QTRY_COMPARE(diary.text(), QByteArray("a"));
    TaskQueue second;
    second.postAt(start + soon, diary.entry('b'));
    second.postAt(start + never, diary.entry('x'));
    QTRY_COMPARE(diary.text(), QByteArray("ab"));
    first.finish();
    second.finish();
    QCOMPARE(diary.text(), QByteArray("ab"));
}

void TestTaskQueue::aTimedTaskRunsOnce()
{
    Diary diary;
    TaskQueue queue;
    queue.postAt(TaskQueue::Clock::now(), diary.entry('a'));
    QTRY_COMPARE(diary.text(), QByteArray("a"));
    queue.post(diary.entry('b'));
    queue.drain();
    QCOMPARE(diary.text(), QByteArray("ab"));
    queue.postAt(TaskQueue::Clock::now(), diary.entry('c'));
    QTRY_COMPARE(diary.text(), QByteArray("abc"));
    queue.finish();
}

void TestTaskQueue::tasksRunWhileOneWaitsForItsTime()
{
    Diary diary;
    TaskQueue queue;
    queue.postAt(TaskQueue::Clock::now() + never, diary.entry('x'));
    queue.post(diary.entry('a'));
    queue.drain();
    QCOMPARE(diary.text(), QByteArray("a"));
}

void TestTaskQueue::theEndRunsWhatWasPostedAndDropsWhatIsTimed()
{
    Diary diary;
    TaskQueue queue;
    queue.postAt(TaskQueue::Clock::now() + never, diary.entry('x'));
    for (const char letter : {'a', 'b', 'c'})
        queue.post(diary.entry(letter));
    queue.finish();
    QCOMPARE(diary.text(), QByteArray("abc"));
}

void TestTaskQueue::nothingIsTakenAfterTheEnd()
{
    Diary diary;
    TaskQueue queue;
    queue.finish();
    QVERIFY(!queue.post(diary.entry('x')));
    QVERIFY(!queue.postAt(TaskQueue::Clock::now(), diary.entry('x')));
    QCOMPARE(diary.text(), QByteArray());
}

QTEST_GUILESS_MAIN(TestTaskQueue)

#include "tst_taskqueue.moc"
