// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "FramePool.h"
#include "MpvCore.h"
#include "PlayerWindow.h"

#include <condition_variable>
#include <memory>
#include <mpv/render.h>
#include <mutex>
#include <thread>

namespace Desk {

/// Renders a player core's pictures, in software, to frames of the player's window, on a thread of its own. Lives
/// shorter than the core and the window.
class FrameRenderer
{
public:
    /// Throws std::runtime_error when libmpv cannot render.
    FrameRenderer(MpvCore &core, PlayerWindow &window);
    FrameRenderer(const FrameRenderer &) = delete;
    FrameRenderer &operator=(const FrameRenderer &) = delete;
    ~FrameRenderer();

private:
    void run();
    void wake(bool redraw);
    void render();

    PlayerWindow &m_window;
    FramePool m_pool;
    std::unique_ptr<mpv_render_context, decltype(&mpv_render_context_free)> m_context{nullptr, mpv_render_context_free};
    std::mutex m_mutex;
    std::condition_variable m_woken;
    bool m_pending = false;
    bool m_redraw = false; // another size or visibility: the picture is wanted again
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace Desk
