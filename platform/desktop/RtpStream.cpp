// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RtpStream.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mpv/stream_cb.h>
#include <stdexcept>
#include <string_view>
#include <vector>

extern "C" {
#include <libavformat/avio.h>
}

using namespace Desk;

namespace {

constexpr std::string_view rtpScheme = "rtp";
constexpr std::string_view udpScheme = "udp";
constexpr char scheme[] = "kavro-rtp";
constexpr std::size_t largestPacket = 65536; // bytes

// One opened stream; libmpv calls its functions, and cancels it from another thread.
struct Reader
{
    Reader() = default;
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    ~Reader() { avio_closep(&io); }

    AVIOContext *io = nullptr;
    std::vector<unsigned char> packet;
    std::size_t begin = 0; // of what is still to be read in the packet
    std::size_t end = 0;
    std::atomic<bool> cancelled{false};
};

int isCancelled(void *reader)
{
    return static_cast<Reader *>(reader)->cancelled ? 1 : 0;
}

// Where the payload lies in a packet: behind a header of 12 bytes, a list of sources and an extension, before padding.
// Nowhere when it is no packet of RTP.
void findPayload(Reader &reader, std::size_t size)
{
    const std::vector<unsigned char> &packet = reader.packet;
    reader.begin = reader.end = 0;
    constexpr std::size_t header = 12;
    constexpr std::size_t word = 4;
    if (size < header || packet[0] >> 6 != 2)
        return;
    std::size_t begin = header + word * (packet[0] & 0x0fU);
    if (packet[0] & 0x10U) {
        if (begin + word > size)
            return;
        begin += word + word * (packet[begin + 2] * 256U + packet[begin + 3]);
    }
    const std::size_t padding = packet[0] & 0x20U ? packet[size - 1] : 0;
    if (begin + padding < size) {
        reader.begin = begin;
        reader.end = size - padding;
    }
}

std::int64_t readStream(void *cookie, char *buffer, std::uint64_t size)
{
    auto &reader = *static_cast<Reader *>(cookie);
    while (reader.begin == reader.end) {
        const int count = avio_read_partial(reader.io, reader.packet.data(), static_cast<int>(reader.packet.size()));
        if (count <= 0)
            return -1;
        findPayload(reader, static_cast<std::size_t>(count));
    }
    const std::size_t count = std::min<std::size_t>(size, reader.end - reader.begin);
    std::copy_n(reader.packet.begin() + static_cast<std::ptrdiff_t>(reader.begin), count, buffer);
    reader.begin += count;
    return static_cast<std::int64_t>(count);
}

void cancelStream(void *cookie)
{
    static_cast<Reader *>(cookie)->cancelled = true;
}

void closeStream(void *cookie)
{
    delete static_cast<Reader *>(cookie);
}

int openStream(void *, char *address, mpv_stream_cb_info *info)
{
    auto reader = std::make_unique<Reader>();
    reader->packet.resize(largestPacket);
    const std::string source = std::string(udpScheme) + std::strchr(address, ':');
    const AVIOInterruptCB interrupt = {isCancelled, reader.get()};
    if (avio_open2(&reader->io, source.c_str(), AVIO_FLAG_READ, &interrupt, nullptr) < 0)
        return MPV_ERROR_LOADING_FAILED;
    info->cookie = reader.release();
    info->read_fn = readStream;
    info->cancel_fn = cancelStream;
    info->close_fn = closeStream;
    return 0;
}

} // namespace

void RtpStream::install(mpv_handle *core)
{
    const int result = mpv_stream_cb_add_ro(core, scheme, nullptr, openStream);
    if (result < 0)
        throw std::runtime_error(std::string("libmpv takes no packets from us: ") + mpv_error_string(result));
}

std::string RtpStream::addressFor(const std::string &address)
{
    const std::size_t colon = address.find("://");
    const bool ours = colon != std::string::npos && address.compare(0, colon, rtpScheme) == 0;
    return ours ? scheme + address.substr(colon) : address;
}
