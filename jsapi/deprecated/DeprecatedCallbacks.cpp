// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/deprecated/DeprecatedCallbacks.h"

#include "jsapi/DisplayCallbacks.h"
#include "jsapi/PlayerCallbacks.h"
#include "platform/stbapi.h"

namespace KavroJSDeprecated {

int statcb(int id)
{
    return KavroJS::statcb(id);
}

int metacb(int id)
{
    return KavroJS::metacb(id);
}

int poscb(int id)
{
    return KavroJS::poscb(id);
}

int audcb(int id)
{
    return KavroJS::audcb(id);
}

int vidcb(int id)
{
    return KavroJS::vidcb(id);
}

int subcb(int id)
{
    return KavroJS::subcb(id);
}

int volcb(int id)
{
    return KavroJS::volcb(id);
}

int zoomcb(int id)
{
    return KavroJS::zoomcb(id);
}

int mutecb(int id)
{
    return KavroJS::mutecb(id);
}

int multcb(int id)
{
    return KavroJS::multcb(id);
}

int outportcb(int argument)
{
    return KavroJS::outportcb(argument);
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
}

} // namespace KavroJSDeprecated
