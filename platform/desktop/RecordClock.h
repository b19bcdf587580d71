// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Record.h"

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace Desk {

/// The time of which time() tells the seconds. A more exact clock is some milliseconds ahead, and by that one a
/// recording would begin before its time.
std::chrono::system_clock::time_point wallClock();

/// What a schedule asks for at a point of time.
struct DueRecords
{
    std::vector<KVR_ID> begin;      ///< their time has come
    std::vector<KVR_ID> end;        ///< they run, and their time is over
    std::vector<KVR_ID> missed;     ///< they have not begun, and their time is over
    std::chrono::milliseconds next; ///< how long nothing else is due, but short enough to notice a clock that was set
};

DueRecords dueAt(std::chrono::system_clock::time_point now, const std::map<KVR_ID, Record> &records);

/// Gives a recording the state that it has after the box was off: what ran has been interrupted, what should have run
/// was missed. How that came, in words for the log; empty when nothing has happened to it.
std::string fateWhileOff(Record &record, std::chrono::system_clock::time_point now);

} // namespace Desk
