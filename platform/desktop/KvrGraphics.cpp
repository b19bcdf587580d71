// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of the graphics layer, the layout and the outputs.

#include "ApiCall.h"
#include "Box.h"

using namespace Desk;

namespace {

// Hands the result of a change on which the places of the players' windows depend on.
int rearranged(int result)
{
    box().players.arrange();
    return result;
}

} // namespace

int KVR_SetResolution(int width, int height)
{
    return apiCall(__func__, [=] { return rearranged(box().graphics.setResolution(width, height)); });
}

int KVR_SetGraphicsViewport(const KVR_Rect *viewport)
{
    if (!viewport)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().graphics.setViewport(*viewport); });
}

int KVR_GetGraphicsViewport(KVR_Rect *viewport)
{
    if (!viewport)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] {
        *viewport = box().graphics.layer().viewport;
        return KVR_OK;
    });
}

int KVR_SetGraphicsVisible(int visible)
{
    return apiCall(__func__, [=] {
        box().graphics.setVisible(visible != 0);
        return KVR_OK;
    });
}

int KVR_IsGraphicsVisible(void)
{
    return apiCall(__func__, [] { return box().graphics.layer().visible ? 1 : 0; });
}

int KVR_SetGraphicsAlphaLevel(unsigned int alpha)
{
    return apiCall(__func__, [=] { return box().graphics.setAlpha(alpha); });
}

int KVR_GetGraphicsAlphaLevel(void)
{
    return apiCall(__func__, [] { return box().graphics.layer().alpha; });
}

int KVR_SetChromaKey(KVR_Color color)
{
    return apiCall(__func__, [=] {
        box().graphics.setChromaKey(color);
        return KVR_OK;
    });
}

int KVR_GetChromaKey(KVR_Color *color)
{
    if (!color)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] {
        *color = box().graphics.layer().chromaKey;
        return KVR_OK;
    });
}

int KVR_SetChromaKeyEnable(int enable)
{
    return apiCall(__func__, [=] {
        box().graphics.setChromaKeyEnabled(enable != 0);
        return KVR_OK;
    });
}

int KVR_IsChromaKeyEnable(void)
{
    return apiCall(__func__, [] { return box().graphics.layer().chromaKeyEnabled ? 1 : 0; });
}

int KVR_SetCurrentLayout(int layout)
{
    return apiCall(__func__, [=] { return rearranged(box().graphics.setLayout(layout)); });
}

int KVR_GetCurrentLayout(void)
{
    return apiCall(__func__, [] { return box().graphics.layout(); });
}

int KVR_SwitchToNextLayout(void)
{
    return apiCall(__func__, [] { return rearranged(box().graphics.switchToNextLayout()); });
}

int KVR_SetOrder(const int *order, int count)
{
    if (count < 0 || (!order && count > 0))
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().players.setOrder(std::vector<int>(order, order + count)); });
}

int KVR_GetOrder(int **order, int *count)
{
    if (!order || !count)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return newArray(box().players.order(), order, count); });
}

int KVR_IsOutportsEnabled(void)
{
    return apiCall(__func__, [] { return box().outputs.enabled() ? 1 : 0; });
}

int KVR_GetHdmiState(void)
{
    return apiCall(__func__, [] { return static_cast<int>(box().outputs.hdmiState()); });
}
