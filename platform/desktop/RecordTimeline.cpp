// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordTimeline.h"

#include <algorithm>
#include <cstdlib>

using namespace Desk;

namespace {

// A source may be silent for a while, but a stream's times do not go back.
constexpr std::int64_t longestGap = 15'000'000;
constexpr std::int64_t longestStepBack = 500'000;

// How far apart a source's streams are.
constexpr std::int64_t longestLag = 3'000'000;

} // namespace

std::int64_t RecordTimeline::take(int number, std::int64_t time)
{
    if (m_streams.empty())
        m_first = m_last = time;
    Stream &stream = m_streams.try_emplace(number, Stream{time, m_shift}).first->second;
    const std::int64_t step = time - stream.last;
    if (step > longestGap || step < -longestStepBack) {
        // It follows the others if they have jumped before it.
        if (stream.shift == m_shift || std::abs(time + m_shift - m_last) > longestLag)
            m_shift = m_last - time;
        stream.shift = m_shift;
    }
    stream.last = time;
    m_last = std::max(m_last, time + stream.shift);
    return stream.shift;
}
