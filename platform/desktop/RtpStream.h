// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <list>
#include <mpv/stream_cb.h>
#include <mutex>
#include <string>

namespace Desk {

/// Lets a player core read transport streams that come in RTP packets. Left to itself it would take the packets with
/// all their headers for the stream, or lose the PIDs. Outlives the core.
class RtpStream
{
public:
    RtpStream();
    RtpStream(const RtpStream &) = delete;
    RtpStream &operator=(const RtpStream &) = delete;
    ~RtpStream();

    void install(mpv_handle *core);

    /// The address by which the core reads what an address of RTP stands for; any other address as it is.
    static std::string addressFor(const std::string &address);

private:
    struct Reader;
    Reader &newReader();
    static int open(void *self, char *address, mpv_stream_cb_info *info);

    std::mutex m_mutex;
    std::list<Reader> m_readers; // all that there were, since the core may cancel one that it has closed
};

} // namespace Desk
