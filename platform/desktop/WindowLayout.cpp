// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "WindowLayout.h"

#include <algorithm>
#include <cmath>

using namespace Desk;

namespace {

// Farther away than any screen is wide, and near enough to calculate with.
constexpr double farAway = 1 << 24;

int scaled(double value, int to, int from)
{
    return static_cast<int>(std::lround(std::clamp(value * to / from, -farAway, farAway)));
}

} // namespace

KVR_Rect Desk::onScreen(const std::optional<KVR_Rect> &place, int width, int height)
{
    if (!place)
        return {0, 0, screenWidth, screenHeight};
    // Edges are scaled rather than sizes, so that windows that touch go on to touch.
    const int left = scaled(place->x, screenWidth, width);
    const int top = scaled(place->y, screenHeight, height);
    const int right = scaled(static_cast<double>(place->x) + place->width, screenWidth, width);
    const int bottom = scaled(static_cast<double>(place->y) + place->height, screenHeight, height);
    return {left, top, right > left ? right - left : 1, bottom > top ? bottom - top : 1};
}

KVR_Rect Desk::tile(std::size_t index, std::size_t count)
{
    std::size_t columns = 1;
    while (columns * columns < count)
        ++columns;
    const int tileWidth = screenWidth / static_cast<int>(columns);
    const int tileHeight = screenHeight / static_cast<int>(columns);
    return {static_cast<int>(index % columns) * tileWidth, static_cast<int>(index / columns) * tileHeight, tileWidth,
            tileHeight};
}
