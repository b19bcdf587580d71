// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <mpv/client.h>
#include <string>

namespace Desk::RtpStream {

/// Lets a player core read transport streams that come in RTP packets. Left to itself it would take the packets with
/// all their headers for the stream, or lose the PIDs.
void install(mpv_handle *core);

/// The address by which the core reads what an address of RTP stands for; any other address as it is.
std::string addressFor(const std::string &address);

} // namespace Desk::RtpStream
