// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "RecordTimeline.h"
#include "StreamFile.h"
#include "StreamSource.h"

#include <atomic>
#include <chrono>
#include <string>

struct AVPacket;

namespace Desk {

/// Copies the streams of a source, as they are, into a transport stream file. A source that is there as a whole, such
/// as a file on a server, is taken in as fast as it plays. All but the two orders happens on one thread.
class StreamCopy
{
public:
    StreamCopy(const std::string &url, RecordFile &file);

    /// Copies until it is stopped, unless there is a problem before. A copy that is cancelled has none.
    Problem run();

    /// Orders, from any thread: that its end has come, or that nobody wants it any more.
    void stop() { m_source.stop(); }
    void cancel();

private:
    using Clock = std::chrono::steady_clock;

    Problem copy();
    Problem takePacket(AVPacket &packet);
    void keepPace() const;

    StreamSource m_source;
    StreamFile m_file;
    RecordTimeline m_timeline;
    Clock::time_point m_start; // of the copying
    std::atomic<bool> m_cancelled{false};
};

} // namespace Desk
