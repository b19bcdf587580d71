// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StreamSource.h"
#include "Address.h"
#include "StreamError.h"

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/avstring.h>
}

using namespace Desk;

namespace {

constexpr std::chrono::seconds patience{12};
constexpr std::int64_t earlyEnd = 3 * AV_TIME_BASE; // a duration may be this inexact

// Sources come from the network: a recording must not copy the box's own files.
constexpr char protocols[] = "http,https,httpproxy,hls,tls,tcp,udp,rtp,rtsp,rtmp,srt,crypto";

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

StreamSource::StreamSource(const std::string &address)
    : m_address(Address(address).text())
{
}

StreamSource::~StreamSource()
{
    avformat_close_input(&m_context);
}

std::string StreamSource::reasonOf(int error) const
{
    if (error == AVERROR_EXIT || isSilent() || m_stopped)
        return silence();
    return m_address + ": " + streamErrorText(error);
}

Problem StreamSource::open()
{
    const char *protocol = avio_find_protocol_name(m_address.c_str());
    if (protocol && !av_match_name(protocol, protocols))
        return m_address + " is no stream of the network, and nothing else is recorded";
    beginToWait();
    m_context = avformat_alloc_context();
    if (!m_context)
        return "no memory";
    m_context->interrupt_callback.callback = [](void *self) {
        const auto &source = *static_cast<StreamSource *>(self);
        return source.m_stopped || source.isSilent() ? 1 : 0;
    };
    m_context->interrupt_callback.opaque = this;

    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", protocols, 0);
    // A channel that changes the PIDs of its streams goes on as the same streams.
    av_dict_set(&options, "merge_pmt_versions", "1", 0);
    int result = avformat_open_input(&m_context, m_address.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (result >= 0)
        result = avformat_find_stream_info(m_context, nullptr);
    if (result < 0)
        return reasonOf(result);
    m_isWhole = hasEnd();
    beginToWait();
    return {};
}

// The size of a playlist is not that of its stream.
bool StreamSource::hasEnd() const
{
    const bool isPlaylist = std::strcmp(m_context->iformat->name, "hls") == 0;
    return m_context->duration > 0 || (!isPlaylist && m_context->pb && avio_size(m_context->pb) > 0);
}

bool StreamSource::isTaken(unsigned index) const
{
    if (!isCarried(*m_context->streams[index]->codecpar))
        return false;
    // Of several programmes, or variants of one, the best is recorded.
    const int best = av_find_best_stream(m_context, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    const AVProgram *program = best < 0 ? nullptr : av_find_program_from_stream(m_context, nullptr, best);
    if (!program)
        return true;
    const unsigned *begin = program->stream_index;
    const unsigned *end = begin + program->nb_stream_indexes;
    return std::find(begin, end, index) != end;
}

int StreamSource::read(AVPacket &packet)
{
    return av_read_frame(m_context, &packet);
}

void StreamSource::beginToWait()
{
    m_deadline = Clock::now() + patience;
}

Problem StreamSource::problemAtEnd(int result, std::int64_t length) const
{
    // What goes wrong below a demuxer is something else to some of them.
    const int error = m_context->pb ? m_context->pb->error : 0;
    const int cause = error < 0 && error != AVERROR_EOF ? error : result;
    if (cause != AVERROR_EOF && cause != AVERROR(EIO))
        return reasonOf(cause);
    if (!m_isWhole)
        return m_address + " has ended";
    // A duration that was estimated from the size says little.
    const bool isExact = m_context->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
    const bool isShort = isExact && length + earlyEnd < m_context->duration;
    if (cause != AVERROR_EOF || isShort)
        return m_address + " breaks off after " + std::to_string(length / AV_TIME_BASE) + " seconds";
    return {};
}
