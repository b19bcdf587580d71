// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"

#include <future>
#include <string>

namespace Desk {

/// Looks up the name of a host on a thread of its own, since a look-up cannot be broken off. The answer comes at once
/// for a number or an empty text. It is why there is no address, or nothing.
std::future<Problem> lookUpName(const std::string &host);

} // namespace Desk
