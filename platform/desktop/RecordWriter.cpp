// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordWriter.h"

#include <iterator>
#include <utility>

using namespace Desk;

namespace {

using Clock = TaskQueue::Clock;
using Outcome = RecordStore::Outcome;

constexpr std::chrono::milliseconds patience{10};
constexpr std::chrono::seconds retryPause{1};

} // namespace

RecordWriter::RecordWriter(std::function<void(const std::vector<KVR_ID> &)> broken)
    : m_broken(std::move(broken))
{
}

bool RecordWriter::load(std::function<void(std::vector<Record>, KVR_ID)> loaded)
{
    return m_queue.post([this, loaded = std::move(loaded)] {
        m_store = std::make_unique<RecordStore>();
        loaded(m_store->all(), m_store->highestId());
    });
}

RecordWriter::Number RecordWriter::put(const Changes &changes)
{
    if (!m_queue.post([this] { write(); }))
        return 0;
    ++m_last;
    for (const auto &[id, record] : changes) {
        Entry &entry = m_unwritten[id];
        entry.record = record;
        entry.number = m_last;
    }
    return m_last;
}

// Only a write that has begun is not waited for: until then it is the computer that is busy, and no disk.
void RecordWriter::await(std::unique_lock<std::mutex> &lock, Number number)
{
    while (m_tried < number) {
        if (!m_begun)
            m_changed.wait(lock);
        else if (Clock::now() < *m_begun + patience)
            m_changed.wait_until(lock, *m_begun + patience);
        else
            return;
    }
}

void RecordWriter::save(const Changes &changes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    put(changes);
}

void RecordWriter::saveNow(const Changes &changes)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    await(lock, put(changes));
}

bool RecordWriter::take(const Changes &changes, Order order)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    std::map<KVR_ID, Entry> before;
    for (const auto &[id, record] : changes) {
        if (const auto entry = m_unwritten.find(id); entry != m_unwritten.end())
            before.insert(*entry);
    }
    const Number number = put(changes);
    await(lock, number);
    const bool isRefused = number == 0 || (m_tried >= number && m_outcome == Outcome::Refused);
    for (const auto &[id, record] : changes) {
        const auto entry = m_unwritten.find(id);
        if (entry == m_unwritten.end())
            continue;
        if (!isRefused)
            entry->second.isPromised |= order == Order::Add;
        else if (const auto earlier = before.find(id); earlier != before.end())
            entry->second = earlier->second;
        else
            m_unwritten.erase(entry);
    }
    return !isRefused;
}

void RecordWriter::write()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_unwritten.empty())
        return;
    Changes changes;
    for (const auto &[id, entry] : m_unwritten)
        changes[id] = entry.record;
    const Number number = m_last;
    m_begun = Clock::now();
    m_changed.notify_all();
    lock.unlock();
    const Outcome outcome = m_store->write(changes);
    lock.lock();

    std::vector<KVR_ID> broken;
    for (auto entry = m_unwritten.begin(); entry != m_unwritten.end();) {
        if (outcome == Outcome::Refused && std::exchange(entry->second.isPromised, false))
            broken.push_back(entry->first);
        const bool isWritten = outcome == Outcome::Written && entry->second.number <= number;
        entry = isWritten ? m_unwritten.erase(entry) : std::next(entry);
    }
    m_begun.reset();
    m_tried = number;
    m_outcome = outcome;
    m_changed.notify_all();
    lock.unlock();

    if (outcome != Outcome::Written)
        m_queue.postAt(Clock::now() + retryPause, [this] { write(); });
    if (m_store->hasLongLog())
        m_shortening.postAt(Clock::now(), [] { RecordStore::shortenLog(); });
    if (!broken.empty())
        m_broken(broken);
}

void RecordWriter::finish()
{
    m_queue.finish();
    m_shortening.finish();
    if (m_store)
        write();
    m_store.reset();
}
