// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of tracks, subtitles and teletext.

#include "PlayerCall.h"

using namespace Desk;

namespace {

int trackList(const char *function, KVR_ID id, TrackKind kind, KVR_Track **tracks, int *count)
{
    return withPlayer(function, id, [=](Player &player) -> int {
        if (!tracks || !count)
            return KVR_ERR_INVALID_ARGUMENT;
        return newArray(player.status().tracks->entries(kind), tracks, count);
    });
}

int orFailed(int pid)
{
    return pid < 0 ? static_cast<int>(KVR_ERR_FAILED) : pid;
}

} // namespace

int KVR_GetVideoTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return trackList(__func__, id, TrackKind::Video, tracks, count);
}

int KVR_GetAudioTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return trackList(__func__, id, TrackKind::Audio, tracks, count);
}

int KVR_GetSubtitleTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return trackList(__func__, id, TrackKind::Subtitle, tracks, count);
}

int KVR_GetTeletextTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return trackList(__func__, id, TrackKind::Teletext, tracks, count);
}

int KVR_GetVideoPid(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return orFailed(player.status().videoPid); });
}

int KVR_GetAudioPid(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return orFailed(player.status().audioPid); });
}

int KVR_SetAudioPid(KVR_ID id, int pid)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setAudioPid(pid); });
}

int KVR_GetSubtitlePid(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return orFailed(player.status().subtitlePid); });
}

int KVR_SetSubtitlePid(KVR_ID id, int pid)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setSubtitlePid(pid); });
}

int KVR_GetTeletextPid(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return orFailed(player.status().teletextPid); });
}

int KVR_SetTeletextPid(KVR_ID id, int pid)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setTeletextPid(pid); });
}

int KVR_GetTeletextPage(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().teletextPage; });
}

int KVR_SetTeletextPage(KVR_ID id, int page)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setTeletextPage(page); });
}

int KVR_IsSubtitlesVisible(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().subtitlesVisible ? 1 : 0; });
}

int KVR_SetSubtitlesVisible(KVR_ID id, int visible)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setSubtitlesVisible(visible != 0); });
}

int KVR_IsTeletextVisible(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().teletextVisible ? 1 : 0; });
}

int KVR_SetTeletextVisible(KVR_ID id, int visible)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setTeletextVisible(visible != 0); });
}

int KVR_GetLastMulticastEvent(KVR_ID id, KVR_MulticastEvent *event)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!event)
            return KVR_ERR_INVALID_ARGUMENT;
        *event = player.status().multicast;
        return KVR_OK;
    });
}
