// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

/// What Landlock keeps a process, and those that it starts, from: abstract sockets, which belong to the network that a
/// box shares with the PC, and signals.
namespace KernelScope {

/// From here on only what these processes make themselves can be reached. Does nothing on kernels before 6.12, or
/// without Landlock. Returns 0 or an errno. The process must have no_new_privs.
int restrict();

} // namespace KernelScope
