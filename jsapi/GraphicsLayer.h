// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Questions and orders about the graphics layer that the current and the deprecated display object share.

#pragma once

#include "platform/stbapi.h"

namespace GraphicsLayer {

int setViewport(int x, int y, int width, int height);
/// False when the platform knows no such layer.
bool viewport(KVR_Rect &viewport);

/// color: 0xRRGGBB; the upper eight bits do not count.
int setChromaKey(int color);
/// 0xRRGGBB.
int chromaKey();

} // namespace GraphicsLayer
