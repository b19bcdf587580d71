// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "common/other/wholewrite.h"

#include <cerrno>

#include <unistd.h>

bool Common::writeWhole(int file, const void *data, std::size_t size)
{
    const char *rest = static_cast<const char *>(data);
    while (size > 0) {
        const ssize_t written = ::write(file, rest, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        rest += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}
