// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StreamCopy.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <thread>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/avstring.h>
}

using namespace Desk;

namespace {

constexpr std::chrono::seconds patience{12};
constexpr int bufferSize = 64 * 1024;
constexpr std::chrono::milliseconds longestNap{100}; // until an order is noticed
constexpr std::int64_t earlyEnd = 3 * AV_TIME_BASE;  // a duration may be this inexact

// Sources come from the network: a recording must not copy the box's own files.
constexpr char sourceProtocols[] = "http,https,httpproxy,hls,tls,tcp,udp,rtp,rtsp,rtmp,srt,crypto";

std::int64_t now()
{
    return static_cast<std::int64_t>(std::time(nullptr));
}

std::string textOf(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(error, text, sizeof text);
    return text;
}

bool isCarried(const AVCodecParameters &stream)
{
    switch (stream.codec_type) {
    case AVMEDIA_TYPE_VIDEO:
    case AVMEDIA_TYPE_AUDIO:
        return true;
    case AVMEDIA_TYPE_SUBTITLE:
        return stream.codec_id == AV_CODEC_ID_DVB_SUBTITLE || stream.codec_id == AV_CODEC_ID_DVB_TELETEXT;
    default:
        return false;
    }
}

} // namespace

StreamCopy::StreamCopy(std::string url, RecordFile &file, std::int64_t end)
    : m_url(std::move(url))
    , m_file(file)
    , m_end(end)
{
}

StreamCopy::~StreamCopy()
{
    avformat_close_input(&m_source);
    avformat_free_context(m_target);
    if (m_io)
        av_freep(&m_io->buffer);
    avio_context_free(&m_io);
}

std::string StreamCopy::run()
{
    std::string problem = openSource();
    if (problem.empty())
        problem = openFile();
    if (problem.empty())
        problem = copy();
    return m_cancelled ? std::string() : problem;
}

bool StreamCopy::isOver() const
{
    return m_cancelled || now() >= m_end;
}

bool StreamCopy::mustStop() const
{
    return isOver() || Clock::now() > m_deadline;
}

std::string StreamCopy::reasonOf(int error) const
{
    if (!m_writeProblem.empty())
        return "writing: " + m_writeProblem;
    if (error == AVERROR_EXIT || Clock::now() > m_deadline || now() >= m_end)
        return "nothing arrives from " + m_url;
    return m_url + ": " + textOf(error);
}

std::string StreamCopy::openSource()
{
    const char *protocol = avio_find_protocol_name(m_url.c_str());
    if (protocol && !av_match_name(protocol, sourceProtocols))
        return m_url + " is no stream of the network, and nothing else is recorded";
    m_deadline = Clock::now() + patience;
    m_source = avformat_alloc_context();
    if (!m_source)
        return "no memory";
    m_source->interrupt_callback.callback = [](void *self) {
        return static_cast<StreamCopy *>(self)->mustStop() ? 1 : 0;
    };
    m_source->interrupt_callback.opaque = this;

    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", sourceProtocols, 0);
    // A channel that changes the PIDs of its streams goes on as the same streams.
    av_dict_set(&options, "merge_pmt_versions", "1", 0);
    int result = avformat_open_input(&m_source, m_url.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (result >= 0)
        result = avformat_find_stream_info(m_source, nullptr);
    return result >= 0 ? std::string() : reasonOf(result);
}

bool StreamCopy::takesStream(unsigned index) const
{
    if (!isCarried(*m_source->streams[index]->codecpar))
        return false;
    // Of several programmes, or variants of one, the best is recorded.
    const int best = av_find_best_stream(m_source, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    const AVProgram *program = best < 0 ? nullptr : av_find_program_from_stream(m_source, nullptr, best);
    if (!program)
        return true;
    const unsigned *begin = program->stream_index;
    const unsigned *end = begin + program->nb_stream_indexes;
    return std::find(begin, end, index) != end;
}

std::string StreamCopy::openFile()
{
    int result = avformat_alloc_output_context2(&m_target, nullptr, "mpegts", nullptr);
    if (result < 0)
        return textOf(result);
    for (unsigned i = 0; i < m_source->nb_streams; ++i) {
        AVStream *from = m_source->streams[i];
        m_outputs.emplace_back();
        AVStream *to = takesStream(i) ? avformat_new_stream(m_target, nullptr) : nullptr;
        if (!to) {
            from->discard = AVDISCARD_ALL;
            continue;
        }
        m_outputs.back().index = to->index;
        avcodec_parameters_copy(to->codecpar, from->codecpar);
        to->codecpar->codec_tag = 0;
        to->time_base = from->time_base;
        to->id = from->id; // the PIDs stay what they were
        av_dict_copy(&to->metadata, from->metadata, 0);
    }
    if (m_target->nb_streams == 0)
        return m_url + " has neither picture nor sound";

    auto *buffer = static_cast<unsigned char *>(av_malloc(bufferSize));
    const auto write = [](void *self, std::uint8_t *data, int size) {
        auto &copy = *static_cast<StreamCopy *>(self);
        copy.m_writeProblem = copy.m_file.write(data, size);
        return copy.m_writeProblem.empty() ? size : AVERROR(EIO);
    };
    m_io = avio_alloc_context(buffer, bufferSize, 1, this, nullptr, write, nullptr);
    if (!m_io) {
        av_free(buffer);
        return "no memory";
    }
    m_target->pb = m_io;
    // What has arrived is in the file, whenever the process is killed.
    m_target->flags |= AVFMT_FLAG_FLUSH_PACKETS | AVFMT_FLAG_CUSTOM_IO;
    result = avformat_write_header(m_target, nullptr);
    return result >= 0 ? std::string() : reasonOf(result);
}

// Whether the source has an end of its own. The size of a playlist is not that of its stream.
bool StreamCopy::isWhole() const
{
    const bool isPlaylist = std::strcmp(m_source->iformat->name, "hls") == 0;
    return m_source->duration > 0 || (!isPlaylist && m_source->pb && avio_size(m_source->pb) > 0);
}

// Waits until what has been taken of the source would have been played.
void StreamCopy::keepPace() const
{
    const Clock::time_point due = m_start + std::chrono::microseconds(m_timeline.length());
    for (auto rest = due - Clock::now(); rest.count() > 0 && !isOver(); rest = due - Clock::now())
        std::this_thread::sleep_for(std::min<Clock::duration>(rest, longestNap));
}

// Why the source gives nothing more before its time; an empty text if it was there as a whole and has been taken.
std::string StreamCopy::problemAtEnd(int result) const
{
    // What goes wrong below a demuxer is something else to some of them.
    const int error = m_source->pb ? m_source->pb->error : 0;
    const int cause = error < 0 && error != AVERROR_EOF ? error : result;
    if (cause != AVERROR_EOF && cause != AVERROR(EIO))
        return reasonOf(cause);
    if (!m_isWhole)
        return m_url + " has ended";
    // A duration that was estimated from the size says little.
    const bool isExact = m_source->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
    const bool isShort = isExact && m_timeline.length() + earlyEnd < m_source->duration;
    if (cause != AVERROR_EOF || isShort)
        return m_url + " breaks off after " + std::to_string(m_timeline.length() / AV_TIME_BASE) + " seconds";
    return {};
}

std::string StreamCopy::copy()
{
    AVPacket *packet = av_packet_alloc();
    if (!packet)
        return "no memory";
    m_isWhole = isWhole();
    m_start = Clock::now();
    m_deadline = m_start + patience;
    std::string problem;
    int result = 0;
    while (problem.empty() && result >= 0 && !isOver()) {
        result = av_read_frame(m_source, packet);
        if (result >= 0)
            problem = takePacket(*packet);
        else if (!isOver())
            problem = problemAtEnd(result);
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    result = av_write_trailer(m_target);
    if (problem.empty() && result < 0)
        problem = reasonOf(result);
    if (problem.empty() && m_timeline.isEmpty())
        problem = "nothing arrives from " + m_url;
    return problem;
}

std::string StreamCopy::takePacket(AVPacket &packet)
{
    const auto index = static_cast<std::size_t>(packet.stream_index);
    if (packet.dts == AV_NOPTS_VALUE)
        packet.dts = packet.pts;
    // Streams that the source gets later are not in the file's tables.
    if (index >= m_outputs.size() || m_outputs[index].index < 0 || packet.dts == AV_NOPTS_VALUE)
        return {};
    const AVRational base = m_source->streams[index]->time_base;
    const std::int64_t time = av_rescale_q(packet.dts, base, AV_TIME_BASE_Q);
    const std::int64_t shift = av_rescale_q(m_timeline.take(packet.stream_index, time), AV_TIME_BASE_Q, base);
    packet.dts += shift;
    if (packet.pts != AV_NOPTS_VALUE)
        packet.pts += shift;
    if (m_isWhole)
        keepPace();
    m_deadline = Clock::now() + patience;
    return isOver() ? std::string() : writePacket(packet, m_outputs[index]);
}

std::string StreamCopy::writePacket(AVPacket &packet, Output &output)
{
    const AVRational from = m_source->streams[packet.stream_index]->time_base;
    av_packet_rescale_ts(&packet, from, m_target->streams[output.index]->time_base);
    // A stream's times only grow.
    packet.dts = std::max(packet.dts, output.lastDts == INT64_MIN ? packet.dts : output.lastDts + 1);
    if (packet.pts != AV_NOPTS_VALUE)
        packet.pts = std::max(packet.pts, packet.dts);
    output.lastDts = packet.dts;
    packet.stream_index = output.index;
    packet.pos = -1;
    const int result = av_write_frame(m_target, &packet);
    if (!m_writeProblem.empty() || m_io->error < 0)
        return reasonOf(m_io->error);
    return result >= 0 || result == AVERROR(EINVAL) ? std::string() : reasonOf(result);
}
