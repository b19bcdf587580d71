// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <vector>

namespace Desk {

/// Where the payload of a packet lies, in bytes from its beginning.
struct RtpPayload
{
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// The payload of the packet in the first size bytes of a buffer; nothing when it is no packet of RTP, or has none.
RtpPayload payloadOf(const std::vector<unsigned char> &buffer, std::size_t size);

} // namespace Desk
