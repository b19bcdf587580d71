// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The slots of StbMedia for sound, picture and player window, and the sound settings that outlive players.

#include "jsapi/StbMedia.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/SoundSettings.h"
#include "platform/stbapi.h"

namespace KavroJS {

void StbMedia::SetSystemVolume(int volume)
{
    SoundSettings::setVolume(volume);
}

int StbMedia::GetSystemVolume()
{
    return SoundSettings::volume();
}

void StbMedia::SetSystemMute(int mute)
{
    SoundSettings::setMute(mute);
}

int StbMedia::IsSystemMute()
{
    return SoundSettings::mute();
}

int StbMedia::SetVolume(int id, int vol)
{
    trace("StbMedia.SetVolume(%1, %2)", id, vol);
    return KVR_SetVolume(id, vol);
}

int StbMedia::GetVolume(int id)
{
    trace("StbMedia.GetVolume(%1)", id);
    return KVR_GetVolume(id);
}

int StbMedia::SetMute(int id, int mute)
{
    trace("StbMedia.SetMute(%1, %2)", id, mute);
    return KVR_SetMute(id, mute);
}

int StbMedia::IsMute(int id)
{
    trace("StbMedia.IsMute(%1)", id);
    return KVR_IsMute(id);
}

int StbMedia::SetZoom(int id, double zoom)
{
    trace("StbMedia.SetZoom(%1, %2)", id, zoom);
    return KVR_SetZoom(id, zoom);
}

double StbMedia::GetZoom(int id)
{
    trace("StbMedia.GetZoom(%1)", id);
    return KVR_GetZoom(id);
}

double StbMedia::GetFps(int id)
{
    trace("StbMedia.GetFps(%1)", id);
    return KVR_GetFps(id);
}

int StbMedia::SetPlayerViewPort(int id, int x, int y, int w, int h)
{
    trace("StbMedia.SetPlayerViewPort(%1, %2, %3, %4, %5)", id, x, y, w, h);
    const KVR_Rect window = {x, y, w, h};
    return KVR_SetPlayerViewPort(id, &window);
}

int StbMedia::SetPlayerAlphaLevel(int id, int alpha)
{
    trace("StbMedia.SetPlayerAlphaLevel(%1, %2)", id, alpha);
    return KVR_SetPlayerAlphaLevel(id, alpha);
}

int StbMedia::GetPlayerAlphaLevel(int id)
{
    trace("StbMedia.GetPlayerAlphaLevel(%1)", id);
    return KVR_GetPlayerAlphaLevel(id);
}

int StbMedia::SetPlayerVisible(int id, int visibility)
{
    trace("StbMedia.SetPlayerVisible(%1, %2)", id, visibility);
    return KVR_SetPlayerVisible(id, visibility);
}

int StbMedia::IsPlayerVisible(int id)
{
    trace("StbMedia.IsPlayerVisible(%1)", id);
    return KVR_IsPlayerVisible(id);
}

int StbMedia::SetPlayerDisplayMode(int id, int mode)
{
    trace("StbMedia.SetPlayerDisplayMode(%1, %2)", id, mode);
    return KVR_SetPlayerDisplayMode(id, mode);
}

int StbMedia::GetPlayerDisplayMode(int id)
{
    trace("StbMedia.GetPlayerDisplayMode(%1)", id);
    return KVR_GetPlayerDisplayMode(id);
}

} // namespace KavroJS
