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
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    m_changed.notify_one();
    return true;
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

void TaskQueue::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_finishing || !m_tasks.empty(); });
        if (m_tasks.empty())
            return;
        const Task task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}
