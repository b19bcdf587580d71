// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Log.h"

#include <algorithm>
#include <unistd.h>

void Desk::log(const std::string &text)
{
    std::string line = "stbapi: " + text;
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
    line += '\n';

    // One write, so that the lines of several threads do not mix.
    const char *rest = line.data();
    std::size_t size = line.size();
    while (size > 0) {
        const ssize_t written = ::write(STDERR_FILENO, rest, size);
        if (written <= 0)
            return;
        rest += written;
        size -= static_cast<std::size_t>(written);
    }
}
