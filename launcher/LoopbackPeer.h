// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>

#include <netinet/in.h>
#include <sys/types.h>

/// Who has the other end of a connection on this machine.
namespace LoopbackPeer {

/// The user of the socket that is bound to one address and connected to the other, or that listens, if the other is all
/// zero. The kernel answers, so no program can claim to be another user's. Nothing if there is no such socket.
std::optional<uid_t> user(const sockaddr_in &bound, const sockaddr_in &connected);

} // namespace LoopbackPeer
