// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0
//
// close-box COMMAND [ARGUMENT...]
//
// Runs a command that has given up what no program of a box needs: the parts of the kernel that sandboxes are left by,
// abstract sockets of the PC's programs, and signals to them. The first process in a box.

#include "KernelScope.h"
#include "SystemCalls.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace {

const int notClosed = 125;
const int notFound = 127;
const int notExecutable = 126;

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fputs("usage: close-box COMMAND [ARGUMENT...]\n", stderr);
        return notClosed;
    }
    const int scopeError = KernelScope::restrict();
    const int error = scopeError ? scopeError : SystemCalls::restrict();
    if (error) {
        std::fprintf(stderr, "in-box: the box cannot be closed (%s); use a kernel with seccomp filters\n",
                     std::strerror(error));
        return notClosed;
    }
    execvp(argv[1], argv + 1);
    std::fprintf(stderr, "in-box: %s: %s\n", argv[1], std::strerror(errno));
    return errno == ENOENT ? notFound : notExecutable;
}
