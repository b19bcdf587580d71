// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <string>

extern "C" {
#include <libavutil/error.h>
}

namespace Desk {

/// What FFmpeg says of one of its errors.
inline std::string streamErrorText(int error)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text = {};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

} // namespace Desk
