// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "EventRegistry.h"

#include <mutex>

namespace Desk {

/// The video outputs and the HDMI connection, as the launcher plays them. A change sends the event of the box.
class Outputs
{
public:
    explicit Outputs(EventRegistry &events);

    bool enabled() const;
    KVR_HdmiState hdmiState() const;

    void setEnabled(bool enabled);
    void setHdmiState(KVR_HdmiState state);

private:
    EventRegistry &m_events;
    mutable std::mutex m_mutex;
    bool m_enabled = true;
    KVR_HdmiState m_hdmiState = KVR_HDMI_ACTIVE;
};

} // namespace Desk
