// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/DisplayCallbacks.h"

#include "browser/bridge/EventNotifier.h"
#include "platform/stbapi.h"

namespace KavroJS {

int hdmicb(int argument)
{
    return EventNotifier::instance()->notifyEvent(argument, KVR_EVENT_HDMI);
}

int syncdonecb(int argument)
{
    return EventNotifier::instance()->notifyEvent(argument, KVR_EVENT_SYNC_DONE);
}

int outportcb(int argument)
{
    return EventNotifier::instance()->notifyEvent(argument, KVR_EVENT_OUTPUT_PORTS);
}

} // namespace KavroJS
