// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/PlatformRecords.h"

#include <cstdlib>
#include <cstring>

QString PlatformRecords::fieldText(const char *field, int size)
{
    return QString::fromLatin1(field, static_cast<int>(strnlen(field, size)));
}

PlatformRecords::TrackList PlatformRecords::trackList(TrackQuery query, int id)
{
    TrackList list = {false, 0, QList<Track>()};
    KVR_Track *tracks = nullptr;
    if (query(id, &tracks, &list.count) == KVR_ERR_INVALID_ID)
        return list;
    list.known = true;
    for (int i = 0; tracks && i < list.count; ++i) {
        const KVR_Track &track = tracks[i];
        const Track entry = {track.id, fieldText(track.descr, sizeof track.descr), track.supported, track.encoding};
        list.tracks.append(entry);
    }
    free(tracks);
    return list;
}

bool PlatformRecords::lastMulticastEvent(int id, MulticastEvent &event)
{
    KVR_MulticastEvent record = {};
    if (KVR_GetLastMulticastEvent(id, &record) == KVR_ERR_INVALID_ID)
        return false;
    event.address = fieldText(record.ip_port, sizeof record.ip_port);
    event.state = QLatin1String(record.join ? "join" : "leave");
    return true;
}

bool PlatformRecords::playerWindow(int id, KVR_Rect &window)
{
    window = KVR_Rect();
    return KVR_GetPlayerViewPort(id, &window) != KVR_ERR_INVALID_ID;
}
