// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/OutputHandlers.h"

#include "jsapi/DisplayCallbacks.h"

namespace {

KVR_EventHandler takeOver(int event, KVR_EventHandler handler)
{
    const KVR_EventHandler before = KVR_GetEventHandler(KVR_BOX, event);
    if (before)
        KVR_DeleteEventHandler(KVR_BOX, event);
    if (handler)
        KVR_RegisterEventHandler(KVR_BOX, event, handler);
    return before;
}

void giveBack(int event, KVR_EventHandler handler)
{
    KVR_DeleteEventHandler(KVR_BOX, event);
    if (handler)
        KVR_RegisterEventHandler(KVR_BOX, event, handler);
}

} // namespace

namespace KavroJS {

OutputHandlers::OutputHandlers()
    : savedSyncHandler(takeOver(KVR_EVENT_SYNC_DONE, syncdonecb))
    // Nobody hears of output ports while pages are in charge of them.
    , savedOutputPortHandler(takeOver(KVR_EVENT_OUTPUT_STATE, nullptr))
    , savedHdmiHandler(takeOver(KVR_EVENT_HDMI, hdmicb))
{
}

OutputHandlers::~OutputHandlers()
{
    giveBack(KVR_EVENT_SYNC_DONE, savedSyncHandler);
    giveBack(KVR_EVENT_OUTPUT_STATE, savedOutputPortHandler);
    giveBack(KVR_EVENT_HDMI, savedHdmiHandler);
}

} // namespace KavroJS
