// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Record.h"
#include "RecordFile.h"
#include "StreamCopy.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace Desk {

/// A recording that runs, on a thread of its own.
class Recorder
{
public:
    /// Starts it. file is open for it. ended is called on its thread, as the last thing it does.
    Recorder(const Record &record, std::unique_ptr<RecordFile> file, std::function<void()> ended);
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    /// Cancels it if need be. Waits for its thread.
    ~Recorder();

    /// Its end has come.
    void stop() { m_copy.stop(); }
    /// It is to end at once, whatever there is.
    void cancel() { m_copy.cancel(); }
    bool hasEnded() const { return m_ended; }

    /// Why it has failed. To be asked when it has ended.
    const Problem &problem() const { return m_problem; }

private:
    const std::unique_ptr<RecordFile> m_file;
    StreamCopy m_copy;
    Problem m_problem;
    std::atomic<bool> m_ended{false};
    std::thread m_thread;
};

} // namespace Desk
