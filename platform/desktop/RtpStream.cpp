// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RtpStream.h"
#include "Address.h"
#include "MpvCore.h"
#include "RtpPacket.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <vector>

extern "C" {
#include <libavformat/avio.h>
}

using namespace Desk;

namespace {

constexpr char scheme[] = "kavro-rtp";
constexpr std::size_t largestPacket = 65536; // bytes

} // namespace

// One opened stream; libmpv calls its functions, and cancels it from another thread.
struct RtpStream::Reader
{
    static int isCancelled(void *cookie) { return static_cast<Reader *>(cookie)->cancelled ? 1 : 0; }
    static void cancel(void *cookie) { static_cast<Reader *>(cookie)->cancelled = true; }
    static void close(void *cookie);
    static std::int64_t read(void *cookie, char *buffer, std::uint64_t size);

    AVIOContext *io = nullptr;
    std::vector<unsigned char> packet;
    RtpPayload rest; // of the packet, still to be read
    std::atomic<bool> cancelled{false};
    std::atomic<bool> closed{false};
};

void RtpStream::Reader::close(void *cookie)
{
    auto &reader = *static_cast<Reader *>(cookie);
    avio_closep(&reader.io);
    std::vector<unsigned char>().swap(reader.packet);
    reader.closed = true;
}

std::int64_t RtpStream::Reader::read(void *cookie, char *buffer, std::uint64_t size)
{
    auto &reader = *static_cast<Reader *>(cookie);
    RtpPayload &rest = reader.rest;
    while (rest.begin == rest.end) {
        const int count = avio_read_partial(reader.io, reader.packet.data(), static_cast<int>(reader.packet.size()));
        if (count <= 0)
            return -1;
        rest = payloadOf(reader.packet, static_cast<std::size_t>(count));
    }
    const std::size_t count = std::min<std::size_t>(size, rest.end - rest.begin);
    std::copy_n(reader.packet.begin() + static_cast<std::ptrdiff_t>(rest.begin), count, buffer);
    rest.begin += count;
    return static_cast<std::int64_t>(count);
}

RtpStream::RtpStream() = default;

RtpStream::~RtpStream() = default;

int RtpStream::open(void *self, char *address, mpv_stream_cb_info *info)
{
    Reader &reader = static_cast<RtpStream *>(self)->m_readers.add();
    const std::string source = Address(address).withScheme("udp");
    const AVIOInterruptCB interrupt = {Reader::isCancelled, &reader};
    if (avio_open2(&reader.io, source.c_str(), AVIO_FLAG_READ, &interrupt, nullptr) < 0) {
        reader.closed = true;
        return MPV_ERROR_LOADING_FAILED;
    }
    reader.packet.resize(largestPacket);
    info->cookie = &reader;
    info->read_fn = Reader::read;
    info->cancel_fn = Reader::cancel;
    info->close_fn = Reader::close;
    return 0;
}

void RtpStream::install(MpvCore &core)
{
    core.addScheme(scheme, this, open);
}

std::string RtpStream::addressFor(const std::string &text)
{
    const Address address(text);
    return address.scheme() == "rtp" ? address.withScheme(scheme) : address.text();
}
