// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The slots of stb_media for tracks, and those that are answered by records of the platform.

#include "jsapi/deprecated/stb_media.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/PlatformRecords.h"
#include "jsapi/deprecated/JsonText.h"
#include "platform/stbapi.h"

namespace {

// The same answer in two spellings, each of which old portals compare with.
const char invalidIdOfList[] = "{\"errordescr\":\"Invalid Id\"}";
const char invalidIdOfRecord[] = "{\"errordescr\" : \"Invalid Id\"}";

QString trackEntry(const PlatformRecords::Track &track)
{
    return filled("{\"id\":\"%1\",\"descr\":\"%2\",\"supported\":\"%3\"},\n", track.id, track.description,
                  track.supported);
}

QString subtitleTrackEntry(const PlatformRecords::Track &track)
{
    return filled("{\"id\":\"%1\",\"descr\":\"%2\",\"supported\":\"%3\",\"encoding\":\"%4\"},\n", track.id,
                  track.description, track.supported, track.encoding);
}

QString answer(const PlatformRecords::TrackList &list, QString (*toEntry)(const PlatformRecords::Track &))
{
    if (!list.known)
        return QLatin1String(invalidIdOfList);
    QString entries;
    for (const PlatformRecords::Track &track : list.tracks)
        entries += toEntry(track);
    return JsonText::list(entries);
}

} // namespace

namespace KavroJSDeprecated {

int stb_media::GetVideoPid(int id)
{
    trace("stb_media.GetVideoPid(%1)", id);
    return KVR_GetVideoPid(id);
}

QString stb_media::GetVideoTrackList(int id)
{
    trace("stb_media.GetVideoTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetVideoTrackList, id), trackEntry);
}

int stb_media::SetAudioPid(int id, int pid)
{
    trace("stb_media.SetAudioPid(%1, %2)", id, pid);
    return KVR_SetAudioPid(id, pid);
}

int stb_media::GetAudioPid(int id)
{
    trace("stb_media.GetAudioPid(%1)", id);
    return KVR_GetAudioPid(id);
}

QString stb_media::GetAudioTrackList(int id)
{
    trace("stb_media.GetAudioTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetAudioTrackList, id), trackEntry);
}

int stb_media::SetSubtitlePid(int id, int pid)
{
    trace("stb_media.SetSubtitlePid(%1, %2)", id, pid);
    return KVR_SetSubtitlePid(id, pid);
}

int stb_media::GetSubtitlePid(int id)
{
    trace("stb_media.GetSubtitlePid(%1)", id);
    return KVR_GetSubtitlePid(id);
}

QString stb_media::GetSubtitleTrackList(int id)
{
    trace("stb_media.GetSubtitleTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetSubtitleTrackList, id), subtitleTrackEntry);
}

// This template has one place for two values. The toolkit fills in the first and warns of the second, whether or not
// tracing is on.
int stb_media::SetSubtitlesVisible(int id, int visibility)
{
    JsApiTracer::TRACE(QString::fromLatin1("stb_media.SetSubtitlesVisible(%1)").arg(id).arg(visibility));
    return KVR_SetSubtitlesVisible(id, visibility);
}

int stb_media::IsSubtitlesVisible(int playerInstance)
{
    trace("stb_media.IsSubtitlesVisible(%1)", playerInstance);
    return KVR_IsSubtitlesVisible(playerInstance);
}

QString stb_media::GetPlayerViewPort(int id)
{
    trace("stb_media.GetPlayerViewPort(%1)", id);
    KVR_Rect window;
    if (!PlatformRecords::playerWindow(id, window))
        return QLatin1String(invalidIdOfRecord);
    return JsonText::rectangle(window);
}

QString stb_media::GetLastMulticastEvent(int id)
{
    trace("stb_media.GetLastMulticastEvent(%1)", id);
    PlatformRecords::MulticastEvent event;
    if (!PlatformRecords::lastMulticastEvent(id, event))
        return QLatin1String(invalidIdOfRecord);
    return filled("{\"ip_port\":\"%1\",\"state\":\"%2\"}", event.address, event.state);
}

} // namespace KavroJSDeprecated
