// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <list>
#include <memory>
#include <mpv/stream_cb.h>
#include <mutex>

namespace Desk {

class MagnetDownload;

/// Lets a player core read from a magnet link's download, under an address of its own. Outlives the core.
class MagnetStream
{
public:
    MagnetStream();
    MagnetStream(const MagnetStream &) = delete;
    MagnetStream &operator=(const MagnetStream &) = delete;
    ~MagnetStream();

    static constexpr char address[] = "kavro-magnet://stream";

    /// Makes the address known to a core.
    void install(mpv_handle *core);

    /// What the address stands for from now on; null for nothing.
    void setDownload(std::shared_ptr<MagnetDownload> download);

private:
    struct Reader;
    static int open(void *self, char *address, mpv_stream_cb_info *info);

    std::mutex m_mutex;
    std::shared_ptr<MagnetDownload> m_download;
    std::list<Reader> m_readers; // all that there were, since the core may cancel one that it has closed
};

} // namespace Desk
