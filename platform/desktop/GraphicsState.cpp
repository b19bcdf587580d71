// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "GraphicsState.h"

using namespace Desk;

GraphicsState::GraphicsState(ScreenNotifier &notifier)
    : m_notifier(notifier)
{
}

DeskBox::GraphicsLayer GraphicsState::layer() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_layer;
}

int GraphicsState::layout() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_layout;
}

template <typename Change>
void GraphicsState::change(Change change)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        change();
    }
    m_notifier.notify();
}

int GraphicsState::setResolution(int width, int height)
{
    if (width <= 0 || height <= 0)
        return KVR_ERR_INVALID_ARGUMENT;
    change([&] {
        const KVR_Rect &shown = m_layer.viewport;
        const bool whole =
            shown.x == 0 && shown.y == 0 && shown.width == m_layer.width && shown.height == m_layer.height;
        m_layer.width = width;
        m_layer.height = height;
        if (whole)
            m_layer.viewport = {0, 0, width, height};
    });
    return KVR_OK;
}

int GraphicsState::setViewport(const KVR_Rect &viewport)
{
    if (viewport.width <= 0 || viewport.height <= 0)
        return KVR_ERR_INVALID_ARGUMENT;
    change([&] { m_layer.viewport = viewport; });
    return KVR_OK;
}

void GraphicsState::setVisible(bool visible)
{
    change([&] { m_layer.visible = visible; });
}

int GraphicsState::setAlpha(unsigned int alpha)
{
    if (alpha > 255)
        return KVR_ERR_INVALID_ARGUMENT;
    change([&] { m_layer.alpha = static_cast<int>(alpha); });
    return KVR_OK;
}

void GraphicsState::setChromaKey(KVR_Color color)
{
    change([&] { m_layer.chromaKey = color; });
}

void GraphicsState::setChromaKeyEnabled(bool enabled)
{
    change([&] { m_layer.chromaKeyEnabled = enabled; });
}

int GraphicsState::setLayout(int layout)
{
    if (layout < 0 || layout >= layoutCount)
        return KVR_ERR_INVALID_ARGUMENT;
    change([&] { m_layout = layout; });
    return KVR_OK;
}

int GraphicsState::switchToNextLayout()
{
    int next = 0;
    change([&] { next = m_layout = (m_layout + 1) % layoutCount; });
    return next;
}
