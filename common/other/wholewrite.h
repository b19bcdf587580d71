// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

namespace Common {

/// Writes all of it to a descriptor that waits, whatever signals interrupt it. False with errno when it cannot; some
/// may have been written then.
bool writeWhole(int file, const void *data, std::size_t size);

} // namespace Common
