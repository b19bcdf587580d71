// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "Results.h"

int KVR_SetResolution(int width, int height)
{
    return recordedInt("KVR_SetResolution", width, height);
}

int KVR_SetGraphicsViewport(const KVR_Rect *viewport)
{
    return recordedInt("KVR_SetGraphicsViewport", viewport);
}

int KVR_GetGraphicsViewport(KVR_Rect *viewport)
{
    return recordedStructure(viewport, "KVR_GetGraphicsViewport");
}

int KVR_SetGraphicsVisible(int visible)
{
    return recordedInt("KVR_SetGraphicsVisible", visible);
}

int KVR_IsGraphicsVisible()
{
    return recordedInt("KVR_IsGraphicsVisible");
}

int KVR_SetGraphicsAlphaLevel(unsigned int alpha)
{
    return recordedInt("KVR_SetGraphicsAlphaLevel", alpha);
}

int KVR_GetGraphicsAlphaLevel()
{
    return recordedInt("KVR_GetGraphicsAlphaLevel");
}

int KVR_SetChromaKey(KVR_Color color)
{
    return recordedInt("KVR_SetChromaKey", color);
}

int KVR_GetChromaKey(KVR_Color *color)
{
    return recordedStructure(color, "KVR_GetChromaKey");
}

int KVR_SetChromaKeyEnable(int enable)
{
    return recordedInt("KVR_SetChromaKeyEnable", enable);
}

int KVR_IsChromaKeyEnable()
{
    return recordedInt("KVR_IsChromaKeyEnable");
}

int KVR_SetCurrentLayout(int layout)
{
    return recordedInt("KVR_SetCurrentLayout", layout);
}

int KVR_GetCurrentLayout()
{
    return recordedInt("KVR_GetCurrentLayout");
}

int KVR_SwitchToNextLayout()
{
    return recordedInt("KVR_SwitchToNextLayout");
}

int KVR_SetOrder(const int *order, int count)
{
    return recordedInt("KVR_SetOrder", CallText::IntArray{order, count});
}

int KVR_GetOrder(int **order, int *count)
{
    return recordedArray(order, count, "KVR_GetOrder");
}

int KVR_IsOutportsEnabled()
{
    return recordedInt("KVR_IsOutportsEnabled");
}

int KVR_GetHdmiState()
{
    return recordedInt("KVR_GetHdmiState");
}
