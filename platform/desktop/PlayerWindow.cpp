// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayerWindow.h"

#include <utility>

using namespace Desk;

namespace {

bool isSame(const KVR_Rect &a, const KVR_Rect &b)
{
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

} // namespace

template <typename Change>
void PlayerWindow::change(Change change)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        change();
    }
    m_notifier.notify();
}

std::optional<KVR_Rect> PlayerWindow::requestedPlace() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requested;
}

void PlayerWindow::setRequestedPlace(const KVR_Rect &place)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requested = place;
}

int PlayerWindow::alpha() const
{
    return snapshot().alpha;
}

void PlayerWindow::setAlpha(int alpha)
{
    change([&] { m_shown.alpha = alpha; });
}

bool PlayerWindow::visible() const
{
    return snapshot().visible;
}

void PlayerWindow::setVisible(bool visible)
{
    change([&] { m_shown.visible = visible; });
    const std::lock_guard<std::mutex> lock(m_handlerMutex);
    if (m_redrawHandler)
        m_redrawHandler();
}

KVR_Rect PlayerWindow::place() const
{
    return snapshot().place;
}

void PlayerWindow::setPlace(const KVR_Rect &place)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        // Every window is put to its place when any has changed; only a new place is worth a new picture.
        if (isSame(m_shown.place, place))
            return;
        m_shown.place = place;
    }
    m_notifier.notify();
    const std::lock_guard<std::mutex> lock(m_handlerMutex);
    if (m_redrawHandler)
        m_redrawHandler();
}

void PlayerWindow::setShowing(bool showing)
{
    std::shared_ptr<const DeskBox::Frame> dropped;
    change([&] {
        m_showing = showing;
        if (!showing)
            dropped = std::exchange(m_shown.frame, nullptr);
    });
}

void PlayerWindow::setFrame(std::shared_ptr<const DeskBox::Frame> frame)
{
    change([&] {
        if (m_showing)
            m_shown.frame.swap(frame);
    });
}

DeskBox::PlayerWindow PlayerWindow::snapshot() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_shown;
}

void PlayerWindow::setRedrawHandler(std::function<void()> handler)
{
    const std::lock_guard<std::mutex> lock(m_handlerMutex);
    m_redrawHandler = std::move(handler);
}
