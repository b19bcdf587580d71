// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <optional>

#include <sys/resource.h>

/// What the process inside a box may use of the PC. A limit that the user has set lower stays.
namespace Limits {

/// For this process and those that it starts.
void set();
/// The memory that a box may take, in bytes; nothing if it is not limited.
std::optional<rlim_t> memory();
/// What this process takes of it now. May be called by a handler of signals.
rlim_t memoryTaken();
/// A limit as text: "4 GB".
QString memoryText(rlim_t bytes);
/// Inside: lets each new thread have a stack of the usual size, since a large one counts as memory whether it is used
/// or not.
void keepThreadsSmall();

} // namespace Limits
