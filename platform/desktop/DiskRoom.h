// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"

#include <cstdint>
#include <string>

namespace Desk {

/// Why a download of so many bytes does not go into a folder: it is larger than any such file may be, or would leave
/// less than the reserve on the disk.
Problem problemOfSize(std::int64_t size, std::int64_t largest, const std::string &folder);

} // namespace Desk
