// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Desk {

/// A thread that runs tasks one after another, in the order in which they were posted. The thread starts with the first
/// task.
class TaskQueue
{
public:
    using Task = std::function<void()>;
    using Clock = std::chrono::steady_clock;

    TaskQueue() = default;
    TaskQueue(const TaskQueue &) = delete;
    TaskQueue &operator=(const TaskQueue &) = delete;
    ~TaskQueue() { finish(); }

    /// Never waits for a task. After finish() the task is dropped and the answer false.
    bool post(Task task);

    /// Has a task run at a time, or dropped by finish(). One such task waits at most: of two, the earlier one.
    bool postAt(Clock::time_point time, Task task);

    /// Waits until every task posted before has run. Not to be called by a task.
    void drain();

    /// Runs what was posted, then ends the thread.
    void finish();

private:
    void startThread();
    void waitForWork(std::unique_lock<std::mutex> &lock);
    void run();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Task> m_tasks;
    Task m_timedTask; // if there is one
    Clock::time_point m_time;
    std::thread m_thread;
    bool m_finishing = false;
};

} // namespace Desk
