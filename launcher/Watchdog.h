// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Watches, from a thread of its own, whether the event loop turns. A page whose script or layout never ends stops it,
/// which the engine cannot be made to give up; the portal's author is told, and the desk box ends when it is to all the
/// same. Says too when the page has taken nearly all memory, since not all that fails then says why.
class Watchdog
{
public:
    Watchdog();
    ~Watchdog();
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;

    /// If the event loop does not turn then, the process ends a little later, with the exit status.
    void expectEndAfter(std::chrono::milliseconds time, int exitStatus);

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void beat();
    void checkMemory();

    const QByteArray m_memoryLine;
    QTimer m_heart;
    std::mutex m_mutex; // of all that follows
    std::condition_variable m_stop;
    bool m_stopping = false;
    Clock::time_point m_lastBeat = Clock::now();
    Clock::time_point m_end = Clock::time_point::max();
    int m_exitStatus = 0;
    bool m_isMemoryTaken = false; // of the thread's alone, and said
    std::thread m_thread;         // last, because it uses the others
};
