// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>

namespace Desk {

/// The time of a recording: its source's, but going on where that jumps, as it does when a source starts again.
/// In microseconds.
class RecordTimeline
{
public:
    /// Takes the time of the next packet of a stream of the source. What to add to the packet's times.
    std::int64_t take(int stream, std::int64_t time);

    /// How much has been taken.
    std::int64_t length() const { return m_last - m_first; }

    bool isEmpty() const { return m_streams.empty(); }

private:
    struct Stream
    {
        std::int64_t last;
        std::int64_t shift;
    };

    std::map<int, Stream> m_streams;
    std::int64_t m_first = 0;
    std::int64_t m_last = 0;
    std::int64_t m_shift = 0; // of the stream that jumped last
};

} // namespace Desk
