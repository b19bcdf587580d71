// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FrameRenderer.h"

#include <stdexcept>
#include <string>

using namespace Desk;

FrameRenderer::FrameRenderer(MpvCore &core, PlayerWindow &window)
    : m_window(window)
{
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_API_TYPE, const_cast<char *>(MPV_RENDER_API_TYPE_SW)},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context *context = nullptr;
    const int result = mpv_render_context_create(&context, core.handle(), parameters);
    if (result < 0)
        throw std::runtime_error(std::string("libmpv cannot render: ") + mpv_error_string(result));
    m_context.reset(context);

    m_thread = std::thread([this] { run(); });
    mpv_render_context_set_update_callback(
        m_context.get(), [](void *self) { static_cast<FrameRenderer *>(self)->wake(false); }, this);
    m_window.setRedrawHandler([this] { wake(true); });
}

FrameRenderer::~FrameRenderer()
{
    m_window.setRedrawHandler(nullptr);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_woken.notify_one();
    }
    m_thread.join();
    mpv_render_context_set_update_callback(m_context.get(), nullptr, nullptr);
}

void FrameRenderer::wake(bool redraw)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_pending = true;
    m_redraw = m_redraw || redraw;
    m_woken.notify_one();
}

void FrameRenderer::run()
{
    for (;;) {
        bool redraw = false;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_woken.wait(lock, [this] { return m_pending || m_stopping; });
            if (m_stopping)
                return;
            m_pending = false;
            std::swap(redraw, m_redraw);
        }
        const bool newFrame = mpv_render_context_update(m_context.get()) & MPV_RENDER_UPDATE_FRAME;
        if (newFrame || redraw)
            render();
    }
}

void FrameRenderer::render()
{
    const DeskBox::PlayerWindow window = m_window.snapshot();
    // A hidden window's frame is only taken off the core's hands.
    int skip = window.visible ? 0 : 1;
    const std::shared_ptr<DeskBox::Frame> frame = m_pool.take(window.place.width, window.place.height);
    int size[] = {frame->width, frame->height};
    auto stride = static_cast<std::size_t>(frame->stride);
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_SW_SIZE, size},         {MPV_RENDER_PARAM_SW_FORMAT, const_cast<char *>("bgr0")},
        {MPV_RENDER_PARAM_SW_STRIDE, &stride},    {MPV_RENDER_PARAM_SW_POINTER, frame->pixels.data()},
        {MPV_RENDER_PARAM_SKIP_RENDERING, &skip}, {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    if (mpv_render_context_render(m_context.get(), parameters) >= 0 && window.visible)
        m_window.setFrame(frame);
}
