// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TaskQueue.h"

#include <future>
#include <memory>
#include <utility>

using namespace Desk;

bool TaskQueue::post(Task task)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_finishing)
        return false;
    m_tasks.push_back(std::move(task));
    startThread();
    return true;
}

bool TaskQueue::postAt(Clock::time_point time, Task task)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_finishing)
        return false;
    if (!m_timedTask || time < m_time) {
        m_timedTask = std::move(task);
        m_time = time;
        startThread();
    }
    return true;
}

void TaskQueue::startThread()
{
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    m_changed.notify_one();
}

void TaskQueue::drain()
{
    const auto done = std::make_shared<std::promise<void>>();
    if (post([done] { done->set_value(); }))
        done->get_future().wait();
}

void TaskQueue::finish()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_finishing = true;
        m_changed.notify_one();
    }
    if (m_thread.joinable())
        m_thread.join();
}

void TaskQueue::waitForWork(std::unique_lock<std::mutex> &lock)
{
    while (!m_finishing && m_tasks.empty()) {
        if (!m_timedTask)
            m_changed.wait(lock);
        else if (Clock::now() < m_time)
            m_changed.wait_until(lock, m_time);
        else
            return;
    }
}

void TaskQueue::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        waitForWork(lock);
        Task task;
        if (!m_tasks.empty()) {
            task = std::move(m_tasks.front());
            m_tasks.pop_front();
        } else if (m_finishing) {
            return;
        } else {
            task = std::exchange(m_timedTask, nullptr);
        }
        lock.unlock();
        task();
        task = nullptr; // what it holds is not destroyed under the lock
        lock.lock();
    }
}
