// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Outputs.h"

using namespace Desk;

namespace {

// The number of the only output port, in the events of ports.
constexpr int onlyPort = 0;

} // namespace

Outputs::Outputs(EventRegistry &events)
    : m_events(events)
{
}

bool Outputs::enabled() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_enabled;
}

KVR_HdmiState Outputs::hdmiState() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_hdmiState;
}

void Outputs::setEnabled(bool enabled)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    m_events.send(KVR_BOX, KVR_EVENT_OUTPUT_PORTS, enabled ? 1 : 0);
    m_events.send(KVR_BOX, KVR_EVENT_OUTPUT_STATE, onlyPort);
}

void Outputs::setHdmiState(KVR_HdmiState state)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_hdmiState == state)
        return;
    m_hdmiState = state;
    m_events.send(KVR_BOX, KVR_EVENT_HDMI, state);
}
