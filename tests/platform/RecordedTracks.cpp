// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "Results.h"

int KVR_GetVideoTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return recordedArray(tracks, count, "KVR_GetVideoTrackList", id);
}

int KVR_GetAudioTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return recordedArray(tracks, count, "KVR_GetAudioTrackList", id);
}

int KVR_GetSubtitleTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return recordedArray(tracks, count, "KVR_GetSubtitleTrackList", id);
}

int KVR_GetTeletextTrackList(KVR_ID id, KVR_Track **tracks, int *count)
{
    return recordedArray(tracks, count, "KVR_GetTeletextTrackList", id);
}

int KVR_GetVideoPid(KVR_ID id)
{
    return recordedInt("KVR_GetVideoPid", id);
}

int KVR_GetAudioPid(KVR_ID id)
{
    return recordedInt("KVR_GetAudioPid", id);
}

int KVR_SetAudioPid(KVR_ID id, int pid)
{
    return recordedInt("KVR_SetAudioPid", id, pid);
}

int KVR_GetSubtitlePid(KVR_ID id)
{
    return recordedInt("KVR_GetSubtitlePid", id);
}

int KVR_SetSubtitlePid(KVR_ID id, int pid)
{
    return recordedInt("KVR_SetSubtitlePid", id, pid);
}

int KVR_GetTeletextPid(KVR_ID id)
{
    return recordedInt("KVR_GetTeletextPid", id);
}

int KVR_SetTeletextPid(KVR_ID id, int pid)
{
    return recordedInt("KVR_SetTeletextPid", id, pid);
}

int KVR_GetTeletextPage(KVR_ID id)
{
    return recordedInt("KVR_GetTeletextPage", id);
}

int KVR_SetTeletextPage(KVR_ID id, int page)
{
    return recordedInt("KVR_SetTeletextPage", id, page);
}

int KVR_IsSubtitlesVisible(KVR_ID id)
{
    return recordedInt("KVR_IsSubtitlesVisible", id);
}

int KVR_SetSubtitlesVisible(KVR_ID id, int visible)
{
    return recordedInt("KVR_SetSubtitlesVisible", id, visible);
}

int KVR_IsTeletextVisible(KVR_ID id)
{
    return recordedInt("KVR_IsTeletextVisible", id);
}

int KVR_SetTeletextVisible(KVR_ID id, int visible)
{
    return recordedInt("KVR_SetTeletextVisible", id, visible);
}

int KVR_GetLastMulticastEvent(KVR_ID id, KVR_MulticastEvent *event)
{
    return recordedStructure(event, "KVR_GetLastMulticastEvent", id);
}
