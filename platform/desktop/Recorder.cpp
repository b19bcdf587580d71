// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Recorder.h"

#include <exception>
#include <utility>

using namespace Desk;

Recorder::Recorder(const Record &record, std::unique_ptr<RecordFile> file, std::function<void()> ended)
    : m_file(std::move(file))
    , m_copy(record.url, *m_file)
    , m_thread([this, ended = std::move(ended)] {
        try {
            m_problem = m_copy.run();
        } catch (const std::exception &exception) {
            m_problem = exception.what();
        }
        m_ended = true;
        ended();
    })
{
}

Recorder::~Recorder()
{
    cancel();
    m_thread.join();
}
