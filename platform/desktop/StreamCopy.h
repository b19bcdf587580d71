// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "RecordFile.h"
#include "RecordTimeline.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct AVFormatContext;
struct AVIOContext;
struct AVPacket;

namespace Desk {

/// Copies the streams of a source, as they are, into a transport stream file. A source that is there as a whole, such
/// as a file on a server, is taken in as fast as it plays. All but the two orders happens on one thread.
class StreamCopy
{
public:
    StreamCopy(std::string url, RecordFile &file, std::int64_t end);
    StreamCopy(const StreamCopy &) = delete;
    StreamCopy &operator=(const StreamCopy &) = delete;
    ~StreamCopy();

    /// Copies until the end. The reason when it could not, an empty text when it could or was cancelled.
    std::string run();

    /// Orders, from any thread: another end, in seconds since 1970 UTC, or to stop at once.
    void setEnd(std::int64_t end) { m_end = end; }
    void cancel() { m_cancelled = true; }

private:
    using Clock = std::chrono::steady_clock;

    struct Output
    {
        int index = -1; // in the file, negative for what is left out
        std::int64_t lastDts = INT64_MIN;
    };

    std::string openSource();
    std::string openFile();
    std::string copy();
    std::string takePacket(AVPacket &packet);
    std::string writePacket(AVPacket &packet, Output &output);
    void keepPace() const;
    std::string problemAtEnd(int result) const;
    bool takesStream(unsigned index) const;
    bool isWhole() const;
    std::string reasonOf(int error) const;
    bool isOver() const;
    bool mustStop() const;

    const std::string m_url;
    RecordFile &m_file;
    std::atomic<std::int64_t> m_end;
    std::atomic<bool> m_cancelled{false};
    Clock::time_point m_deadline; // for the next sign of life of the source
    Clock::time_point m_start;    // of the copying
    AVFormatContext *m_source = nullptr;
    AVFormatContext *m_target = nullptr;
    AVIOContext *m_io = nullptr;
    std::vector<Output> m_outputs; // for each stream that the source had when it was opened
    RecordTimeline m_timeline;
    bool m_isWhole = false; // the source, when it was opened
    std::string m_writeProblem;
};

} // namespace Desk
