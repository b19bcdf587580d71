// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "EventSource.h"
#include "Results.h"

// A registration that the test lets fail does not take place.

int KVR_RegisterEventHandler(KVR_ID id, int type, KVR_EventHandler handler)
{
    const char *function = "KVR_RegisterEventHandler";
    const int unscripted = handler ? KVR_OK : KVR_ERR_INVALID_ARGUMENT;
    const int result = Results::toInt(function, recordedOr(unscripted, function, id, type, handler));
    if (result >= 0)
        EventSource::instance().setHandler(id, type, handler);
    return result;
}

int KVR_DeleteEventHandler(KVR_ID id, int type)
{
    const char *function = "KVR_DeleteEventHandler";
    const int unscripted = EventSource::instance().handler(id, type) ? KVR_OK : KVR_ERR_FAILED;
    const int result = Results::toInt(function, recordedOr(unscripted, function, id, type));
    if (result >= 0)
        EventSource::instance().removeHandler(id, type);
    return result;
}

KVR_EventHandler KVR_GetEventHandler(KVR_ID id, int type)
{
    recordedInt("KVR_GetEventHandler", id, type);
    return EventSource::instance().handler(id, type);
}

int KVR_SetRecordsSharedCallback(KVR_EventHandler handler)
{
    const char *function = "KVR_SetRecordsSharedCallback";
    const int unscripted = handler ? KVR_OK : KVR_ERR_INVALID_ARGUMENT;
    const int result = Results::toInt(function, recordedOr(unscripted, function, handler));
    if (result >= 0)
        EventSource::instance().setHandler(KVR_BOX, KVR_EVENT_RECORDS, handler);
    return result;
}

int KVR_CleanRecordsSharedCallback()
{
    const int result = recordedInt("KVR_CleanRecordsSharedCallback");
    if (result >= 0)
        EventSource::instance().removeHandler(KVR_BOX, KVR_EVENT_RECORDS);
    return result;
}
