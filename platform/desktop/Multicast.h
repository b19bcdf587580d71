// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Desk {

/// "group:port" of a stream address such as udp://@239.0.0.1:1234 that means a multicast group; otherwise empty.
std::string multicastGroup(const std::string &address);

} // namespace Desk
