// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of players and recordings: this box has neither yet.

#include "stbapi.h"

KVR_ID KVR_CreatePlayer(void)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_ClosePlayer(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetPlayersCount(void)
{
    return 0;
}

int KVR_GetPlayerState(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_PlayFile(KVR_ID, const char *, long long, long long, double, const char *, int, int, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_PlayStream(KVR_ID, const char *, int, int, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_PlayHttp(KVR_ID, const char *, const char *, int, int, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_PlayRtsp(KVR_ID, const char *, long long, int, int, int, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_PlayMagnet(KVR_ID, const char *, const char *, long long, long long, long long, double, int, int, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_Pause(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_Stop(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_Continue(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_NextFrame(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetPosition(KVR_ID, long long)
{
    return KVR_ERR_NOT_SUPPORTED;
}

long long KVR_GetPosition(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

long long KVR_GetDuration(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetSpeed(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetSpeed(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetVideoTrackList(KVR_ID, KVR_Track **, int *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetAudioTrackList(KVR_ID, KVR_Track **, int *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetSubtitleTrackList(KVR_ID, KVR_Track **, int *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetTeletextTrackList(KVR_ID, KVR_Track **, int *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetVideoPid(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetAudioPid(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetAudioPid(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetSubtitlePid(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetSubtitlePid(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetTeletextPid(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetTeletextPid(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetTeletextPage(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetTeletextPage(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_IsSubtitlesVisible(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetSubtitlesVisible(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_IsTeletextVisible(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetTeletextVisible(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetLastMulticastEvent(KVR_ID, KVR_MulticastEvent *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetVolume(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetVolume(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetMute(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_IsMute(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetZoom(KVR_ID, double)
{
    return KVR_ERR_NOT_SUPPORTED;
}

double KVR_GetZoom(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

double KVR_GetFps(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetPlayerViewPort(KVR_ID, const KVR_Rect *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetPlayerViewPort(KVR_ID, KVR_Rect *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetPlayerAlphaLevel(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetPlayerAlphaLevel(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetPlayerVisible(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_IsPlayerVisible(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetPlayerDisplayMode(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetPlayerDisplayMode(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetOrder(const int *, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetOrder(int **, int *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

KVR_ID KVR_AddRecord(const char *, const char *, uint32_t, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetRecordsList(KVR_Record **, int *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_GetRecordStatus(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetRecordStartTime(KVR_ID, uint32_t)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetRecordDuration(KVR_ID, int)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetRecordFilename(KVR_ID, const char *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetRecordUrl(KVR_ID, const char *)
{
    return KVR_ERR_NOT_SUPPORTED;
}

const char *KVR_GetRecordFilename(KVR_ID)
{
    return "";
}

int KVR_CleanUpRecords(void)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_DeleteRecord(KVR_ID)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_SetRecordsSharedCallback(KVR_EventHandler)
{
    return KVR_ERR_NOT_SUPPORTED;
}

int KVR_CleanRecordsSharedCallback(void)
{
    return KVR_ERR_NOT_SUPPORTED;
}
