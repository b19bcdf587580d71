// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScreenNotifier.h"

#include <utility>

using namespace Desk;

void ScreenNotifier::setHandler(Handler handler)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_handler = nullptr;
    m_callEnded.wait(lock, [this] { return m_runningCalls == 0; });
    m_handler = std::move(handler);
}

void ScreenNotifier::notify()
{
    Handler handler;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_handler)
            return;
        handler = m_handler;
        ++m_runningCalls;
    }
    handler();
    const std::lock_guard<std::mutex> lock(m_mutex);
    --m_runningCalls;
    m_callEnded.notify_all();
}
