// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "StreamReaders.h"

#include <mpv/stream_cb.h>
#include <string>

namespace Desk {

class MpvCore;

/// Lets a player core read transport streams that come in RTP packets. Left to itself it would take the packets with
/// all their headers for the stream, or lose the PIDs. Outlives the core.
class RtpStream
{
public:
    RtpStream();
    RtpStream(const RtpStream &) = delete;
    RtpStream &operator=(const RtpStream &) = delete;
    ~RtpStream();

    void install(MpvCore &core);

    /// The address by which the core reads what an address stands for.
    static std::string addressFor(const std::string &address);

private:
    struct Reader;
    static int open(void *self, char *address, mpv_stream_cb_info *info);

    StreamReaders<Reader> m_readers;
};

} // namespace Desk
