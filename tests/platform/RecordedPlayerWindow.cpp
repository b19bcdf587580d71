// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "Results.h"

int KVR_SetVolume(KVR_ID id, int volume)
{
    return recordedInt("KVR_SetVolume", id, volume);
}

int KVR_GetVolume(KVR_ID id)
{
    return recordedInt("KVR_GetVolume", id);
}

int KVR_SetMute(KVR_ID id, int mute)
{
    return recordedInt("KVR_SetMute", id, mute);
}

int KVR_IsMute(KVR_ID id)
{
    return recordedInt("KVR_IsMute", id);
}

int KVR_SetZoom(KVR_ID id, double zoom)
{
    return recordedInt("KVR_SetZoom", id, zoom);
}

double KVR_GetZoom(KVR_ID id)
{
    return recordedDouble("KVR_GetZoom", id);
}

double KVR_GetFps(KVR_ID id)
{
    return recordedDouble("KVR_GetFps", id);
}

int KVR_SetPlayerViewPort(KVR_ID id, const KVR_Rect *window)
{
    return recordedInt("KVR_SetPlayerViewPort", id, window);
}

int KVR_GetPlayerViewPort(KVR_ID id, KVR_Rect *window)
{
    return recordedStructure(window, "KVR_GetPlayerViewPort", id);
}

int KVR_SetPlayerAlphaLevel(KVR_ID id, int alpha)
{
    return recordedInt("KVR_SetPlayerAlphaLevel", id, alpha);
}

int KVR_GetPlayerAlphaLevel(KVR_ID id)
{
    return recordedInt("KVR_GetPlayerAlphaLevel", id);
}

int KVR_SetPlayerVisible(KVR_ID id, int visible)
{
    return recordedInt("KVR_SetPlayerVisible", id, visible);
}

int KVR_IsPlayerVisible(KVR_ID id)
{
    return recordedInt("KVR_IsPlayerVisible", id);
}

int KVR_SetPlayerDisplayMode(KVR_ID id, int mode)
{
    return recordedInt("KVR_SetPlayerDisplayMode", id, mode);
}

int KVR_GetPlayerDisplayMode(KVR_ID id)
{
    return recordedInt("KVR_GetPlayerDisplayMode", id);
}
