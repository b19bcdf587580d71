// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

namespace Desk {

/// Tells the launcher that the screen's picture may have changed.
class ScreenNotifier
{
public:
    using Handler = std::function<void()>;

    /// Returns when no call of the handler before is running any more, so the handler itself must not call this.
    void setHandler(Handler handler);

    /// Any thread. A player's lock, or that of the layout, may be held.
    void notify();

private:
    std::mutex m_mutex;
    std::condition_variable m_callEnded;
    Handler m_handler;
    int m_runningCalls = 0;
};

} // namespace Desk
