// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions that register event handlers.

#include "ApiCall.h"
#include "Box.h"

using namespace Desk;

int KVR_RegisterEventHandler(KVR_ID id, int type, KVR_EventHandler handler)
{
    return apiCall(__func__, [=] { return box().events.add(id, type, handler); });
}

int KVR_DeleteEventHandler(KVR_ID id, int type)
{
    return apiCall(__func__, [=] { return box().events.remove(id, type); });
}

KVR_EventHandler KVR_GetEventHandler(KVR_ID id, int type)
{
    return apiCall(
        __func__, [=] { return box().events.find(id, type); }, KVR_EventHandler());
}
