// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <mpv/client.h>
#include <mutex>

namespace Desk {

class MagnetDownload;

/// Lets a player core read from a magnet link's download, under an address of its own. Outlives the core.
class MagnetStream
{
public:
    static constexpr char address[] = "kavro-magnet://stream";

    /// Makes the address known to a core.
    void install(mpv_handle *core);

    /// What the address stands for from now on; null for nothing.
    void setDownload(std::shared_ptr<MagnetDownload> download);
    std::shared_ptr<MagnetDownload> download() const;

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<MagnetDownload> m_download;
};

} // namespace Desk
