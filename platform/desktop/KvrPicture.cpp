// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of a player's sound, picture and window.

#include "PlayerCall.h"

using namespace Desk;

namespace {

// A window may stick out of the screen, but its frames are kept in memory.
constexpr int mostScreens = 2;

} // namespace

int KVR_SetVolume(KVR_ID id, int volume)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setVolume(volume); });
}

int KVR_GetVolume(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().volume; });
}

int KVR_SetMute(KVR_ID id, int mute)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setMute(mute != 0); });
}

int KVR_IsMute(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().mute ? 1 : 0; });
}

int KVR_SetZoom(KVR_ID id, double zoom)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setZoom(zoom); });
}

double KVR_GetZoom(KVR_ID id)
{
    return withPlayer(
        __func__, id, [](Player &player) { return player.status().zoom; }, static_cast<double>(KVR_ERR_INVALID_ID));
}

double KVR_GetFps(KVR_ID id)
{
    return withPlayer(
        __func__, id, [](Player &player) { return player.status().fps; }, static_cast<double>(KVR_ERR_INVALID_ID));
}

int KVR_SetPlayerViewPort(KVR_ID id, const KVR_Rect *window)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        const DeskBox::GraphicsLayer layer = box().graphics.layer();
        if (!window || window->width <= 0 || window->height <= 0 || window->width > mostScreens * layer.width
            || window->height > mostScreens * layer.height)
            return KVR_ERR_INVALID_ARGUMENT;
        player.window().setRequestedPlace(*window);
        box().players.arrange();
        return KVR_OK;
    });
}

int KVR_GetPlayerViewPort(KVR_ID id, KVR_Rect *window)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!window)
            return KVR_ERR_INVALID_ARGUMENT;
        const DeskBox::GraphicsLayer layer = box().graphics.layer();
        *window = player.window().requestedPlace().value_or(KVR_Rect{0, 0, layer.width, layer.height});
        return KVR_OK;
    });
}

int KVR_SetPlayerAlphaLevel(KVR_ID id, int alpha)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setAlpha(alpha); });
}

int KVR_GetPlayerAlphaLevel(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.window().alpha(); });
}

int KVR_SetPlayerVisible(KVR_ID id, int visible)
{
    return withPlayer(__func__, id, [=](Player &player) {
        player.window().setVisible(visible != 0);
        return KVR_OK;
    });
}

int KVR_IsPlayerVisible(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.window().visible() ? 1 : 0; });
}

int KVR_SetPlayerDisplayMode(KVR_ID id, int mode)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setDisplayMode(mode); });
}

int KVR_GetPlayerDisplayMode(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().displayMode; });
}
