// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "EventSource.h"
#include "Results.h"

KVR_ID KVR_CreatePlayer()
{
    return recordedNewId("KVR_CreatePlayer");
}

int KVR_ClosePlayer(KVR_ID id)
{
    const int result = recordedInt("KVR_ClosePlayer", id);
    if (result >= 0)
        EventSource::instance().removeHandlersOf(id);
    return result;
}

int KVR_GetPlayersCount()
{
    return recordedInt("KVR_GetPlayersCount");
}

int KVR_GetPlayerState(KVR_ID id)
{
    return recordedInt("KVR_GetPlayerState", id);
}

int KVR_PlayFile(KVR_ID id, const char *path, long long position, long long duration, double fps, const char *subtitles,
                 int videoPid, int audioPid, int subtitlePid)
{
    return recordedInt("KVR_PlayFile", id, path, position, duration, fps, subtitles, videoPid, audioPid, subtitlePid);
}

int KVR_PlayStream(KVR_ID id, const char *url, int videoPid, int audioPid, int subtitlePid)
{
    return recordedInt("KVR_PlayStream", id, url, videoPid, audioPid, subtitlePid);
}

int KVR_PlayHttp(KVR_ID id, const char *url, const char *options, int videoPid, int audioPid, int subtitlePid)
{
    return recordedInt("KVR_PlayHttp", id, url, options, videoPid, audioPid, subtitlePid);
}

int KVR_PlayRtsp(KVR_ID id, const char *url, long long position, int mode, int videoPid, int audioPid, int subtitlePid)
{
    return recordedInt("KVR_PlayRtsp", id, url, position, mode, videoPid, audioPid, subtitlePid);
}

int KVR_PlayMagnet(KVR_ID id, const char *magnet, const char *name, long long size, long long position,
                   long long duration, double fps, int videoPid, int audioPid, int subtitlePid)
{
    return recordedInt("KVR_PlayMagnet", id, magnet, name, size, position, duration, fps, videoPid, audioPid,
                       subtitlePid);
}

int KVR_Pause(KVR_ID id)
{
    return recordedInt("KVR_Pause", id);
}

int KVR_Stop(KVR_ID id)
{
    return recordedInt("KVR_Stop", id);
}

int KVR_Continue(KVR_ID id)
{
    return recordedInt("KVR_Continue", id);
}

int KVR_NextFrame(KVR_ID id)
{
    return recordedInt("KVR_NextFrame", id);
}

int KVR_SetPosition(KVR_ID id, long long position)
{
    return recordedInt("KVR_SetPosition", id, position);
}

long long KVR_GetPosition(KVR_ID id)
{
    return recordedLongLong("KVR_GetPosition", id);
}

long long KVR_GetDuration(KVR_ID id)
{
    return recordedLongLong("KVR_GetDuration", id);
}

int KVR_SetSpeed(KVR_ID id, int speed)
{
    return recordedInt("KVR_SetSpeed", id, speed);
}

int KVR_GetSpeed(KVR_ID id)
{
    return recordedInt("KVR_GetSpeed", id);
}
