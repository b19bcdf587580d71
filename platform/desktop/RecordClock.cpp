// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordClock.h"

#include <algorithm>
#include <ctime>

using namespace Desk;

namespace {

using Time = std::chrono::system_clock::time_point;

constexpr std::chrono::seconds longestPause{1};

std::int64_t secondOf(Time time)
{
    return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
}

} // namespace

std::chrono::system_clock::time_point Desk::wallClock()
{
    timespec time = {};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
    return Time(std::chrono::duration_cast<Time::duration>(std::chrono::seconds(time.tv_sec)
                                                           + std::chrono::nanoseconds(time.tv_nsec)));
}

DueRecords Desk::dueAt(Time now, const std::map<KVR_ID, Record> &records)
{
    DueRecords due;
    due.next = longestPause;
    const auto clock = std::chrono::floor<std::chrono::milliseconds>(now.time_since_epoch());
    const std::int64_t second = secondOf(now);
    const auto lookAt = [&](std::int64_t time) {
        if (time > second && time <= second + longestPause.count())
            due.next = std::min(due.next, std::chrono::seconds(time) - clock);
    };
    for (const auto &[id, record] : records) {
        if (record.ended())
            continue;
        const bool isScheduled = record.state == KVR_RECORD_SCHEDULED;
        if (record.end() <= second)
            (isScheduled ? due.missed : due.end).push_back(id);
        else if (isScheduled && record.begin <= second)
            due.begin.push_back(id);
        lookAt(record.begin);
        lookAt(record.end());
    }
    return due;
}

std::string Desk::fateWhileOff(Record &record, Time now)
{
    if (record.state == KVR_RECORD_RUNNING) {
        record.state = KVR_RECORD_INTERRUPTED;
        return "was interrupted: the box went off";
    }
    if (record.state == KVR_RECORD_SCHEDULED && record.end() <= secondOf(now)) {
        record.state = KVR_RECORD_FAILED;
        return "failed: the box was off at its time";
    }
    return {};
}
