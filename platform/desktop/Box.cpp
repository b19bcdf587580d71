// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Box.h"

extern "C" {
#include <libavutil/log.h>
}

using namespace Desk;

namespace {

// How long the end of the process waits for streams that do not let go of their players.
constexpr std::chrono::seconds longestFarewell{2};

} // namespace

Box::Box()
{
    // What goes wrong is told by us; the library would write to standard error on its own.
    av_log_set_level(AV_LOG_QUIET);
}

void Box::finish()
{
    players.closeAll();
    PlayerThread::waitForAll(longestFarewell);
    records.finish();
    firmware.finish();
    bootParameters.finish();
    events.finish();
}

Box &Desk::box()
{
    // The box itself stays: a KVR_ function may still be called by a destructor that runs later than ours.
    static Box *const instance = new Box;
    static const struct Finisher
    {
        ~Finisher() { instance->finish(); }
    } finisher;
    return *instance;
}
