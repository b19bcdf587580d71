// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Desk {

/// Writes "stbapi: <text>" as one line to standard error. Control characters become blanks, so that a text from outside
/// stays on its line. Any thread.
void log(const std::string &text);

} // namespace Desk
