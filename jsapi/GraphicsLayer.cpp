// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/GraphicsLayer.h"

int GraphicsLayer::setViewport(int x, int y, int width, int height)
{
    const KVR_Rect viewport = {x, y, width, height};
    return KVR_SetGraphicsViewport(&viewport);
}

bool GraphicsLayer::viewport(KVR_Rect &viewport)
{
    viewport = KVR_Rect();
    return KVR_GetGraphicsViewport(&viewport) != KVR_ERR_INVALID_ID;
}

int GraphicsLayer::setChromaKey(int color)
{
    const KVR_Color key = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                           static_cast<uint8_t>(color), 255};
    return KVR_SetChromaKey(key);
}

int GraphicsLayer::chromaKey()
{
    KVR_Color key = {};
    KVR_GetChromaKey(&key);
    return key.red << 16 | key.green << 8 | key.blue;
}
