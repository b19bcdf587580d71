// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The slots of stb_media for sound, picture and player window.

#include "jsapi/deprecated/stb_media.h"

#include "browser/bridge/JsApiTracer.h"
#include "platform/stbapi.h"

namespace KavroJSDeprecated {

int stb_media::SetVolume(int id, int vol)
{
    trace("stb_media.SetVolume(%1, %2)", id, vol);
    return KVR_SetVolume(id, vol);
}

int stb_media::GetVolume(int id)
{
    trace("stb_media.GetVolume(%1)", id);
    return KVR_GetVolume(id);
}

int stb_media::IsMute(int id)
{
    trace("stb_media.IsMute(%1)", id);
    return KVR_IsMute(id);
}

int stb_media::SetMute(int id, int mute)
{
    trace("stb_media.SetMute(%1, %2)", id, mute);
    return KVR_SetMute(id, mute);
}

double stb_media::GetZoom(int id)
{
    trace("stb_media.GetZoom(%1)", id);
    return KVR_GetZoom(id);
}

// One place for two values, as with SetSubtitlesVisible.
int stb_media::SetZoom(int id, double zoom)
{
    JsApiTracer::TRACE(QString::fromLatin1("stb_media.SetZoom(%1)").arg(id).arg(zoom));
    return KVR_SetZoom(id, zoom);
}

double stb_media::GetFps(int id)
{
    trace("stb_media.GetFps(%1)", id);
    return KVR_GetFps(id);
}

int stb_media::SetPlayerViewPort(int id, int x, int y, int w, int h)
{
    trace("stb_media.SetPlayerViewPort(%1, %2, %3, %4, %5)", id, x, y, w, h);
    const KVR_Rect window = {x, y, w, h};
    return KVR_SetPlayerViewPort(id, &window);
}

int stb_media::SetPlayerAlphaLevel(int id, int alpha)
{
    trace("stb_media.SetPlayerAlphaLevel(%1, %2)", id, alpha);
    return KVR_SetPlayerAlphaLevel(id, alpha);
}

int stb_media::GetPlayerAlphaLevel(int id)
{
    trace("stb_media.GetPlayerAlphaLevel(%1)", id);
    return KVR_GetPlayerAlphaLevel(id);
}

int stb_media::SetPlayerVisible(int id, int visibility)
{
    trace("stb_media.SetPlayerVisible(%1, %2)", id, visibility);
    return KVR_SetPlayerVisible(id, visibility);
}

int stb_media::IsPlayerVisible(int id)
{
    trace("stb_media.IsPlayerVisible(%1)", id);
    return KVR_IsPlayerVisible(id);
}

int stb_media::GetPlayerDisplayMode(int id)
{
    trace("stb_media.GetPlayerDisplayMode(%1)", id);
    return KVR_GetPlayerDisplayMode(id);
}

int stb_media::SetPlayerDisplayMode(int id, int mode)
{
    trace("stb_media.SetPlayerDisplayMode(%1, %2)", id, mode);
    return KVR_SetPlayerDisplayMode(id, mode);
}

} // namespace KavroJSDeprecated
