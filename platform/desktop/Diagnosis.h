// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"

#include <string>

namespace Desk {

/// Why an address cannot be opened: tries it once more, for two seconds at most. What FFmpeg says reaches only libmpv's
/// first core, whichever core it is about.
Problem diagnose(const std::string &address);

} // namespace Desk
