// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "RecordBook.h"
#include "RecordScheduler.h"
#include "RecordWriter.h"

#include <future>
#include <mutex>
#include <string>

namespace Desk {

/// The recordings of the box: their book, what writes it down, and what makes the recordings.
class Recordings
{
public:
    explicit Recordings(EventRegistry &events);

    /// Has the schedule read and worked on, if that has not begun. Waits for nothing.
    void start();

    /// The book. The first call waits until the schedule has been read.
    RecordBook &book();

    /// Whether a recording that runs writes this file. Waits for nothing: none does before the schedule has been read.
    bool isRunning(const std::string &file) const { return m_book.isRunning(file); }

    /// Forgets the recordings that have ended, and removes the files of those that failed.
    int cleanUp();

    /// Ends what is being recorded, and writes what is unwritten.
    void finish();

private:
    RecordWriter m_writer;
    RecordBook m_book;
    RecordScheduler m_scheduler;

    std::once_flag m_started;
    std::promise<void> m_read;
    const std::shared_future<void> m_isRead{m_read.get_future()};
};

} // namespace Desk
