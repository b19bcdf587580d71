// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "StreamReaders.h"

#include <memory>
#include <mpv/stream_cb.h>
#include <mutex>

namespace Desk {

class MagnetDownload;
class MpvCore;

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
    void install(MpvCore &core);

    /// What the address stands for from now on; null for nothing.
    void setDownload(std::shared_ptr<MagnetDownload> download);

private:
    struct Reader;
    static int open(void *self, char *address, mpv_stream_cb_info *info);

    std::mutex m_mutex;
    std::shared_ptr<MagnetDownload> m_download;
    StreamReaders<Reader> m_readers;
};

} // namespace Desk
