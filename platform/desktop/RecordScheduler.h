// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "EventRegistry.h"
#include "Record.h"
#include "Recorder.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <vector>

namespace Desk {

class RecordStore;

/// The recordings: keeps the schedule, starts each recording at its time and follows it to its end. One thread does it
/// all; the functions hand it their orders and wait for their results, for which no disk is waited for.
class RecordScheduler
{
public:
    explicit RecordScheduler(EventRegistry &events);
    RecordScheduler(const RecordScheduler &) = delete;
    RecordScheduler &operator=(const RecordScheduler &) = delete;
    ~RecordScheduler() { finish(); }

    /// Reads the schedule and begins to work on it, if that has not been done.
    void start();

    KVR_ID add(const Record &record);
    std::vector<Record> all();
    std::optional<Record> find(KVR_ID id);

    /// KVR_ERR_INVALID_STATE for a recording that has begun.
    int setStart(KVR_ID id, std::uint32_t start);
    int setFile(KVR_ID id, const std::string &file);
    int setUrl(KVR_ID id, const std::string &url);

    /// KVR_ERR_INVALID_STATE for a recording that has ended.
    int setDuration(KVR_ID id, int duration);

    int remove(KVR_ID id);
    int cleanUp();

    /// Ends the thread and what is being recorded, which counts as interrupted when the box starts again.
    void finish();

private:
    using Order = std::function<void(RecordStore &)>;

    void run();
    void load(RecordStore &store);
    void work(RecordStore &store);
    void begin(RecordStore &store, Record &record);
    void takeFileFromOthers(RecordStore &store, const Record &owner);
    void reap(RecordStore &store);
    void save(RecordStore &store, const Record &record);
    void saveUnsaved(RecordStore &store);
    void change(RecordStore &store, Record &record, KVR_RecordState state);
    void changed(KVR_ID id) { m_events.send(KVR_BOX, KVR_EVENT_RECORDS, id); }
    bool forget(RecordStore &store, KVR_ID id);
    std::chrono::milliseconds untilNext() const;

    /// Runs an order on the thread and hands on its result.
    int call(const std::function<int(RecordStore &)> &order);

    /// Changes a recording that check allows to be changed.
    int edit(KVR_ID id, const std::function<int(Record &)> &apply);

    EventRegistry &m_events;
    std::mutex m_mutex; // of the orders
    std::condition_variable m_ordered;
    std::deque<Order> m_orders;
    bool m_finishing = false;
    std::thread m_thread;

    // Of the thread alone.
    std::map<KVR_ID, Record> m_records;
    std::map<KVR_ID, std::unique_ptr<Recorder>> m_recorders;
    std::vector<std::unique_ptr<Recorder>> m_cancelled;
    std::set<KVR_ID> m_unsaved; // their state is not in the store yet, since the disk is full
};

} // namespace Desk
