// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <list>
#include <mutex>

namespace Desk {

/// The readers that a player core has opened. The core may yet cancel one that it has closed, so the latest ones are
/// kept. Any thread.
///
/// Reader has an atomic bool "closed".
template <typename Reader>
class StreamReaders
{
public:
    Reader &add()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        while (m_readers.size() >= kept && m_readers.front().closed)
            m_readers.pop_front();
        return m_readers.emplace_back();
    }

private:
    static constexpr std::size_t kept = 16;

    std::mutex m_mutex;
    std::list<Reader> m_readers;
};

} // namespace Desk
