// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

/// The box-wide volume and mute, kept in a file from one player to the next. Each function opens the file anew.
namespace SoundSettings {

/// The volume of the player closed last; 0 without a file.
int volume();
void setVolume(int volume);

/// 1 if the player closed last was mute, else 0; 0 without a file.
int mute();
void setMute(int mute);

} // namespace SoundSettings
