// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FramePool.h"

#include <utility>

using namespace Desk;

namespace {

constexpr std::size_t mostKept = 3;
constexpr int bytesPerPixel = 4;

} // namespace

std::shared_ptr<DeskBox::Frame> FramePool::take(int width, int height)
{
    std::unique_ptr<DeskBox::Frame> frame;
    {
        const std::lock_guard<std::mutex> lock(m_shelf->mutex);
        while (!frame && !m_shelf->frames.empty()) {
            frame = std::move(m_shelf->frames.back());
            m_shelf->frames.pop_back();
            if (frame->width != width || frame->height != height)
                frame.reset();
        }
    }
    if (!frame) {
        frame = std::make_unique<DeskBox::Frame>();
        frame->width = width;
        frame->height = height;
        frame->stride = width * bytesPerPixel;
        frame->pixels.resize(static_cast<std::size_t>(frame->stride) * static_cast<std::size_t>(height));
    }
    // The shelf outlives the pool for as long as a frame is shown.
    return {frame.release(), [shelf = m_shelf](DeskBox::Frame *done) {
                std::unique_ptr<DeskBox::Frame> back(done);
                const std::lock_guard<std::mutex> lock(shelf->mutex);
                if (shelf->frames.size() < mostKept)
                    shelf->frames.push_back(std::move(back));
            }};
}
