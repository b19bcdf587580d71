// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Desk {

/// Whether an address is one that a player plays: a file of the box's, or a stream of the network.
bool isPlayable(const std::string &address);

} // namespace Desk
