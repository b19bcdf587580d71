// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

namespace Desk {

/// The clock of playing backwards, which is done by seeks on a player core that stands still.
class Rewind
{
public:
    using Clock = std::chrono::steady_clock;

    bool active() const { return m_speed > 0; }

    /// speed: how many times faster than normal, positive. position: milliseconds.
    void start(int speed, long long position)
    {
        m_speed = speed;
        m_startPosition = position;
        m_startTime = Clock::now();
    }
    void stop() { m_speed = 0; }

    /// Where playing backwards has come to, in milliseconds; negative beyond the beginning.
    long long position() const
    {
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_startTime);
        return m_startPosition - elapsed.count() * m_speed;
    }

private:
    int m_speed = 0;
    long long m_startPosition = 0;
    Clock::time_point m_startTime;
};

} // namespace Desk
