// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/PlayerCallbacks.h"

#include "browser/bridge/EventNotifier.h"
#include "platform/stbapi.h"

namespace KavroJS {

int statcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_STATE);
}

int metacb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_METADATA);
}

int poscb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_POSITION);
}

int audcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_AUDIO);
}

int vidcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_VIDEO);
}

int subcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_SUBTITLES);
}

int volcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_VOLUME);
}

int zoomcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_ZOOM);
}

int mutecb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_MUTE);
}

int multcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_MULTICAST);
}

int telxpidcb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_TELETEXT_PID);
}

int telxpagecb(int id)
{
    return EventNotifier::instance()->notifyEvent(id, KVR_EVENT_TELETEXT_PAGE);
}

void registerPlayerCallbacks(int id)
{
    KVR_RegisterEventHandler(id, KVR_EVENT_STATE, statcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_METADATA, metacb);
    KVR_RegisterEventHandler(id, KVR_EVENT_POSITION, poscb);
    KVR_RegisterEventHandler(id, KVR_EVENT_AUDIO, audcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_VIDEO, vidcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_SUBTITLES, subcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_VOLUME, volcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_ZOOM, zoomcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_MUTE, mutecb);
    KVR_RegisterEventHandler(id, KVR_EVENT_MULTICAST, multcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_TELETEXT_PID, telxpidcb);
    KVR_RegisterEventHandler(id, KVR_EVENT_TELETEXT_PAGE, telxpagecb);
}

} // namespace KavroJS
