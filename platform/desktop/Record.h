// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <cstdint>
#include <string>

namespace Desk {

/// A recording of the schedule.
struct Record
{
    KVR_ID id = -1;
    std::string url;
    std::string file;        ///< as the page gave it
    std::uint32_t start = 0; ///< as the page gave it, seconds since 1970 UTC
    std::int64_t begin = 0;  ///< when it really begins: the start, or when it was asked for if that is later
    int duration = 0;        ///< seconds
    KVR_RecordState state = KVR_RECORD_SCHEDULED;
    bool ownsFile = false; ///< the file is what this recording wrote

    std::int64_t end() const { return begin + duration; }
    /// In words for the log.
    std::string name() const { return "recording " + std::to_string(id) + " of " + url + " into " + file; }
    bool ended() const { return state != KVR_RECORD_SCHEDULED && state != KVR_RECORD_RUNNING; }
};

} // namespace Desk
