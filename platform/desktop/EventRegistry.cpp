// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "EventRegistry.h"

#include <limits>

using namespace Desk;

int EventRegistry::add(KVR_ID id, int type, KVR_EventHandler handler)
{
    if (!handler)
        return KVR_ERR_INVALID_ARGUMENT;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_handlers[Key(id, type)] = handler;
    return KVR_OK;
}

int EventRegistry::remove(KVR_ID id, int type)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_handlers.erase(Key(id, type)) == 1 ? KVR_OK : KVR_ERR_FAILED;
}

void EventRegistry::removeAllOf(KVR_ID id)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    auto handler = m_handlers.lower_bound(Key(id, std::numeric_limits<int>::min()));
    while (handler != m_handlers.end() && handler->first.first == id)
        handler = m_handlers.erase(handler);
}

KVR_EventHandler EventRegistry::find(KVR_ID id, int type) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto handler = m_handlers.find(Key(id, type));
    return handler == m_handlers.end() ? nullptr : handler->second;
}

void EventRegistry::send(KVR_ID id, int type, int argument)
{
    m_delivery.post([this, id, type, argument] {
        if (const KVR_EventHandler handler = find(id, type))
            handler(argument);
    });
}
