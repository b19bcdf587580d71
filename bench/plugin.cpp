// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The plugin on a platform library that costs nothing.

#include "PluginSubject.h"
#include "Tasks.h"
#include "tests/platform/RecordingPlatform.h"

#include <QApplication>

// Goes before that of the recording platform, whose notes would be measured otherwise.
extern "C" int KVR_GetSpeed(KVR_ID)
{
    return 0;
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    return Tasks::run({[] { return std::make_unique<PluginSubject>(); }, RecordingPlatform::reset});
}
