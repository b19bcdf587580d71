// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Desk {

/// Why an address cannot be opened: tries it once more, for two seconds at most. Empty when that leads to no error.
/// libmpv tells only its first core what FFmpeg says, and of the others only that they fail.
std::string diagnose(const std::string &address);

} // namespace Desk
