// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <cstddef>
#include <optional>

namespace Desk {

/// The screen of the desk box, in pixels.
constexpr int screenWidth = 1920;
constexpr int screenHeight = 1080;

/// Where a rectangle of the graphics layer's resolution is on the screen. Nothing stands for the whole screen.
KVR_Rect onScreen(const std::optional<KVR_Rect> &place, int width, int height);

/// The index-th of count equal tiles of the screen, row by row.
KVR_Rect tile(std::size_t index, std::size_t count);

} // namespace Desk
