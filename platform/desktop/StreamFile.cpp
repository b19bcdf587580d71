// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StreamFile.h"
#include "StreamError.h"
#include "StreamSource.h"

#include <algorithm>

extern "C" {
#include <libavformat/avformat.h>
}

using namespace Desk;

namespace {

constexpr int bufferSize = 64 * 1024;

} // namespace

StreamFile::~StreamFile()
{
    avformat_free_context(m_context);
    if (m_io)
        av_freep(&m_io->buffer);
    avio_context_free(&m_io);
}

Problem StreamFile::problemOf(int error) const
{
    if (m_writeProblem)
        return "writing: " + *m_writeProblem;
    if (error >= 0)
        return {};
    return "writing: " + streamErrorText(error);
}

Problem StreamFile::addStreams(const StreamSource &source)
{
    m_source = &source.context();
    for (unsigned i = 0; i < m_source->nb_streams; ++i) {
        AVStream *from = m_source->streams[i];
        m_outputs.emplace_back();
        AVStream *to = source.isTaken(i) ? avformat_new_stream(m_context, nullptr) : nullptr;
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
    if (m_context->nb_streams == 0)
        return source.emptiness();
    return {};
}

Problem StreamFile::open(const StreamSource &source)
{
    const int result = avformat_alloc_output_context2(&m_context, nullptr, "mpegts", nullptr);
    if (result < 0)
        return problemOf(result);
    if (Problem problem = addStreams(source))
        return problem;

    auto *buffer = static_cast<unsigned char *>(av_malloc(bufferSize));
    const auto write = [](void *self, std::uint8_t *data, int size) {
        auto &file = *static_cast<StreamFile *>(self);
        file.m_writeProblem = file.m_file.write(data, size);
        return file.m_writeProblem ? AVERROR(EIO) : size;
    };
    m_io = avio_alloc_context(buffer, bufferSize, 1, this, nullptr, write, nullptr);
    if (!m_io) {
        av_free(buffer);
        return "no memory";
    }
    m_context->pb = m_io;
    // What has arrived is in the file, whenever the process is killed.
    m_context->flags |= AVFMT_FLAG_FLUSH_PACKETS | AVFMT_FLAG_CUSTOM_IO;
    return problemOf(avformat_write_header(m_context, nullptr));
}

// Streams that the source gets later are not in the file's tables.
bool StreamFile::has(int stream) const
{
    const auto index = static_cast<std::size_t>(stream);
    return index < m_outputs.size() && m_outputs[index].index >= 0;
}

Problem StreamFile::write(AVPacket &packet)
{
    Output &output = m_outputs[static_cast<std::size_t>(packet.stream_index)];
    const AVRational from = m_source->streams[packet.stream_index]->time_base;
    av_packet_rescale_ts(&packet, from, m_context->streams[output.index]->time_base);
    // A stream's times only grow.
    packet.dts = std::max(packet.dts, output.lastDts == INT64_MIN ? packet.dts : output.lastDts + 1);
    if (packet.pts != AV_NOPTS_VALUE)
        packet.pts = std::max(packet.pts, packet.dts);
    output.lastDts = packet.dts;
    packet.stream_index = output.index;
    packet.pos = -1;
    const int result = av_write_frame(m_context, &packet);
    if (m_writeProblem || m_io->error < 0)
        return problemOf(m_io->error);
    return result == AVERROR(EINVAL) ? Problem() : problemOf(result);
}

Problem StreamFile::finish()
{
    return problemOf(av_write_trailer(m_context));
}
