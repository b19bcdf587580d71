// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "RecordBook.h"
#include "Recorder.h"
#include "TaskQueue.h"

#include <map>
#include <memory>
#include <vector>

namespace Desk {

/// Makes the recordings of the book: begins and ends each at its time, on a thread of its own, which also creates and
/// removes their files. A file system that stands still delays these and nothing else.
class RecordScheduler
{
public:
    explicit RecordScheduler(RecordBook &book);

    /// Has it look at the book, which has changed. From the first time on it also looks whenever something is due.
    void wake();

    /// Removes the files of recordings, and waits a moment for it.
    void removeFiles(const std::vector<Record> &records);

    /// Has it give recordings up that the store does not take.
    void giveUp(const std::vector<KVR_ID> &ids);

    /// Ends the thread and what is being recorded, which counts as interrupted when the box starts again.
    void finish();

private:
    void look();
    void begin(KVR_ID id);
    void reap();
    void dropRemoved();

    RecordBook &m_book;

    // Of the thread.
    std::map<KVR_ID, std::unique_ptr<Recorder>> m_recorders;
    std::vector<std::unique_ptr<Recorder>> m_cancelled;

    TaskQueue m_queue;
};

} // namespace Desk
