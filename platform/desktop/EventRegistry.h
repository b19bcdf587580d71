// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "TaskQueue.h"
#include "platform/stbapi.h"

#include <map>
#include <mutex>
#include <utility>

namespace Desk {

/// The registered event handlers, and the thread that calls them one event after another, without a lock held.
class EventRegistry
{
public:
    int add(KVR_ID id, int type, KVR_EventHandler handler);
    int remove(KVR_ID id, int type);
    void removeAllOf(KVR_ID id);
    KVR_EventHandler find(KVR_ID id, int type) const;

    /// Has the handler that is registered for this pair when its turn comes called with argument.
    void send(KVR_ID id, int type, int argument);

    /// An event of a player.
    void send(KVR_ID id, int type) { send(id, type, id); }

    /// Delivers what was sent and ends the thread.
    void finish() { m_delivery.finish(); }

private:
    using Key = std::pair<KVR_ID, int>;

    mutable std::mutex m_mutex;
    std::map<Key, KVR_EventHandler> m_handlers;
    TaskQueue m_delivery;
};

} // namespace Desk
