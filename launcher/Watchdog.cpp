// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Watchdog.h"

#include "Report.h"

#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const auto interval = 250ms;
const auto patience = 10s;
const auto patienceAtEnd = 3s; // of a slow PC that loads, draws or saves its picture

} // namespace

Watchdog::Watchdog()
    : m_thread(&Watchdog::run, this)
{
    QObject::connect(&m_heart, &QTimer::timeout, &m_heart, [this] { beat(); });
    m_heart.start(interval);
}

Watchdog::~Watchdog()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_stop.notify_one();
    m_thread.join();
}

void Watchdog::expectEndAfter(std::chrono::milliseconds time, int exitStatus)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lastBeat = Clock::now();
    m_end = m_lastBeat + time;
    m_exitStatus = exitStatus;
}

void Watchdog::beat()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lastBeat = Clock::now();
}

void Watchdog::run()
{
    bool isTold = false;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stop.wait_for(lock, interval, [this] { return m_stopping; })) {
        const auto now = Clock::now();
        const auto silence = now - m_lastBeat;
        if (silence >= patienceAtEnd && now - patienceAtEnd >= m_end) {
            report("the page's script does not end, so the desk box leaves without waiting for it");
            _exit(m_exitStatus);
        }
        if (silence < patience)
            isTold = false;
        else if (!isTold) {
            report("the page's script has been running for 10 s; keys, pictures and events wait for its end");
            isTold = true;
        }
    }
}
