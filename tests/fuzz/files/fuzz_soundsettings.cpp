// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "jsapi/SoundSettings.h"

#include <QDir>

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    dropMessages();
    static const QString folder = "/home/user/config/config_files/";
    static const bool made = QDir("/box").exists() && QDir().mkpath(folder);
    require(made, "this runs in a box");
    writeFile(folder + "qtstbapi.conf", bytes(data, size));

    SoundSettings::volume();
    const int mute = SoundSettings::mute();
    require(mute == 0 || mute == 1, "mute is 0 or 1");
    SoundSettings::setVolume(41);
    require(SoundSettings::volume() == 41, "a volume is kept over any file");
    SoundSettings::setMute(mute);
    require(SoundSettings::volume() == 41, "setting mute leaves the volume alone");
    SoundSettings::setVolume(42);
    require(SoundSettings::mute() == mute, "setting the volume leaves mute alone");
    return 0;
}
