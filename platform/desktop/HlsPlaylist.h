// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

namespace Desk {

/// A playlist of HTTP Live Streaming: one of segments, or one of other playlists.
struct HlsPlaylist
{
    /// The playlists that FFmpeg reads, in the order in which it numbers their streams.
    std::vector<std::string> playlists;
    std::vector<int> bitrates; ///< of each, 0 for one that is no variant of the whole
    std::vector<std::string> segments;
    std::string header;       ///< what comes before the segments, if that is a file of its own
    bool isEncrypted = false; ///< its segments are
    bool hasEnded = false;    ///< no further segments come

    /// base: its own address.
    HlsPlaylist(const std::string &text, const std::string &base);
};

} // namespace Desk
