// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "BufferTimes.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Desk {

/// What a player is asked to play.
struct PlayRequest
{
    enum Kind { File, Stream, Http, Rtsp, Magnet };

    /// Whether the player core itself reads it from the network.
    bool isRemote() const { return kind != File && kind != Magnet; }

    Kind kind = File;
    /// When it was asked.
    std::chrono::steady_clock::time_point time = std::chrono::steady_clock::now();
    std::string address;              ///< path, URL or magnet link
    std::function<bool()> isRecorded; ///< whether a recording writes the file yet; empty when none did
    std::vector<std::string> headers; ///< of HTTP requests, "Name: value"
    std::string subtitles;            ///< path of a subtitle file, or empty
    std::string torrentFile;          ///< file inside the torrent, or empty for the largest
    bool rtspOverTcp = false;
    double start = 0; ///< seconds
    BufferTimes bufferTimes;
    int videoPid = -1;
    int audioPid = -1;
    int subtitlePid = -1;
};

} // namespace Desk
