// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Box.h"
#include "BoxPaths.h"
#include "DeskBox.h"
#include "Log.h"
#include "LooseThreads.h"

#include <pthread.h>
#include <system_error>
#include <unistd.h>

extern "C" {
#include <libavutil/log.h>
}

using namespace Desk;

namespace {

// How long the end of the process waits for what a dead host or name server may hold.
constexpr std::chrono::seconds longestFarewell{2};

// How long a program may take to set itself up, before it shares its environment and its limits with recordings.
constexpr std::chrono::milliseconds settling{300};

constexpr std::size_t stackSize = 1 << 20;

// Makes the recordings that are due when the library is loaded, without a call, if there is a schedule: in a box. Any
// other program that has the library, on the PC, leaves the files of that name alone.
class ScheduleStarter
{
public:
    ScheduleStarter()
    {
        if (::access(DeskBox::sign, F_OK) != 0 || ::access(BoxPaths::records, F_OK) != 0)
            return;
        // Until the program has set its own, threads have a stack like the main one's, of 256 MB.
        pthread_attr_t usual;
        pthread_attr_t small;
        if (pthread_getattr_default_np(&usual) != 0 || pthread_attr_init(&small) != 0)
            return;
        pthread_attr_setstacksize(&small, stackSize);
        pthread_setattr_default_np(&small);
        try {
            m_queue.postAt(TaskQueue::Clock::now() + settling, [] { box().records.start(); });
        } catch (const std::system_error &error) {
            log(std::string("the recordings wait for a page to ask for them: ") + error.what());
        }
        pthread_setattr_default_np(&usual);
        pthread_attr_destroy(&small);
        pthread_attr_destroy(&usual);
    }

private:
    TaskQueue m_queue;
};

const ScheduleStarter starter; // clazy:exclude=non-pod-global-static (to run when the library is loaded is its purpose)

} // namespace

Box::Box()
{
    // What goes wrong is told by us; the library would write to standard error on its own.
    av_log_set_level(AV_LOG_QUIET);
}

// What is only a matter of the disk comes first; what is held then may be left behind.
void Box::finish()
{
    bootParameters.finish();
    players.closeAll();
    try {
        LooseThreads::run([this] { records.finish(); });
        LooseThreads::run([this] { firmware.finish(); });
    } catch (const std::system_error &error) {
        log(std::string("recordings and upgrades end with the process: ") + error.what());
    }
    LooseThreads::waitForAll(longestFarewell);
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
