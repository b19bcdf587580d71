// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <mpv/client.h>
#include <vector>

namespace Desk {

enum class TrackKind { Video, Audio, Subtitle, Teletext };

struct Track
{
    TrackKind kind = TrackKind::Video;
    int number = 0; ///< by which the player core chooses it, among those of its kind
    bool selected = false;
    bool external = false; ///< from a file of its own
    KVR_Track entry = {};  ///< as the KVR_ functions hand it out
};

/// The tracks of what a player plays.
class TrackList
{
public:
    TrackList() = default;

    /// From the player core's property "track-list".
    explicit TrackList(const mpv_node &list);

    const std::vector<Track> &tracks() const { return m_tracks; }
    std::vector<KVR_Track> entries(TrackKind kind) const;
    const Track *find(TrackKind kind, int pid) const;
    const Track *selected(TrackKind kind) const;
    const Track *first(TrackKind kind) const;
    const Track *external(TrackKind kind) const;

    /// Whether the tracks of a kind are the same, chosen or not.
    bool sameTracks(const TrackList &other, TrackKind kind) const;

private:
    template <typename Test>
    const Track *firstThat(Test test) const;

    std::vector<Track> m_tracks;
};

} // namespace Desk
