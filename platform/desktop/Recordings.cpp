// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Recordings.h"

using namespace Desk;

Recordings::Recordings(EventRegistry &events)
    : m_writer([this](const std::vector<KVR_ID> &broken) { m_scheduler.giveUp(broken); })
    , m_book(events, m_writer, [this] { m_scheduler.wake(); })
    , m_scheduler(m_book)
{
}

void Recordings::start()
{
    std::call_once(m_started, [this] {
        const bool isPosted = m_writer.load([this](const std::vector<Record> &records, KVR_ID highestId) {
            m_book.open(records, highestId);
            m_read.set_value();
            m_scheduler.wake();
        });
        if (!isPosted)
            m_read.set_value();
    });
}

RecordBook &Recordings::book()
{
    start();
    m_isRead.wait();
    return m_book;
}

int Recordings::cleanUp()
{
    std::vector<KVR_ID> ended;
    std::vector<Record> failed;
    for (const Record &record : book().all()) {
        if (!record.ended())
            continue;
        ended.push_back(record.id);
        if (record.state == KVR_RECORD_FAILED && record.ownsFile)
            failed.push_back(record);
    }
    // First, since it may make the room in which the schedule is written.
    if (!failed.empty())
        m_scheduler.removeFiles(failed);
    return ended.empty() ? KVR_OK : m_book.remove(ended);
}

void Recordings::finish()
{
    m_scheduler.finish();
    m_writer.finish();
}
