// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions that register event handlers.

#include "Box.h"
#include "Guarded.h"

using namespace Desk;

int KVR_RegisterEventHandler(KVR_ID id, int type, KVR_EventHandler handler)
{
    return guarded(__func__, [=] { return box().events.add(id, type, handler); });
}

int KVR_DeleteEventHandler(KVR_ID id, int type)
{
    return guarded(__func__, [=] { return box().events.remove(id, type); });
}

KVR_EventHandler KVR_GetEventHandler(KVR_ID id, int type)
{
    return guarded(
        __func__, [=] { return box().events.find(id, type); }, KVR_EventHandler());
}
