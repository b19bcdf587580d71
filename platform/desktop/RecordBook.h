// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "EventRegistry.h"
#include "Record.h"
#include "RecordClock.h"
#include "RecordWriter.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Desk {

/// The recordings as they are now, and all that changes them. Reads wait for nothing, orders of pages for some
/// milliseconds at most, as the RecordWriter has it.
///
/// Two locks. One is held through each change, so that book, store and events have the changes in one order. Below it
/// lie the writer's lock, those of the queues of events and of what a change wakes, and the other one, of the map. That
/// is all that a read takes; under it nothing is called that waits or takes a lock.
class RecordBook
{
public:
    /// changed is called after each order of a page, under the lock of changes.
    RecordBook(EventRegistry &events, RecordWriter &writer, std::function<void()> changed);

    /// Takes in what the store had. What was running has been interrupted; what should have, missed.
    void open(const std::vector<Record> &records, KVR_ID highestId);

    // Reads.
    std::vector<Record> all() const;
    std::optional<Record> find(KVR_ID id) const;
    DueRecords due() const;
    bool isRunning(const std::string &file) const;
    /// Other recordings than this one that have written its file.
    std::vector<Record> othersOf(const Record &record) const;

    // Orders of pages. Negative on failure, as the KVR_ functions have it.
    KVR_ID add(Record record);
    int setStart(KVR_ID id, std::uint32_t start);
    int setFile(KVR_ID id, const std::string &file);
    int setUrl(KVR_ID id, const std::string &url);
    int setDuration(KVR_ID id, int duration);
    int remove(KVR_ID id) { return remove(std::vector<KVR_ID>{id}); }
    int remove(const std::vector<KVR_ID> &ids); ///< all or none; those that are not there are left out

    // What becomes of a recording.
    /// A scheduled one runs from now on, and the store knows it. Its file is still to be created; that is what pages
    /// hear of. None when it is not scheduled any more.
    std::optional<Record> begin(KVR_ID id);
    /// Its file has been created. False when it has been removed meanwhile.
    bool confirm(KVR_ID id);
    void end(KVR_ID id, KVR_RecordState state, const std::string &fate);

private:
    enum class When { Scheduled, NotEnded };

    int edit(KVR_ID id, When when, const std::function<void(Record &)> &apply);
    void put(const Record &record);
    void become(const Record &record, const std::string &fate);
    void tell(KVR_ID id) { m_events.send(KVR_BOX, KVR_EVENT_RECORDS, id); }

    EventRegistry &m_events;
    RecordWriter &m_writer;
    const std::function<void()> m_changed;

    std::mutex m_changes;
    KVR_ID m_highestId = 0; // of m_changes

    mutable std::mutex m_mutex;
    std::map<KVR_ID, Record> m_records;
};

} // namespace Desk
