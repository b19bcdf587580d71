// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DeskBox.h"
#include "ScreenNotifier.h"

#include <mutex>

namespace Desk {

/// The graphics layer and the layout, as the KVR_ functions set them. Thread-safe; every change is notified.
class GraphicsState
{
public:
    /// Layout 0 leaves the players' windows where they were put, layout 1 tiles them over the screen.
    static constexpr int tiledLayout = 1;
    static constexpr int layoutCount = 2;

    explicit GraphicsState(ScreenNotifier &notifier);

    DeskBox::GraphicsLayer layer() const;
    int layout() const;

    /// A viewport that shows the whole layer goes on to show the whole layer.
    int setResolution(int width, int height);
    int setViewport(const KVR_Rect &viewport);
    void setVisible(bool visible);
    int setAlpha(unsigned int alpha);
    void setChromaKey(KVR_Color color);
    void setChromaKeyEnabled(bool enabled);
    int setLayout(int layout);
    int switchToNextLayout();

private:
    template <typename Change>
    void change(Change change);

    ScreenNotifier &m_notifier;
    mutable std::mutex m_mutex;
    DeskBox::GraphicsLayer m_layer;
    int m_layout = 0;
};

} // namespace Desk
