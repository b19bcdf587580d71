// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

/// The system calls that a process in a box, and those that it starts, may make.
namespace SystemCalls {

/// From here on those that only help to leave a sandbox, or to look into other processes, fail with EPERM, and new
/// kinds of sockets with EAFNOSUPPORT. Returns 0 or an errno. The process must have no_new_privs.
int restrict();

} // namespace SystemCalls
