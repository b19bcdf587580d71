// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StreamCopy.h"

#include <algorithm>
#include <thread>

extern "C" {
#include <libavformat/avformat.h>
}

using namespace Desk;

namespace {

constexpr std::chrono::milliseconds longestNap{100}; // until an order is noticed

} // namespace

StreamCopy::StreamCopy(const std::string &url, RecordFile &file)
    : m_source(url)
    , m_file(file)
{
}

void StreamCopy::cancel()
{
    m_cancelled = true;
    m_source.stop();
}

Problem StreamCopy::run()
{
    Problem problem = m_source.open();
    if (!problem)
        problem = m_file.open(m_source);
    if (!problem)
        problem = copy();
    return m_cancelled ? Problem() : problem;
}

// Waits until what has been taken of the source would have been played.
void StreamCopy::keepPace() const
{
    const Clock::time_point due = m_start + std::chrono::microseconds(m_timeline.length());
    for (auto rest = due - Clock::now(); rest.count() > 0 && !m_source.isStopped(); rest = due - Clock::now())
        std::this_thread::sleep_for(std::min<Clock::duration>(rest, longestNap));
}

Problem StreamCopy::copy()
{
    AVPacket *packet = av_packet_alloc();
    if (!packet)
        return "no memory";
    m_start = Clock::now();
    Problem problem;
    int result = 0;
    while (!problem && result >= 0 && !m_source.isStopped()) {
        result = m_source.read(*packet);
        if (result >= 0)
            problem = takePacket(*packet);
        else if (!m_source.isStopped())
            problem = m_source.problemAtEnd(result, m_timeline.length());
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    const Problem last = m_file.finish();
    if (!problem)
        problem = last;
    if (!problem && m_timeline.isEmpty())
        problem = m_source.silence();
    return problem;
}

Problem StreamCopy::takePacket(AVPacket &packet)
{
    if (packet.dts == AV_NOPTS_VALUE)
        packet.dts = packet.pts;
    if (!m_file.has(packet.stream_index) || packet.dts == AV_NOPTS_VALUE)
        return {};
    const AVRational base = m_source.context().streams[packet.stream_index]->time_base;
    const std::int64_t time = av_rescale_q(packet.dts, base, AV_TIME_BASE_Q);
    const std::int64_t shift = av_rescale_q(m_timeline.take(packet.stream_index, time), AV_TIME_BASE_Q, base);
    packet.dts += shift;
    if (packet.pts != AV_NOPTS_VALUE)
        packet.pts += shift;
    if (m_source.isWhole())
        keepPace();
    m_source.beginToWait();
    return m_source.isStopped() ? Problem() : m_file.write(packet);
}
