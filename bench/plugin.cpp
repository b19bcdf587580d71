// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The plugin on a platform library that costs nothing, and on a disk that takes its time.

#include "PluginSubject.h"
#include "Tasks.h"
#include "tests/platform/RecordingPlatform.h"

#include <QApplication>

#include <chrono>
#include <thread>

#include <unistd.h>

// Goes before that of the recording platform, whose notes would be measured otherwise.
extern "C" int KVR_GetSpeed(KVR_ID)
{
    return 0;
}

namespace {

int syncSlowly()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    return 0;
}

} // namespace

// In place of the C library's.
extern "C" int fsync(int)
{
    return syncSlowly();
}

extern "C" int fdatasync(int)
{
    return syncSlowly();
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    return Tasks::run({[] { return std::make_unique<PluginSubject>(); }, RecordingPlatform::reset});
}
