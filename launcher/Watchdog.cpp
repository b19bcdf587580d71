// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Watchdog.h"

#include "Limits.h"
#include "Report.h"

#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const auto interval = 250ms;
const auto patience = 10s;
const auto patienceAtEnd = 3s; // of a slow PC that loads, draws or saves its picture
const double memoryShare = 0.9;

// In advance, since when it is to be said there is no memory for it.
QByteArray memoryLine()
{
    const std::optional<rlim_t> most = Limits::memory();
    if (!most)
        return {};
    return QString("the page has taken nearly all of the %1 of memory that a box has; what needs more fails")
        .arg(Limits::memoryText(*most))
        .toLocal8Bit();
}

} // namespace

Watchdog::Watchdog()
    : m_memoryLine(memoryLine())
    , m_thread(&Watchdog::run, this)
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
            reportNow(QByteArrayLiteral(
                "what the page has begun does not end, so the desk box leaves without waiting for it"));
            _exit(m_exitStatus);
        }
        if (silence < patience)
            isTold = false;
        else if (!isTold) {
            reportNow(QByteArrayLiteral(
                "nothing has moved for 10 s: a script, the layout or a picture of the page, or a file, takes so long; "
                "keys and events wait"));
            isTold = true;
        }
        checkMemory();
    }
}

void Watchdog::checkMemory()
{
    const std::optional<rlim_t> most = Limits::memory();
    const bool isTaken = most && double(Limits::memoryTaken()) > double(*most) * memoryShare;
    if (isTaken && !m_isMemoryTaken)
        reportNow(m_memoryLine);
    m_isMemoryTaken = isTaken;
}
