// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "TaskQueue.h"

#include <atomic>
#include <string>

namespace Desk {

/// Fetches firmware images into the box's files, one at a time.
class Firmware
{
public:
    /// KVR_ERR_INVALID_STATE while another image is being fetched.
    int upgrade(const std::string &url);

    /// Breaks off what is being fetched and ends the thread.
    void finish();

private:
    void fetch(const std::string &url);

    std::atomic<bool> m_busy{false};
    std::atomic<bool> m_finishing{false};
    TaskQueue m_fetcher;
};

} // namespace Desk
