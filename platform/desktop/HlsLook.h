// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"
#include "TrackList.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace Desk {

/// Looks at a playlist beside the player core, on threads of its own, for three seconds at most. When it is destroyed,
/// what it looks at is given up.
class HlsLook
{
public:
    static constexpr std::chrono::seconds longest{3};

    /// headers: of the requests, "Name: value".
    HlsLook(std::string address, const std::vector<std::string> &headers);
    HlsLook(const HlsLook &) = delete;
    HlsLook &operator=(const HlsLook &) = delete;
    ~HlsLook() { *m_cancelled = true; }

    /// The streams in the order in which FFmpeg numbers them, as far as they can be found out: its demuxer of playlists
    /// does not hand on what the segments tell.
    std::future<std::vector<StreamName>> streamNames() const;

    /// Why what has come to its end has not come to that of the playlist.
    std::future<Problem> problemAtEnd() const;

private:
    template <typename Result, typename Task>
    std::future<Result> begin(Task task) const;

    const std::string m_address;
    const std::string m_headers;
    const std::shared_ptr<std::atomic<bool>> m_cancelled = std::make_shared<std::atomic<bool>>(false);
};

} // namespace Desk
