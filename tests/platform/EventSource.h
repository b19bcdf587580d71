// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "RecordingPlatform.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

/// The handlers that the program registered, and the threads that send events to them.
class EventSource
{
public:
    using Event = RecordingPlatform::Event;

    /// Lives as long as the process, and so does its thread.
    static EventSource &instance();

    void setHandler(KVR_ID id, int type, KVR_EventHandler handler);
    /// False if there was none.
    bool removeHandler(KVR_ID id, int type);
    void removeHandlersOf(KVR_ID id);
    void forgetHandlers();
    KVR_EventHandler handler(KVR_ID id, int type) const;

    /// Calls the handler, if any, on the calling thread.
    void deliver(const Event &event);
    void fire(const Event &event);
    void fireFromThreads(int threads, int eventsPerThread, const std::function<Event(int, int)> &event);
    void waitUntilFired();
    int deliveredEvents() const;

private:
    EventSource();
    void deliverQueue();

    mutable std::mutex m_handlersMutex;
    std::map<std::pair<KVR_ID, int>, KVR_EventHandler> m_handlers;
    std::atomic<int> m_delivered{0};

    std::mutex m_mutex; // of what follows
    std::condition_variable m_changed;
    std::deque<Event> m_queue;
    bool m_delivering = false;
    std::vector<std::thread> m_threads;
};
