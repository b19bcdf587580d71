// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "EventSource.h"

#include <climits>
#include <memory>

namespace {

// Lets threads go on together as soon as all of them have come.
class Barrier
{
public:
    explicit Barrier(int threads)
        : m_missing(threads)
    {
    }

    void wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        --m_missing;
        m_complete.notify_all();
        m_complete.wait(lock, [this] { return m_missing <= 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_complete;
    int m_missing;
};

} // namespace

EventSource &EventSource::instance()
{
    static auto *source = new EventSource;
    return *source;
}

EventSource::EventSource()
{
    std::thread(&EventSource::deliverQueue, this).detach();
}

void EventSource::setHandler(KVR_ID id, int type, KVR_EventHandler handler)
{
    const std::lock_guard<std::mutex> lock(m_handlersMutex);
    m_handlers[{id, type}] = handler;
}

bool EventSource::removeHandler(KVR_ID id, int type)
{
    const std::lock_guard<std::mutex> lock(m_handlersMutex);
    return m_handlers.erase({id, type}) > 0;
}

void EventSource::removeHandlersOf(KVR_ID id)
{
    const std::lock_guard<std::mutex> lock(m_handlersMutex);
    m_handlers.erase(m_handlers.lower_bound({id, INT_MIN}), m_handlers.upper_bound({id, INT_MAX}));
}

void EventSource::forgetHandlers()
{
    const std::lock_guard<std::mutex> lock(m_handlersMutex);
    m_handlers.clear();
}

KVR_EventHandler EventSource::handler(KVR_ID id, int type) const
{
    const std::lock_guard<std::mutex> lock(m_handlersMutex);
    const auto found = m_handlers.find({id, type});
    return found == m_handlers.end() ? nullptr : found->second;
}

void EventSource::deliver(const Event &event)
{
    if (const KVR_EventHandler function = handler(event.id, event.type)) {
        function(event.argument);
        ++m_delivered;
    }
}

void EventSource::fire(const Event &event)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_queue.push_back(event);
    m_changed.notify_all();
}

void EventSource::deliverQueue()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return !m_queue.empty(); });
        const Event event = m_queue.front();
        m_queue.pop_front();
        m_delivering = true;
        lock.unlock();
        deliver(event);
        lock.lock();
        m_delivering = false;
        m_changed.notify_all();
    }
}

void EventSource::fireFromThreads(int threads, int eventsPerThread, const std::function<Event(int, int)> &event)
{
    const auto barrier = std::make_shared<Barrier>(threads);
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (int thread = 0; thread < threads; ++thread) {
        m_threads.emplace_back([this, thread, eventsPerThread, event, barrier] {
            barrier->wait();
            for (int index = 0; index < eventsPerThread; ++index)
                deliver(event(thread, index));
        });
    }
}

void EventSource::waitUntilFired()
{
    std::vector<std::thread> threads;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        threads.swap(m_threads);
    }
    for (std::thread &thread : threads)
        thread.join();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_queue.empty() && !m_delivering; });
}

int EventSource::deliveredEvents() const
{
    return m_delivered;
}
