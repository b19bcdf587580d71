// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayerStatus.h"

#include <cstring>

using namespace Desk;

void PlayerStatus::reset(KVR_PlayerState newState)
{
    const PlayerStatus kept = *this;
    *this = PlayerStatus();
    state = newState;
    session = kept.session;
    teletextPage = kept.teletextPage;
    subtitlesVisible = kept.subtitlesVisible;
    teletextVisible = kept.teletextVisible;
    volume = kept.volume;
    mute = kept.mute;
    zoom = kept.zoom;
    displayMode = kept.displayMode;
    multicast = kept.multicast;
}

void PlayerStatus::beginSession(KVR_PlayerState newState)
{
    reset(newState);
    ++session;
}

std::vector<int> Desk::eventsBetween(const PlayerStatus &before, const PlayerStatus &after)
{
    const auto tracksDiffer = [&](TrackKind kind) {
        return before.tracks != after.tracks && !before.tracks->sameTracks(*after.tracks, kind);
    };
    const bool video = tracksDiffer(TrackKind::Video);
    const bool audio = tracksDiffer(TrackKind::Audio);
    const bool subtitles = tracksDiffer(TrackKind::Subtitle);
    const bool teletext = tracksDiffer(TrackKind::Teletext);

    const struct
    {
        int type;
        bool differs;
    } rows[] = {
        {KVR_EVENT_STATE, before.state != after.state},
        {KVR_EVENT_METADATA, before.duration != after.duration || video || audio || subtitles || teletext},
        {KVR_EVENT_AUDIO, audio || before.audioPid != after.audioPid},
        {KVR_EVENT_VIDEO,
         video || before.videoPid != after.videoPid || before.pictureWidth != after.pictureWidth
             || before.pictureHeight != after.pictureHeight},
        {KVR_EVENT_SUBTITLES,
         subtitles || before.subtitlePid != after.subtitlePid || before.subtitlesVisible != after.subtitlesVisible},
        {KVR_EVENT_VOLUME, before.volume != after.volume},
        {KVR_EVENT_ZOOM, before.zoom != after.zoom},
        {KVR_EVENT_MUTE, before.mute != after.mute},
        {KVR_EVENT_MULTICAST, std::memcmp(&before.multicast, &after.multicast, sizeof after.multicast) != 0},
        {KVR_EVENT_TELETEXT_PID, teletext || before.teletextPid != after.teletextPid},
        {KVR_EVENT_TELETEXT_PAGE,
         before.teletextPage != after.teletextPage || before.teletextVisible != after.teletextVisible},
    };
    std::vector<int> types;
    for (const auto &row : rows) {
        if (row.differs)
            types.push_back(row.type);
    }
    return types;
}
