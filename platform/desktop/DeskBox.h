// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// What the desk box's libstbapi.so offers its launcher beside the box's own contract in stbapi.h: the state of the
// screen, the pictures of the players, and what a PC has to tell the box. Every function may be called from any thread.

#pragma once

#include "platform/stbapi.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#define DESKBOX_EXPORT __attribute__((visibility("default")))

namespace DeskBox {

/// Only inside a box there is this file.
constexpr char sign[] = "/box/bin/reboot";

/// So many players there can be at once, more than any page shows: KVR_CreatePlayer refuses a further one, and the log
/// says so. Each takes 10 MB and more, and threads of its own.
constexpr std::size_t maximumPlayers = 16;

/// The graphics layer as the KVR_ functions have set it.
struct GraphicsLayer
{
    int width = 1920; ///< resolution in pixels; the layer is scaled to fill the screen
    int height = 1080;
    KVR_Rect viewport{0, 0, 1920, 1080}; ///< shown part, in pixels of the resolution
    int alpha = 255;
    bool visible = true;
    bool chromaKeyEnabled = false;
    KVR_Color chromaKey{0, 0, 0, 255};
};

/// A decoded picture, already of the size at which its window shows it on the 1920 x 1080 screen.
struct Frame
{
    int width = 0;
    int height = 0;
    int stride = 0;                   ///< bytes from one line to the next
    std::vector<std::uint8_t> pixels; ///< blue, green, red, unused: four bytes a pixel
};

/// A player's window on the 1920 x 1080 screen, in the stacking order of the layout.
struct PlayerWindow
{
    KVR_ID id = -1;
    KVR_Rect place{0, 0, 0, 0};
    int alpha = 255;
    bool visible = true;
    std::shared_ptr<const Frame> frame; ///< null while there is no picture
};

DESKBOX_EXPORT GraphicsLayer graphicsLayer();

/// The windows of all players, the lowest first. Cheap: frames are shared, not copied.
DESKBOX_EXPORT std::vector<PlayerWindow> playerWindows();

/// Has handler called whenever the answer of graphicsLayer() or playerWindows() may have changed, a new frame included.
/// It is called on threads of the library or of a KVR_ caller, possibly several at once, and must return soon; a
/// player's lock may be held, so it calls no KVR_ function. An empty handler ends it; no call is running any more when
/// this returns.
DESKBOX_EXPORT void setScreenHandler(std::function<void()> handler);

/// The text that KVR_GetDeviceModel hands out. "MZ-600 desk" until set.
DESKBOX_EXPORT void setDeviceModel(const std::string &model);

/// The answers of KVR_GetHdmiState and KVR_IsOutportsEnabled; a change sends the event.
DESKBOX_EXPORT void setHdmiState(KVR_HdmiState state);
DESKBOX_EXPORT void setOutputsEnabled(bool enabled);

/// Delivers an event to the handler registered for this pair, if any, as the library delivers its own: in order, on
/// the delivery thread.
DESKBOX_EXPORT void injectEvent(KVR_ID id, int type, int argument);

} // namespace DeskBox
