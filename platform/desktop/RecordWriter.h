// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "RecordStore.h"
#include "TaskQueue.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Desk {

/// Brings the schedule to its store, on a thread of its own. What the store does not take now is tried again until it
/// does, each recording as it is by then.
///
/// What a page is told to be done outlives a kill of the process, and what the store refuses, say on a full disk, the
/// page is told to have failed: so an order waits to be written. But it does not wait for a disk that stands still, nor
/// for a program that has the database locked: after some milliseconds it is taken unwritten. A new recording that the
/// store refuses after that is handed to the function for broken promises. Changes and removals are not: they hold
/// until the process ends, and the log has the reason why they may not outlive it.
///
/// Its lock is taken below that of changes in the RecordBook. Under it only tasks are posted.
class RecordWriter
{
public:
    using Changes = RecordStore::Changes;
    enum class Order { Add, Change };

    /// The function is called on the writer's thread, and must not wait for an order.
    explicit RecordWriter(std::function<void(const std::vector<KVR_ID> &)> broken);

    /// Opens the store on the thread, and calls a function there with what is in it and the highest identifier that was
    /// ever used. Comes before everything else. False after finish().
    bool load(std::function<void(std::vector<Record>, KVR_ID)> loaded);

    /// Has changes written, without waiting.
    void save(const Changes &changes);

    /// Has changes written, and waits a moment for it.
    void saveNow(const Changes &changes);

    /// The same for what a page orders: false, and nothing is changed, when the store refuses it.
    bool take(const Changes &changes, Order order);

    /// Writes what is unwritten, and ends the thread.
    void finish();

private:
    using Number = unsigned long long; // of a change, growing

    struct Entry
    {
        std::optional<Record> record;
        Number number = 0;
        bool isPromised = false; // a new recording that was taken unwritten
    };

    /// 0 after finish().
    Number put(const Changes &changes);
    void await(std::unique_lock<std::mutex> &lock, Number number);
    void write();

    const std::function<void(const std::vector<KVR_ID> &)> m_broken;
    std::unique_ptr<RecordStore> m_store; // of the thread

    std::mutex m_mutex; // of what follows
    std::condition_variable m_changed;
    std::map<KVR_ID, Entry> m_unwritten;
    Number m_last = 0;                                              // given to a change
    Number m_tried = 0;                                             // what the latest write went up to
    std::optional<TaskQueue::Clock::time_point> m_begun;            // the write that goes on
    RecordStore::Outcome m_outcome = RecordStore::Outcome::Written; // of the latest write

    TaskQueue m_shortening; // of the store's log, for which no write waits
    TaskQueue m_queue;
};

} // namespace Desk
