// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordScheduler.h"
#include "Log.h"
#include "RecordStore.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <algorithm>
#include <ctime>
#include <future>
#include <utility>

using namespace Desk;

namespace {

std::int64_t now()
{
    return static_cast<std::int64_t>(std::time(nullptr));
}

std::string nameOf(const Record &record)
{
    return "recording " + std::to_string(record.id) + " of " + record.url + " into " + record.file;
}

} // namespace

RecordScheduler::RecordScheduler(EventRegistry &events)
    : m_events(events)
{
    // Has what the toolkit shares among connections and queries made before the box is, and so destroyed after it.
    QSqlDatabase::contains();
    QSqlQuery(QSqlDatabase()).clear();
}

void RecordScheduler::start()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_thread.joinable() && !m_finishing)
        m_thread = std::thread([this] { run(); });
}

void RecordScheduler::finish()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_finishing = true;
        m_ordered.notify_one();
    }
    if (m_thread.joinable())
        m_thread.join();
}

int RecordScheduler::call(const std::function<int(RecordStore &)> &order)
{
    start();
    const auto result = std::make_shared<std::promise<int>>();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_finishing)
            return KVR_ERR_FAILED;
        m_orders.push_back([=](RecordStore &store) {
            try {
                result->set_value(order(store));
            } catch (...) {
                result->set_exception(std::current_exception());
            }
        });
        m_ordered.notify_one();
    }
    return result->get_future().get();
}

void RecordScheduler::run()
{
    RecordStore store;
    load(store);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_finishing) {
        std::deque<Order> orders;
        orders.swap(m_orders);
        lock.unlock();
        for (const Order &order : orders)
            order(store);
        work(store);
        const std::chrono::milliseconds pause = untilNext();
        lock.lock();
        m_ordered.wait_for(lock, pause, [this] { return m_finishing || !m_orders.empty(); });
    }
    std::deque<Order> orders;
    orders.swap(m_orders);
    lock.unlock(); // recorders that end take it
    // Nobody may wait for an order that nobody runs any more.
    for (const Order &order : orders)
        order(store);
    saveUnsaved(store);
    for (const auto &[id, recorder] : m_recorders)
        recorder->cancel();
    m_recorders.clear();
    m_cancelled.clear();
}

void RecordScheduler::load(RecordStore &store)
{
    for (Record &record : store.all()) {
        Record &kept = m_records[record.id] = record;
        if (kept.state == KVR_RECORD_RUNNING) {
            log(nameOf(kept) + " was interrupted: the box went off");
            change(store, kept, KVR_RECORD_INTERRUPTED);
        } else if (kept.state == KVR_RECORD_SCHEDULED && kept.end() <= now()) {
            log(nameOf(kept) + " failed: the box was off at its time");
            change(store, kept, KVR_RECORD_FAILED);
        }
    }
}

void RecordScheduler::work(RecordStore &store)
{
    reap(store);
    saveUnsaved(store);
    for (auto &[id, record] : m_records) {
        if (record.state == KVR_RECORD_SCHEDULED && record.begin <= now())
            begin(store, record);
    }
}

void RecordScheduler::begin(RecordStore &store, Record &record)
{
    // Known to run before there is a file: after a kill in between it is one that was interrupted.
    record.state = KVR_RECORD_RUNNING;
    save(store, record);
    auto file = std::make_unique<RecordFile>();
    const std::string problem = file->create(record.file);
    if (!problem.empty()) {
        log(nameOf(record) + " failed: " + problem);
        change(store, record, KVR_RECORD_FAILED);
        return;
    }
    takeFileFromOthers(store, record);
    record.ownsFile = true;
    change(store, record, KVR_RECORD_RUNNING);
    log(nameOf(record) + " started");
    m_recorders[record.id] = std::make_unique<Recorder>(record, std::move(file), [this] {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_orders.push_back([](RecordStore &) {});
        m_ordered.notify_one();
    });
}

// What earlier recordings wrote under the name of a file that is new has been removed.
void RecordScheduler::takeFileFromOthers(RecordStore &store, const Record &owner)
{
    for (auto &[id, record] : m_records) {
        if (id == owner.id || !record.ownsFile || !RecordFile::areSame(record.file, owner.file))
            continue;
        record.ownsFile = false;
        save(store, record);
    }
}

void RecordScheduler::reap(RecordStore &store)
{
    for (auto recorder = m_recorders.begin(); recorder != m_recorders.end();) {
        if (!recorder->second->hasEnded()) {
            ++recorder;
            continue;
        }
        Record &record = m_records.at(recorder->first);
        const std::string &problem = recorder->second->problem();
        log(nameOf(record) + (problem.empty() ? " done" : " failed: " + problem));
        change(store, record, problem.empty() ? KVR_RECORD_DONE : KVR_RECORD_FAILED);
        recorder = m_recorders.erase(recorder);
    }
    m_cancelled.erase(std::remove_if(m_cancelled.begin(), m_cancelled.end(),
                                     [](const std::unique_ptr<Recorder> &recorder) { return recorder->hasEnded(); }),
                      m_cancelled.end());
}

void RecordScheduler::save(RecordStore &store, const Record &record)
{
    if (store.update(record))
        m_unsaved.erase(record.id);
    else
        m_unsaved.insert(record.id);
}

void RecordScheduler::saveUnsaved(RecordStore &store)
{
    const std::set<KVR_ID> unsaved = m_unsaved;
    for (const KVR_ID id : unsaved)
        save(store, m_records.at(id));
}

void RecordScheduler::change(RecordStore &store, Record &record, KVR_RecordState state)
{
    record.state = state;
    save(store, record);
    changed(record.id);
}

std::chrono::milliseconds RecordScheduler::untilNext() const
{
    // Often enough to notice a clock that was set.
    std::chrono::milliseconds pause = std::chrono::seconds(1);
    const auto clock = std::chrono::system_clock::now().time_since_epoch();
    for (const auto &[id, record] : m_records) {
        if (record.state == KVR_RECORD_SCHEDULED)
            pause = std::min(
                pause,
                std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::seconds(record.begin) - clock)
                    + std::chrono::milliseconds(1));
    }
    return std::max(pause, std::chrono::milliseconds(0));
}

KVR_ID RecordScheduler::add(const Record &record)
{
    return call([&](RecordStore &store) -> int {
        Record added = record;
        added.begin = std::max<std::int64_t>(added.start, now());
        const std::string problem = RecordFile::problemOf(added.file);
        if (!problem.empty())
            added.state = KVR_RECORD_FAILED;
        added.id = store.add(added);
        if (added.id < 0)
            return KVR_ERR_FAILED;
        if (!problem.empty())
            log(nameOf(added) + " failed: " + problem);
        m_records[added.id] = added;
        changed(added.id);
        return added.id;
    });
}

std::vector<Record> RecordScheduler::all()
{
    std::vector<Record> result;
    call([&](RecordStore &) {
        for (const auto &[id, record] : m_records)
            result.push_back(record);
        return KVR_OK;
    });
    return result;
}

std::optional<Record> RecordScheduler::find(KVR_ID id)
{
    std::optional<Record> result;
    call([&](RecordStore &) {
        const auto found = m_records.find(id);
        if (found != m_records.end())
            result = found->second;
        return KVR_OK;
    });
    return result;
}

int RecordScheduler::edit(KVR_ID id, const std::function<int(Record &)> &apply)
{
    return call([&](RecordStore &store) -> int {
        const auto found = m_records.find(id);
        if (found == m_records.end())
            return KVR_ERR_INVALID_ID;
        Record edited = found->second;
        const int result = apply(edited);
        if (result < 0)
            return result;
        if (!store.update(edited))
            return KVR_ERR_FAILED;
        found->second = edited;
        return result;
    });
}

int RecordScheduler::setStart(KVR_ID id, std::uint32_t start)
{
    return edit(id, [=](Record &record) {
        if (record.state != KVR_RECORD_SCHEDULED)
            return KVR_ERR_INVALID_STATE;
        record.start = start;
        record.begin = std::max<std::int64_t>(start, now());
        return KVR_OK;
    });
}

int RecordScheduler::setFile(KVR_ID id, const std::string &file)
{
    return edit(id, [&](Record &record) {
        if (record.state != KVR_RECORD_SCHEDULED)
            return KVR_ERR_INVALID_STATE;
        const std::string problem = RecordFile::problemOf(file);
        if (!problem.empty()) {
            log(nameOf(record) + " keeps its name, " + file + " is none: " + problem);
            return KVR_ERR_INVALID_ARGUMENT;
        }
        record.file = file;
        return KVR_OK;
    });
}

int RecordScheduler::setUrl(KVR_ID id, const std::string &url)
{
    return edit(id, [&](Record &record) {
        if (record.state != KVR_RECORD_SCHEDULED)
            return KVR_ERR_INVALID_STATE;
        record.url = url;
        return KVR_OK;
    });
}

int RecordScheduler::setDuration(KVR_ID id, int duration)
{
    return edit(id, [=](Record &record) {
        if (record.ended())
            return KVR_ERR_INVALID_STATE;
        record.duration = duration;
        const auto recorder = m_recorders.find(id);
        if (recorder != m_recorders.end())
            recorder->second->setEnd(record.end());
        return KVR_OK;
    });
}

bool RecordScheduler::forget(RecordStore &store, KVR_ID id)
{
    if (!store.remove(id))
        return false;
    m_records.erase(id);
    m_unsaved.erase(id);
    changed(id);
    return true;
}

int RecordScheduler::remove(KVR_ID id)
{
    return call([=](RecordStore &store) -> int {
        if (m_records.find(id) == m_records.end())
            return KVR_ERR_INVALID_ID;
        if (!forget(store, id))
            return KVR_ERR_FAILED;
        const auto recorder = m_recorders.find(id);
        if (recorder != m_recorders.end()) {
            recorder->second->cancel();
            m_cancelled.push_back(std::move(recorder->second));
            m_recorders.erase(recorder);
        }
        return KVR_OK;
    });
}

int RecordScheduler::cleanUp()
{
    return call([this](RecordStore &store) {
        std::vector<Record> ended;
        for (const auto &[id, record] : m_records) {
            if (record.ended())
                ended.push_back(record);
        }
        int result = KVR_OK;
        for (const Record &record : ended) {
            // First, since it may make the room in which the schedule is written.
            if (record.state == KVR_RECORD_FAILED && record.ownsFile)
                RecordFile::remove(record.file);
            if (!forget(store, record.id))
                result = KVR_ERR_FAILED;
        }
        return result;
    });
}
