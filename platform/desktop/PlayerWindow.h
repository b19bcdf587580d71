// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DeskBox.h"
#include "ScreenNotifier.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace Desk {

/// The window of a player on the screen and the picture in it. Thread-safe; what changes the screen is notified.
class PlayerWindow
{
public:
    PlayerWindow(KVR_ID id, ScreenNotifier &notifier)
        : m_notifier(notifier)
    {
        m_shown.id = id;
    }

    /// What the page asked for, in pixels of the resolution; nothing stands for the full screen.
    std::optional<KVR_Rect> requestedPlace() const;
    void setRequestedPlace(const KVR_Rect &place);

    int alpha() const;
    void setAlpha(int alpha);
    bool visible() const;
    void setVisible(bool visible);

    /// Where the window is on the screen of 1920 x 1080, which is also the size of its frames.
    KVR_Rect place() const;
    void setPlace(const KVR_Rect &place);

    /// Whether there is something to show. Without it, frames are dropped.
    void setShowing(bool showing);
    void setFrame(std::shared_ptr<const DeskBox::Frame> frame);

    DeskBox::PlayerWindow snapshot() const;

    /// Has handler called, on the thread that makes the change, when another size or visibility asks for a new frame.
    void setRedrawHandler(std::function<void()> handler);

private:
    template <typename Change>
    void change(Change change);

    ScreenNotifier &m_notifier;
    mutable std::mutex m_mutex;
    std::optional<KVR_Rect> m_requested;
    DeskBox::PlayerWindow m_shown;
    bool m_showing = false;
    std::mutex m_handlerMutex;
    std::function<void()> m_redrawHandler;
};

} // namespace Desk
