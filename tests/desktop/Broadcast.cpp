// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Broadcast.h"

#include <QDebug>

#include <array>
#include <bitset>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

constexpr int lineSize = 42; // bytes of a teletext line
constexpr int rows = 24;
constexpr int secondsBetween = 1;
constexpr int packetHeaderSize = 45;  // of teletext, in bytes
constexpr int transportPayload = 184; // bytes of a transport stream packet

// Teletext is sent with the lowest bit first.
char reversed(unsigned byte)
{
    unsigned result = 0;
    for (int bit = 0; bit < 8; ++bit)
        result |= (byte >> bit & 1) << (7 - bit);
    return static_cast<char>(result);
}

unsigned withOddParity(unsigned character)
{
    return std::bitset<8>(character).count() % 2 ? character : character | 0x80;
}

// Four bits with four bits of protection between them.
unsigned hamming(unsigned nibble)
{
    const unsigned d1 = nibble & 1;
    const unsigned d2 = nibble >> 1 & 1;
    const unsigned d3 = nibble >> 2 & 1;
    const unsigned d4 = nibble >> 3 & 1;
    const unsigned p1 = 1 ^ d1 ^ d3 ^ d4;
    const unsigned p2 = 1 ^ d1 ^ d2 ^ d4;
    const unsigned p3 = 1 ^ d1 ^ d2 ^ d3;
    const unsigned p4 = 1 ^ p1 ^ d1 ^ p2 ^ d2 ^ p3 ^ d3 ^ d4;
    return p1 | d1 << 1 | p2 << 2 | d2 << 3 | p3 << 4 | d3 << 5 | p4 << 6 | d4 << 7;
}

// One data unit: its header, the framing code, and the line.
QByteArray dataUnit(const QByteArray &line)
{
    QByteArray unit("\x02\x2c", 2);
    unit += static_cast<char>(0xe0 | (7 + rows % 16)); // some line of the first field
    unit += static_cast<char>(0xe4);
    for (const char byte : line)
        unit += reversed(static_cast<unsigned char>(byte));
    return unit;
}

QByteArray address(int magazine, int row)
{
    const unsigned value = static_cast<unsigned>(magazine % 8 | row << 3);
    return QByteArray(1, static_cast<char>(hamming(value & 15))) + static_cast<char>(hamming(value >> 4));
}

QByteArray headerLine(int page)
{
    QByteArray line = address(page / 100, 0);
    line += static_cast<char>(hamming(static_cast<unsigned>(page % 10)));
    line += static_cast<char>(hamming(static_cast<unsigned>(page / 10 % 10)));
    for (int i = 0; i < 6; ++i) // subcode and control bits; the first one erases what was there
        line += static_cast<char>(hamming(i == 1 ? 8 : 0));
    while (line.size() < lineSize)
        line += static_cast<char>(withOddParity(' '));
    return line;
}

QByteArray textLine(int page, int row)
{
    QByteArray line = address(page / 100, row);
    const int letters = 10 * (page % 10);
    while (line.size() < lineSize)
        line += static_cast<char>(withOddParity(line.size() - 2 < letters ? 'M' : ' '));
    return line;
}

QByteArray teletextPacket(const QList<int> &pages)
{
    QByteArray packet("\x10", 1);
    for (const int page : pages) {
        packet += dataUnit(headerLine(page));
        for (int row = 1; row < rows; ++row)
            packet += dataUnit(textLine(page, row));
    }
    // A page is over when the next one of its magazine begins.
    packet += dataUnit(headerLine(pages.first() / 100 * 100 + 99));
    // Such a packet fills whole packets of the transport stream, together with its own header.
    const QByteArray stuffing = QByteArray("\xff\x2c", 2) + QByteArray(lineSize + 2, '\xff');
    while ((packet.size() + packetHeaderSize) % transportPayload != 0)
        packet += stuffing;
    return packet;
}

AVStream *addStream(AVFormatContext *target, AVCodecID codec, int pid, const char *language)
{
    AVStream *stream = avformat_new_stream(target, nullptr);
    stream->id = pid;
    stream->codecpar->codec_type = AVMEDIA_TYPE_SUBTITLE;
    stream->codecpar->codec_id = codec;
    av_dict_set(&stream->metadata, "language", language, 0);
    return stream;
}

// A white rectangle that stays for some seconds.
QByteArray subtitlePacket()
{
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_DVB_SUBTITLE);
    AVCodecContext *encoder = avcodec_alloc_context3(codec);
    encoder->width = 640;
    encoder->height = 360;
    encoder->time_base = {1, 1000};
    QByteArray packet(65536, '\0');
    if (avcodec_open2(encoder, codec, nullptr) < 0)
        return {};

    using namespace Broadcast;
    QByteArray bitmap(subtitleWidth * subtitleHeight, '\1');
    std::array<std::uint32_t, 4> palette = {0, 0xffffffff, 0xff808080, 0xff404040};
    AVSubtitleRect rect = {};
    rect.x = (encoder->width - subtitleWidth) / 2;
    rect.y = (encoder->height - subtitleHeight) / 2;
    rect.w = subtitleWidth;
    rect.h = subtitleHeight;
    rect.nb_colors = 4;
    rect.type = SUBTITLE_BITMAP;
    rect.data[0] = reinterpret_cast<std::uint8_t *>(bitmap.data());
    rect.linesize[0] = subtitleWidth;
    rect.data[1] = reinterpret_cast<std::uint8_t *>(palette.data());
    AVSubtitleRect *rects[] = {&rect};
    AVSubtitle subtitle = {};
    subtitle.num_rects = 1;
    subtitle.rects = rects;
    subtitle.end_display_time = 10000;
    const int size =
        avcodec_encode_subtitle(encoder, reinterpret_cast<std::uint8_t *>(packet.data()), packet.size(), &subtitle);
    avcodec_free_context(&encoder);
    return packet.left(std::max(size, 0));
}

bool write(AVFormatContext *target, const AVStream *stream, const QByteArray &data, std::int64_t time)
{
    AVPacket *packet = av_packet_alloc();
    bool written = av_new_packet(packet, data.size()) == 0;
    if (written) {
        std::copy(data.begin(), data.end(), packet->data);
        packet->stream_index = stream->index;
        packet->pts = packet->dts = av_rescale_q(time, AV_TIME_BASE_Q, stream->time_base);
        packet->flags = AV_PKT_FLAG_KEY;
        written = av_interleaved_write_frame(target, packet) == 0;
    }
    av_packet_free(&packet);
    return written;
}

} // namespace

bool Broadcast::addSubtitlesAndTeletext(const QByteArray &from, const QByteArray &to, const QList<int> &pages)
{
    AVFormatContext *source = nullptr;
    AVFormatContext *target = nullptr;
    if (avformat_open_input(&source, from, nullptr, nullptr) < 0 || avformat_find_stream_info(source, nullptr) < 0
        || avformat_alloc_output_context2(&target, nullptr, "mpegts", to) < 0)
        return false;
    for (unsigned i = 0; i < source->nb_streams; ++i) {
        AVStream *copy = avformat_new_stream(target, nullptr);
        avcodec_parameters_copy(copy->codecpar, source->streams[i]->codecpar);
        copy->id = source->streams[i]->id;
    }
    const AVStream *subtitles = addStream(target, AV_CODEC_ID_DVB_SUBTITLE, subtitlePid, "deu");
    const AVStream *teletext = addStream(target, AV_CODEC_ID_DVB_TELETEXT, teletextPid, "fra");
    if (avio_open(&target->pb, to, AVIO_FLAG_WRITE) < 0 || avformat_write_header(target, nullptr) < 0)
        return false;

    const QByteArray bitmap = subtitlePacket();
    const QByteArray text = teletextPacket(pages);
    bool written = !bitmap.isEmpty();
    std::int64_t next = 0;
    AVPacket *packet = av_packet_alloc();
    while (written && av_read_frame(source, packet) >= 0) {
        const AVRational base = source->streams[packet->stream_index]->time_base;
        const std::int64_t time = av_rescale_q(packet->dts, base, AV_TIME_BASE_Q);
        if (time >= next) {
            written = write(target, subtitles, bitmap, time) && write(target, teletext, text, time);
            next = time + secondsBetween * AV_TIME_BASE;
        }
        av_packet_rescale_ts(packet, base, target->streams[packet->stream_index]->time_base);
        written = written && av_interleaved_write_frame(target, packet) == 0;
    }
    av_packet_free(&packet);
    written = av_write_trailer(target) == 0 && written;
    avio_closep(&target->pb);
    avformat_free_context(target);
    avformat_close_input(&source);
    return written;
}
