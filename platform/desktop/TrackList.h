// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <mpv/client.h>
#include <string>
#include <vector>

namespace Desk {

enum class TrackKind { Video, Audio, Subtitle, Teletext };

/// What tells of one stream, where the player core does not.
struct StreamName
{
    int pid = 0;
    std::string language;
    int bitrate = 0; ///< of the variant that it belongs to, 0 when there is none
};

struct Track
{
    TrackKind kind = TrackKind::Video;
    int number = 0; ///< by which the player core chooses it, among those of its kind
    bool selected = false;
    bool external = false; ///< from a file of its own
    int stream = -1;       ///< FFmpeg's number of it
    int place = 0;         ///< in the core's list
    int pid = 0;           ///< its own, 0 for none
    std::string language;
    std::string coding;
    KVR_Track entry = {}; ///< as the KVR_ functions hand it out
};

/// The tracks of what a player plays.
class TrackList
{
public:
    TrackList() = default;

    /// From the player core's property "track-list".
    explicit TrackList(const mpv_node &list);

    /// The same with what is known of FFmpeg's streams beside: tracks without a PID or a language get it from there,
    /// and of the variants of a stream, which have the same tracks, those of the best one stay.
    TrackList named(const std::vector<StreamName> &names) const;

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

    void describe();

    std::vector<Track> m_tracks;
};

} // namespace Desk
