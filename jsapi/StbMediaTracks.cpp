// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The slots of StbMedia for tracks, subtitles, teletext and what else a page asks of a stream.

#include "jsapi/StbMedia.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/FailureMap.h"
#include "jsapi/PlatformRecords.h"
#include "platform/stbapi.h"

#include <QDebug>

namespace {

QVariantMap invalidId()
{
    return failureMap(QLatin1String("Invalid Id"), QLatin1String("30"));
}

QVariantMap trackMap(const PlatformRecords::Track &track)
{
    QVariantMap map;
    map[QLatin1String("id")] = track.id;
    map[QLatin1String("descr")] = track.description;
    map[QLatin1String("supported")] = track.supported;
    return map;
}

QVariantMap subtitleTrackMap(const PlatformRecords::Track &track)
{
    QVariantMap map = trackMap(track);
    map[QLatin1String("encoding")] = track.encoding;
    return map;
}

QVariant answer(const PlatformRecords::TrackList &list, QVariantMap (*toMap)(const PlatformRecords::Track &))
{
    if (!list.known)
        return invalidId();
    QVariantList answer;
    for (const PlatformRecords::Track &track : list.tracks)
        answer.append(toMap(track));
    return answer;
}

} // namespace

namespace KavroJS {

int StbMedia::GetVideoPid(int id)
{
    trace("StbMedia.GetVideoPid(%1)", id);
    return KVR_GetVideoPid(id);
}

int StbMedia::GetAudioPid(int id)
{
    trace("StbMedia.GetAudioPid(%1)", id);
    return KVR_GetAudioPid(id);
}

int StbMedia::SetAudioPid(int id, int pid)
{
    trace("StbMedia.SetAudioPid(%1, %2)", id, pid);
    return KVR_SetAudioPid(id, pid);
}

int StbMedia::GetSubtitlePid(int id)
{
    trace("StbMedia.GetSubtitlePid(%1)", id);
    return KVR_GetSubtitlePid(id);
}

int StbMedia::SetSubtitlePid(int id, int pid)
{
    trace("StbMedia.SetSubtitlePid(%1, %2)", id, pid);
    return KVR_SetSubtitlePid(id, pid);
}

int StbMedia::IsSubtitlesVisible(int playerInstance)
{
    trace("StbMedia.IsSubtitlesVisible(%1)", playerInstance);
    return KVR_IsSubtitlesVisible(playerInstance);
}

int StbMedia::SetSubtitlesVisible(int id, int visibility)
{
    trace("StbMedia.SetSubtitlesVisible(%1, %2)", id, visibility);
    return KVR_SetSubtitlesVisible(id, visibility);
}

int StbMedia::GetTeletextPid(int id)
{
    trace("StbMedia.GetTeletextPid(%1)", id);
    return KVR_GetTeletextPid(id);
}

int StbMedia::SetTeletextPid(int id, int pid)
{
    trace("StbMedia.SetTeletextPid(%1, %2)", id, pid);
    return KVR_SetTeletextPid(id, pid);
}

int StbMedia::GetTeletextPage(int id)
{
    trace("StbMedia.GetTeletextPage(%1)", id);
    return KVR_GetTeletextPage(id);
}

int StbMedia::SetTeletextPage(int id, int page)
{
    trace("StbMedia.SetTeletextPage(%1, %2)", id, page);
    return KVR_SetTeletextPage(id, page);
}

int StbMedia::IsTeletextVisible(int id)
{
    trace("StbMedia.IsTeletextVisible(%1)", id);
    return KVR_IsTeletextVisible(id);
}

int StbMedia::SetTeletextVisible(int id, int visibility)
{
    trace("StbMedia.SetTeletextVisible(%1, %2)", id, visibility);
    return KVR_SetTeletextVisible(id, visibility);
}

QVariant StbMedia::GetVideoTrackList(int id)
{
    trace("StbMedia.GetVideoTrackList(%1)", id);
    const PlatformRecords::TrackList list = PlatformRecords::trackList(KVR_GetVideoTrackList, id);
    if (!list.known)
        qWarning() << "Invalid Id";
    return answer(list, trackMap);
}

QVariant StbMedia::GetAudioTrackList(int id)
{
    trace("StbMedia.GetAudioTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetAudioTrackList, id), trackMap);
}

QVariant StbMedia::GetSubtitleTrackList(int id)
{
    trace("StbMedia.GetSubtitleTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetSubtitleTrackList, id), subtitleTrackMap);
}

QVariant StbMedia::GetTeletextTrackList(int id)
{
    trace("StbMedia.GetTeletextTrackList(%1)", id);
    const PlatformRecords::TrackList list = PlatformRecords::trackList(KVR_GetTeletextTrackList, id);
    if (list.known)
        qDebug() << "Teletext number: " << list.count;
    return answer(list, trackMap);
}

QVariant StbMedia::GetLastMulticastEvent(int id)
{
    trace("StbMedia.GetLastMulticastEvent(%1)", id);
    PlatformRecords::MulticastEvent event;
    if (!PlatformRecords::lastMulticastEvent(id, event)) {
        qWarning() << "Invalid Id";
        return invalidId();
    }
    QVariantMap answer;
    answer[QLatin1String("ip_port")] = event.address;
    answer[QLatin1String("state")] = event.state;
    return answer;
}

QVariant StbMedia::GetPlayerViewPort(int id)
{
    trace("StbMedia.GetPlayerViewPort(%1)", id);
    KVR_Rect window;
    if (!PlatformRecords::playerWindow(id, window)) {
        qWarning() << "Invalid Id";
        return invalidId();
    }
    QVariantMap answer;
    answer[QLatin1String("x")] = window.x;
    answer[QLatin1String("y")] = window.y;
    answer[QLatin1String("width")] = window.width;
    answer[QLatin1String("height")] = window.height;
    return answer;
}

} // namespace KavroJS
