// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "TrackList.h"

#include <memory>

namespace Desk {

/// What the KVR_ functions tell about a player, apart from its window.
struct PlayerStatus
{
    KVR_PlayerState state = KVR_PLAYER_IDLE;
    /// Counts what has been played and stopped; what an older session tells is out of date.
    unsigned session = 0;
    bool loaded = false; ///< the stream is open and its tracks are known
    bool seekable = false;
    long long position = 0; ///< milliseconds
    unsigned seeks = 0;     ///< ordered since the session began; positions of the time before are out of date
    long long duration = 0; ///< milliseconds, 0 when not known
    int speed = 1;
    double fps = 0;
    int pictureWidth = 0;
    int pictureHeight = 0;
    std::shared_ptr<const TrackList> tracks = std::make_shared<TrackList>();
    int videoPid = -1; ///< chosen, -1 when none is
    int audioPid = -1;
    int subtitlePid = -1;
    int teletextPid = -1;
    int teletextPage = 100;
    bool subtitlesVisible = true;
    bool teletextVisible = false;
    int volume = 100;
    bool mute = false;
    double zoom = 1.0;
    int displayMode = KVR_DISPLAY_LETTERBOX;
    KVR_MulticastEvent multicast = {};

    /// Back to what holds before anything is loaded.
    void reset(KVR_PlayerState newState);

    /// The same for a new session.
    void beginSession(KVR_PlayerState newState);
};

/// The types of the events that tell of the difference between two states of a player.
std::vector<int> eventsBetween(const PlayerStatus &before, const PlayerStatus &after);

} // namespace Desk
