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

    /// Waits for the page, on another thread than the page's. When the page's report came.
    Clock::time_point wait()
    {
        m_arrived.acquire();
        return m_time;
    }

public slots:
    void arrived()
    {
        m_time = Clock::now();
        m_arrived.release();
    }

private:
    QSemaphore m_arrived;
    Clock::time_point m_time;
};
