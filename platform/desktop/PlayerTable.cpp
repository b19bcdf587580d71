// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayerTable.h"
#include "Log.h"
#include "WindowLayout.h"

#include <algorithm>
#include <utility>

using namespace Desk;

PlayerTable::PlayerTable(EventRegistry &events, ScreenNotifier &screen, GraphicsState &graphics)
    : m_events(events)
    , m_screen(screen)
    , m_graphics(graphics)
{
}

KVR_ID PlayerTable::create()
{
    KVR_ID id = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_players.size() >= DeskBox::maximumPlayers) {
            // Once: a page may try it again and again.
            if (!std::exchange(m_refusalTold, true))
                log("no further player: a box has " + std::to_string(DeskBox::maximumPlayers)
                    + " at most; close those that are not needed");
            return KVR_ERR_FAILED;
        }
        id = m_nextId++;
        m_players[id] = std::make_shared<Player>(id, m_events, m_screen);
        m_order.push_back(id);
    }
    arrange();
    return id;
}

int PlayerTable::close(KVR_ID id)
{
    std::shared_ptr<Player> player;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_players.find(id);
        if (found == m_players.end())
            return KVR_ERR_INVALID_ID;
        player = std::move(found->second);
        m_players.erase(found);
        if (m_players.empty())
            m_refusalTold = false;
        m_order.erase(std::remove(m_order.begin(), m_order.end(), id), m_order.end());
    }
    m_events.removeAllOf(id);
    player.reset();
    arrange();
    m_screen.notify();
    return KVR_OK;
}

void PlayerTable::closeAll()
{
    for (const int id : order())
        close(id);
}

int PlayerTable::count() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_players.size());
}

std::shared_ptr<Player> PlayerTable::find(KVR_ID id) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_players.find(id);
    return found == m_players.end() ? nullptr : found->second;
}

std::vector<int> PlayerTable::order() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_order;
}

int PlayerTable::setOrder(const std::vector<int> &order)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::vector<int> result = m_order;
        for (const int id : order) {
            const auto found = std::find(result.begin(), result.end(), id);
            if (found == result.end())
                return KVR_ERR_INVALID_ARGUMENT;
            result.erase(found);
        }
        result.insert(result.end(), order.begin(), order.end());
        m_order = std::move(result);
    }
    arrange();
    m_screen.notify();
    return KVR_OK;
}

std::vector<std::shared_ptr<Player>> PlayerTable::stacked() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::shared_ptr<Player>> players;
    players.reserve(m_order.size());
    for (const int id : m_order)
        players.push_back(m_players.at(id));
    return players;
}

void PlayerTable::arrange()
{
    const std::lock_guard<std::mutex> lock(m_arranging);
    const DeskBox::GraphicsLayer layer = m_graphics.layer();
    const bool tiled = m_graphics.layout() == GraphicsState::tiledLayout;
    const auto players = stacked();
    for (std::size_t i = 0; i < players.size(); ++i) {
        PlayerWindow &window = players[i]->window();
        window.setPlace(tiled ? tile(i, players.size()) : onScreen(window.requestedPlace(), layer.width, layer.height));
    }
}

std::vector<DeskBox::PlayerWindow> PlayerTable::windows() const
{
    std::vector<DeskBox::PlayerWindow> result;
    for (const auto &player : stacked())
        result.push_back(player->window().snapshot());
    return result;
}
