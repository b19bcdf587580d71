// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "GraphicsState.h"
#include "Player.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Desk {

/// All players, their stacking order, and where the layout puts their windows.
class PlayerTable
{
public:
    PlayerTable(EventRegistry &events, ScreenNotifier &screen, GraphicsState &graphics);

    /// KVR_ERR_FAILED, and a line in the log, when there are as many as there may be.
    KVR_ID create();

    /// KVR_ERR_INVALID_ID when there is none.
    int close(KVR_ID id);
    void closeAll();
    int count() const;

    /// Null when there is none.
    std::shared_ptr<Player> find(KVR_ID id) const;

    /// Player identifiers from the bottom to the top.
    std::vector<int> order() const;

    /// Players that order does not name stay below. KVR_ERR_INVALID_ARGUMENT, and no change, when it names one twice or
    /// one that there is not.
    int setOrder(const std::vector<int> &order);

    /// Puts the windows to their places on the screen. Whenever the resolution, the layout or a window changed.
    void arrange();

    std::vector<DeskBox::PlayerWindow> windows() const;

private:
    std::vector<std::shared_ptr<Player>> stacked() const;

    EventRegistry &m_events;
    ScreenNotifier &m_screen;
    GraphicsState &m_graphics;
    std::mutex m_arranging;
    mutable std::mutex m_mutex;
    std::map<KVR_ID, std::shared_ptr<Player>> m_players;
    std::vector<int> m_order;
    KVR_ID m_nextId = 1;
    bool m_refusalTold = false; // since there was none
};

} // namespace Desk
