// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QSemaphore>
#include <chrono>

/// Where a page reports that an event has arrived.
class Probe : public QObject
{
    Q_OBJECT

public:
    using Clock = std::chrono::steady_clock;

    /// Waits for the page, on another thread than the page's. When the page's report came. Ends the program with a
    /// message if none comes.
    Clock::time_point wait()
    {
        if (!m_arrived.tryAcquire(1, longestWait))
            qFatal("The page hears of no event");
        return m_time;
    }

public slots:
    void arrived()
    {
        m_time = Clock::now();
        m_arrived.release();
    }

private:
    static constexpr int longestWait = 60000; // ms

    QSemaphore m_arrived;
    Clock::time_point m_time;
};
