// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace Desk {

/// What went wrong, in words for the log; nothing did when there is no value.
using Problem = std::optional<std::string>;

} // namespace Desk
