// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "StreamReaders.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mpv/stream_cb.h>
#include <mutex>
#include <string>

namespace Desk {

class MpvCore;

/// The file of a recording that runs.
struct RunningFile
{
    std::string name;
    std::function<bool()> isRunning; ///< any thread
    /// Once what it has is known, its end is waited for; until then, what is there is all there is.
    std::atomic<bool> isOpened{false};
};

/// Lets a player core read the file of a recording while it is made: at its end there is more to come, for as long as
/// the recording runs. Outlives the core.
class RunningFileStream
{
public:
    static constexpr char address[] = "kavro-recording://running.ts";

    RunningFileStream();
    RunningFileStream(const RunningFileStream &) = delete;
    RunningFileStream &operator=(const RunningFileStream &) = delete;
    ~RunningFileStream();

    void install(MpvCore &core);

    /// What the address stands for when it is opened next.
    void setFile(std::shared_ptr<const RunningFile> file);

private:
    struct Reader;
    static int open(void *self, char *address, mpv_stream_cb_info *info);

    std::mutex m_mutex;
    std::shared_ptr<const RunningFile> m_file;
    StreamReaders<Reader> m_readers;
};

} // namespace Desk
