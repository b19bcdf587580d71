// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RtpPacket.h"

// It lies behind a header of 12 bytes, a list of sources and an extension, before padding.
Desk::RtpPayload Desk::payloadOf(const std::vector<unsigned char> &buffer, std::size_t size)
{
    constexpr std::size_t header = 12;
    constexpr std::size_t word = 4;
    if (size < header || buffer[0] >> 6 != 2)
        return {};
    std::size_t begin = header + word * (buffer[0] & 0x0fU);
    if (buffer[0] & 0x10U) {
        if (begin + word > size)
            return {};
        begin += word + word * (buffer[begin + 2] * 256U + buffer[begin + 3]);
    }
    const std::size_t padding = buffer[0] & 0x20U ? buffer[size - 1] : 0;
    return begin + padding < size ? RtpPayload{begin, size - padding} : RtpPayload{};
}
