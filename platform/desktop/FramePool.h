// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DeskBox.h"

#include <memory>
#include <mutex>
#include <vector>

namespace Desk {

/// Frames of one size. Those that nobody shows any longer are used again: a fresh one would have to be cleared first.
class FramePool
{
public:
    /// A frame of this size with undefined content. It goes back to the pool with its last reference.
    std::shared_ptr<DeskBox::Frame> take(int width, int height);

private:
    struct Shelf
    {
        std::mutex mutex;
        std::vector<std::unique_ptr<DeskBox::Frame>> frames;
    };

    std::shared_ptr<Shelf> m_shelf = std::make_shared<Shelf>();
};

} // namespace Desk
