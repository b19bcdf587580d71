// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The platform's records in the toolkit's types, for the current and the deprecated script objects alike. Each of those
// gives them its own form.

#pragma once

#include "platform/stbapi.h"

#include <QList>
#include <QString>

namespace PlatformRecords {

/// 8-bit text of the platform, up to its NUL or the end of its field of this size.
QString fieldText(const char *field, int size);

struct Track
{
    int id;
    QString description;
    int supported;
    int encoding; ///< of subtitles
};

struct TrackList
{
    bool known; ///< false for an unknown player; the rest is then empty
    int count;  ///< as the platform told it, which may be less than 0
    QList<Track> tracks;
};

typedef int (*TrackQuery)(KVR_ID id, KVR_Track **tracks, int *count);

/// Asks the platform, and releases its array.
TrackList trackList(TrackQuery query, int id);

struct MulticastEvent
{
    QString address; ///< "group:port"
    QString state;   ///< "join" or "leave"
};

/// False for an unknown player.
bool lastMulticastEvent(int id, MulticastEvent &event);

/// False for an unknown player.
bool playerWindow(int id, KVR_Rect &window);

} // namespace PlatformRecords
