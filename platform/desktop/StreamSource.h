// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

struct AVFormatContext;
struct AVPacket;

namespace Desk {

/// A stream of the network that is read to be recorded. All but the order happens on one thread.
class StreamSource
{
public:
    explicit StreamSource(const std::string &address);
    StreamSource(const StreamSource &) = delete;
    StreamSource &operator=(const StreamSource &) = delete;
    ~StreamSource();

    /// Opens it and finds its streams.
    Problem open();

    const AVFormatContext &context() const { return *m_context; }

    /// Whether a recording takes a stream: picture, sound or subtitles of the best programme.
    bool isTaken(unsigned index) const;

    /// Whether it is there as a whole, with an end of its own.
    bool isWhole() const { return m_isWhole; }

    /// The next packet. Negative when there is none, see problemAtEnd().
    int read(AVPacket &packet);

    /// Gives it anew the time that it may be silent.
    void beginToWait();

    /// Why it gives nothing more, after so many microseconds of it. Nothing when it has been taken as a whole.
    Problem problemAtEnd(int result, std::int64_t length) const;

    /// What is wrong when nothing of use has come.
    std::string silence() const { return "nothing arrives from " + m_address; }
    std::string emptiness() const { return m_address + " has neither picture nor sound"; }

    /// Order, from any thread: to wait for nothing more.
    void stop() { m_stopped = true; }
    bool isStopped() const { return m_stopped; }

private:
    using Clock = std::chrono::steady_clock;

    bool isSilent() const { return Clock::now() > m_deadline; }
    std::string reasonOf(int error) const;
    bool hasEnd() const;

    const std::string m_address;
    std::atomic<bool> m_stopped{false};
    Clock::time_point m_deadline; // for the next sign of life
    AVFormatContext *m_context = nullptr;
    bool m_isWhole = false; // when it was opened
};

} // namespace Desk
