// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "EventRegistry.h"
#include "PlayerStatus.h"

#include <mutex>

namespace Desk {

/// A player's status behind a lock: its KVR_ functions and its thread share it. Every change sends the events that tell
/// of it.
class PlayerModel
{
public:
    PlayerModel(KVR_ID id, EventRegistry &events)
        : m_id(id)
        , m_events(events)
    {
    }

    KVR_ID id() const { return m_id; }

    PlayerStatus status() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_status;
    }

    /// Checks and changes the status in one go. change gets a PlayerStatus & and gives a result code, which is handed
    /// on.
    template <typename Change>
    int change(Change change)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const PlayerStatus before = m_status;
        const int result = change(m_status);
        for (const int type : eventsBetween(before, m_status))
            sendEvent(type);
        return result;
    }

    /// A change on behalf of a session; nothing happens when a newer one has come.
    template <typename Change>
    void changeFor(unsigned session, Change apply)
    {
        change([&](PlayerStatus &status) {
            if (status.session == session)
                apply(status);
            return KVR_OK;
        });
    }

    void sendEvent(int type) { m_events.send(m_id, type); }

private:
    const KVR_ID m_id;
    EventRegistry &m_events;
    mutable std::mutex m_mutex;
    PlayerStatus m_status;
};

} // namespace Desk
