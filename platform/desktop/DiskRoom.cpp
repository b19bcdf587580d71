// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DiskRoom.h"

#include <algorithm>
#include <filesystem>

using namespace Desk;

namespace {

// What pages download leaves this much of the disk: to recordings, to the box's own files and to the PC.
constexpr std::int64_t diskReserve = 256LL << 20;

} // namespace

Problem Desk::problemOfSize(std::int64_t size, std::int64_t largest, const std::string &folder)
{
    std::error_code ignored;
    const auto available = static_cast<std::int64_t>(std::filesystem::space(folder, ignored).available);
    if (size <= std::min(largest, available - diskReserve))
        return std::nullopt;
    return "its " + std::to_string(size) + " bytes are more than this box can keep";
}
