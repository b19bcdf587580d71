// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>

namespace Desk {

/// Threads that nobody waits for, because a dead host, a name server or a disk may hold them as long as it likes.
namespace LooseThreads {

/// Runs a task on such a thread. Throws std::system_error when there can be no further one.
void run(std::function<void()> task);

/// Waits until no task is left in the process. False when some still run after timeout.
bool waitForAll(std::chrono::milliseconds timeout);

} // namespace LooseThreads

} // namespace Desk
