// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Outlet.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

const int fullSize = 4 << 20;  // bytes
const int pieceSize = 1 << 14; // bytes, few enough that a slow reader is not taken for none

} // namespace

struct Outlet::State
{
    ~State() { close(descriptor); }

    void run();
    bool writePiece(const QByteArray &bytes, int begin);
    bool isStuck(int time) const
    {
        return unwritten > 0 && Clock::now() - lastProgress >= std::chrono::milliseconds(time);
    }

    int descriptor = -1;
    std::mutex mutex; // of all that follows
    std::condition_variable changed;
    QByteArray pending;
    qint64 unwritten = 0; // bytes, of those pending and those that the thread has taken
    bool isOver = false;
    Clock::time_point lastProgress;
};

void Outlet::State::run()
{
    // A reader that has gone, and a file that may not grow, are errors of write(), not the end of the process.
    sigset_t signalSet;
    sigfillset(&signalSet);
    pthread_sigmask(SIG_BLOCK, &signalSet, nullptr);

    std::unique_lock<std::mutex> lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return isOver || !pending.isEmpty(); });
        if (pending.isEmpty())
            return;
        QByteArray bytes;
        bytes.swap(pending);
        bool canWrite = true; // otherwise they are gone, and there is nobody to be told
        for (int begin = 0; begin < bytes.size(); begin += pieceSize) {
            lock.unlock();
            canWrite = canWrite && writePiece(bytes, begin);
            lock.lock();
            lastProgress = Clock::now();
            unwritten -= qMin(pieceSize, bytes.size() - begin);
        }
        changed.notify_all();
    }
}

bool Outlet::State::writePiece(const QByteArray &bytes, int begin)
{
    const int end = qMin(begin + pieceSize, bytes.size());
    while (begin < end) {
        const ssize_t count = ::write(descriptor, bytes.constData() + begin, size_t(end - begin));
        pollfd writable = {descriptor, POLLOUT, 0};
        if (count < 0 && errno == EAGAIN)
            poll(&writable, 1, -1); // somebody else has made it so that it does not wait
        else if (count < 0 && errno != EINTR)
            return false;
        begin += int(qMax(count, ssize_t(0)));
    }
    return true;
}

Outlet::Outlet(int descriptor)
    : m_isTerminal(isatty(descriptor))
    , m_state(std::make_shared<State>())
{
    m_state->descriptor = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    std::thread([state = m_state] { state->run(); }).detach();
}

Outlet::~Outlet()
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->isOver = true;
    m_state->changed.notify_all();
}

void Outlet::write(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    if (m_state->unwritten == 0)
        m_state->lastProgress = Clock::now();
    m_state->unwritten += bytes.size();
    m_state->pending += bytes;
    m_state->changed.notify_all();
}

bool Outlet::isFull() const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->unwritten >= fullSize;
}

bool Outlet::isStuck(int time) const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->isStuck(time);
}

void Outlet::finish(int time) const
{
    std::unique_lock<std::mutex> lock(m_state->mutex);
    while (m_state->unwritten > 0 && !m_state->isStuck(time))
        m_state->changed.wait_until(lock, m_state->lastProgress + std::chrono::milliseconds(time));
}
