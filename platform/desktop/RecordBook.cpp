// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordBook.h"
#include "Log.h"
#include "RecordFile.h"

#include <algorithm>
#include <ctime>
#include <utility>

using namespace Desk;

RecordBook::RecordBook(EventRegistry &events, RecordWriter &writer, std::function<void()> changed)
    : m_events(events)
    , m_writer(writer)
    , m_changed(std::move(changed))
{
}

void RecordBook::open(const std::vector<Record> &records, KVR_ID highestId)
{
    const std::lock_guard<std::mutex> changing(m_changes);
    m_highestId = highestId;
    for (Record record : records) {
        const std::string fate = fateWhileOff(record, wallClock());
        if (fate.empty()) {
            put(record);
            continue;
        }
        m_writer.save({{record.id, record}});
        become(record, fate);
    }
}

std::vector<Record> RecordBook::all() const
{
    std::vector<Record> all;
    const std::lock_guard<std::mutex> lock(m_mutex);
    all.reserve(m_records.size());
    for (const auto &[id, record] : m_records)
        all.push_back(record);
    return all;
}

std::optional<Record> RecordBook::find(KVR_ID id) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_records.find(id);
    return found == m_records.end() ? std::nullopt : std::make_optional(found->second);
}

DueRecords RecordBook::due() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return dueAt(wallClock(), m_records);
}

bool RecordBook::isRunning(const std::string &file) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::any_of(m_records.begin(), m_records.end(), [&](const auto &entry) {
        const Record &record = entry.second;
        return record.state == KVR_RECORD_RUNNING && RecordFile::areSame(record.file, file);
    });
}

std::vector<Record> RecordBook::othersOf(const Record &record) const
{
    std::vector<Record> others;
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto &[id, other] : m_records) {
        if (id != record.id && other.ownsFile && RecordFile::areSame(other.file, record.file))
            others.push_back(other);
    }
    return others;
}

void RecordBook::put(const Record &record)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records[record.id] = record;
}

void RecordBook::become(const Record &record, const std::string &fate)
{
    if (!fate.empty())
        log(record.name() + ' ' + fate);
    put(record);
    tell(record.id);
}

KVR_ID RecordBook::add(Record record)
{
    const Problem problem = RecordFile::problemOf(record.file);
    if (problem)
        record.state = KVR_RECORD_FAILED;
    const std::lock_guard<std::mutex> changing(m_changes);
    record.begin = std::max<std::int64_t>(record.start, std::time(nullptr));
    record.id = m_highestId + 1;
    if (!m_writer.take({{record.id, record}}, RecordWriter::Order::Add))
        return KVR_ERR_FAILED;
    m_highestId = record.id;
    become(record, problem ? "failed: " + *problem : std::string());
    m_changed();
    return record.id;
}

int RecordBook::edit(KVR_ID id, When when, const std::function<void(Record &)> &apply)
{
    const std::lock_guard<std::mutex> changing(m_changes);
    std::optional<Record> record = find(id);
    if (!record)
        return KVR_ERR_INVALID_ID;
    if (when == When::Scheduled ? record->state != KVR_RECORD_SCHEDULED : record->ended())
        return KVR_ERR_INVALID_STATE;
    apply(*record);
    if (!m_writer.take({{id, record}}, RecordWriter::Order::Change))
        return KVR_ERR_FAILED;
    put(*record);
    m_changed();
    return KVR_OK;
}

int RecordBook::setStart(KVR_ID id, std::uint32_t start)
{
    return edit(id, When::Scheduled, [=](Record &record) {
        record.start = start;
        record.begin = std::max<std::int64_t>(start, std::time(nullptr));
    });
}

int RecordBook::setFile(KVR_ID id, const std::string &file)
{
    const std::optional<Record> record = find(id);
    const Problem problem = RecordFile::problemOf(file);
    if (problem && record && record->state == KVR_RECORD_SCHEDULED) {
        log(record->name() + " keeps its name, " + file + " is none: " + *problem);
        return KVR_ERR_INVALID_ARGUMENT;
    }
    return edit(id, When::Scheduled, [&](Record &edited) { edited.file = file; });
}

int RecordBook::setUrl(KVR_ID id, const std::string &url)
{
    return edit(id, When::Scheduled, [&](Record &record) { record.url = url; });
}

int RecordBook::setDuration(KVR_ID id, int duration)
{
    return edit(id, When::NotEnded, [=](Record &record) { record.duration = duration; });
}

int RecordBook::remove(const std::vector<KVR_ID> &ids)
{
    const std::lock_guard<std::mutex> changing(m_changes);
    RecordWriter::Changes removal;
    for (const KVR_ID id : ids) {
        if (find(id))
            removal[id] = std::nullopt;
    }
    if (removal.empty())
        return KVR_ERR_INVALID_ID;
    if (!m_writer.take(removal, RecordWriter::Order::Change))
        return KVR_ERR_FAILED;
    for (const auto &[id, none] : removal) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_records.erase(id);
        }
        tell(id);
    }
    m_changed();
    return KVR_OK;
}

std::optional<Record> RecordBook::begin(KVR_ID id)
{
    const std::lock_guard<std::mutex> changing(m_changes);
    std::optional<Record> record = find(id);
    if (!record || record->state != KVR_RECORD_SCHEDULED)
        return std::nullopt;
    record->state = KVR_RECORD_RUNNING;
    m_writer.saveNow({{id, record}});
    put(*record);
    return record;
}

bool RecordBook::confirm(KVR_ID id)
{
    const std::lock_guard<std::mutex> changing(m_changes);
    std::optional<Record> record = find(id);
    if (!record)
        return false;
    record->ownsFile = true;
    // What earlier recordings wrote under the name of a file that is new has been removed.
    RecordWriter::Changes owners = {{id, record}};
    for (Record &other : othersOf(*record)) {
        other.ownsFile = false;
        put(other);
        owners[other.id] = other;
    }
    m_writer.save(owners);
    become(*record, "started");
    return true;
}

void RecordBook::end(KVR_ID id, KVR_RecordState state, const std::string &fate)
{
    const std::lock_guard<std::mutex> changing(m_changes);
    std::optional<Record> record = find(id);
    if (!record || record->ended())
        return;
    record->state = state;
    m_writer.saveNow({{id, record}});
    become(*record, fate);
}
