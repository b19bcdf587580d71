// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordScheduler.h"

#include <algorithm>
#include <future>
#include <utility>

using namespace Desk;

namespace {

using Clock = TaskQueue::Clock;

constexpr std::chrono::milliseconds patience{10}; // with the removal of files

} // namespace

RecordScheduler::RecordScheduler(RecordBook &book)
    : m_book(book)
{
}

void RecordScheduler::wake()
{
    m_queue.postAt(Clock::now(), [this] { look(); });
}

void RecordScheduler::look()
{
    const Clock::time_point time = Clock::now();
    const DueRecords due = m_book.due();
    dropRemoved();
    for (const KVR_ID id : due.missed)
        m_book.end(id, KVR_RECORD_FAILED, "failed: its time was over before it could begin");
    for (const KVR_ID id : due.end) {
        const auto recorder = m_recorders.find(id);
        if (recorder != m_recorders.end())
            recorder->second->stop();
    }
    for (const KVR_ID id : due.begin)
        begin(id);
    m_queue.postAt(time + due.next, [this] { look(); });
}

void RecordScheduler::begin(KVR_ID id)
{
    // Known to run before there is a file: after a kill in between it is one that was interrupted.
    const std::optional<Record> record = m_book.begin(id);
    if (!record)
        return;
    auto file = std::make_unique<RecordFile>();
    if (const Problem problem = file->create(record->file)) {
        m_book.end(id, KVR_RECORD_FAILED, "failed: " + *problem);
        return;
    }
    if (!m_book.confirm(id)) {
        RecordFile::remove(record->file);
        return;
    }
    m_recorders[id] =
        std::make_unique<Recorder>(*record, std::move(file), [this] { m_queue.post([this] { reap(); }); });
}

// A recording that is not in the book any more is of no use to anybody. It is not waited for.
void RecordScheduler::dropRemoved()
{
    for (auto recorder = m_recorders.begin(); recorder != m_recorders.end();) {
        if (m_book.find(recorder->first)) {
            ++recorder;
            continue;
        }
        recorder->second->cancel();
        m_cancelled.push_back(std::move(recorder->second));
        recorder = m_recorders.erase(recorder);
    }
}

void RecordScheduler::reap()
{
    for (auto recorder = m_recorders.begin(); recorder != m_recorders.end();) {
        if (!recorder->second->hasEnded()) {
            ++recorder;
            continue;
        }
        const Problem &problem = recorder->second->problem();
        m_book.end(recorder->first, problem ? KVR_RECORD_FAILED : KVR_RECORD_DONE,
                   problem ? "failed: " + *problem : "done");
        recorder = m_recorders.erase(recorder);
    }
    m_cancelled.erase(std::remove_if(m_cancelled.begin(), m_cancelled.end(),
                                     [](const std::unique_ptr<Recorder> &recorder) { return recorder->hasEnded(); }),
                      m_cancelled.end());
}

void RecordScheduler::removeFiles(const std::vector<Record> &records)
{
    const auto done = std::make_shared<std::promise<void>>();
    const bool isPosted = m_queue.post([this, records, done] {
        for (const Record &record : records) {
            // Another one may have begun under this name since.
            if (m_book.othersOf(record).empty())
                RecordFile::remove(record.file);
        }
        done->set_value();
    });
    if (isPosted)
        done->get_future().wait_for(patience);
}

void RecordScheduler::giveUp(const std::vector<KVR_ID> &ids)
{
    m_queue.post([this, ids] {
        for (const KVR_ID id : ids) {
            const std::optional<Record> record = m_book.find(id);
            if (record && record->state == KVR_RECORD_SCHEDULED)
                m_book.end(id, KVR_RECORD_FAILED, "failed: the recording schedule cannot be written");
        }
    });
}

void RecordScheduler::finish()
{
    m_queue.finish();
    for (const auto &[id, recorder] : m_recorders)
        recorder->cancel();
    m_recorders.clear();
    m_cancelled.clear();
}
