// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "GrowingFile.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sys/stat.h>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
}

using namespace Desk;

namespace {

// Has the last pictures and sounds of any broadcast, in bytes.
constexpr std::int64_t tail = 1 << 20;

// Nothing else is to be opened on a guess: a playlist would bring in all that it names.
bool beginsWithTransportPackets(const std::string &name)
{
    constexpr std::size_t packetSize = 188;
    constexpr int sign = 0x47; // of each packet's beginning
    std::array<char, packetSize + 1> begin = {};
    std::ifstream(name, std::ios::binary).read(begin.data(), begin.size());
    return begin.front() == sign && begin.back() == sign;
}

double secondsOf(const AVFormatContext &stream, const AVPacket &packet)
{
    return static_cast<double>(packet.pts) * av_q2d(stream.streams[packet.stream_index]->time_base);
}

} // namespace

GrowingFile::GrowingFile(const std::string &name)
    : m_name(name)
    , m_size(size())
{
}

GrowingFile::~GrowingFile()
{
    avformat_close_input(&m_stream);
}

std::int64_t GrowingFile::size() const
{
    struct stat status = {};
    return ::stat(m_name.c_str(), &status) == 0 ? status.st_size : 0;
}

bool GrowingFile::open()
{
    if (m_stream)
        return true;
    if (m_isOther)
        return false;
    const AVInputFormat *format = av_find_input_format("mpegts");
    m_isOther =
        !beginsWithTransportPackets(m_name) || avformat_open_input(&m_stream, m_name.c_str(), format, nullptr) < 0;
    if (m_stream)
        m_stream->flags |= AVFMT_FLAG_NOPARSE; // the times are all that is read
    return m_stream;
}

std::optional<double> GrowingFile::readEnd()
{
    AVPacket *packet = av_packet_alloc();
    if (!packet)
        return std::nullopt;
    // A clock that begins anew is told from the one before by the first packets of the file.
    if (!std::exchange(m_isBegun, true) && av_read_frame(m_stream, packet) >= 0)
        av_packet_unref(packet);
    std::optional<double> end;
    if (av_seek_frame(m_stream, -1, std::max<std::int64_t>(0, m_size - tail), AVSEEK_FLAG_BYTE) >= 0) {
        for (; av_read_frame(m_stream, packet) >= 0; av_packet_unref(packet)) {
            const AVMediaType type = m_stream->streams[packet->stream_index]->codecpar->codec_type;
            if (packet->pts != AV_NOPTS_VALUE && (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO))
                end = std::max(end.value_or(0), secondsOf(*m_stream, *packet));
        }
    }
    av_packet_free(&packet);
    return end;
}

std::optional<double> GrowingFile::takeEnd()
{
    const std::int64_t now = size();
    if (now <= m_size || !open())
        return std::nullopt;
    m_size = now;
    return readEnd();
}
