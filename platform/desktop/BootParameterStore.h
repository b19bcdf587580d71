// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "BootParameterText.h"
#include "EventRegistry.h"
#include "TaskQueue.h"

#include <mutex>
#include <optional>
#include <string>

namespace Desk {

/// The boot parameters: in memory, and in a file of the box with one "key=value" a line. A thread of its own writes it.
class BootParameterStore
{
public:
    static constexpr std::size_t maximumValueSize = 255;

    explicit BootParameterStore(EventRegistry &events);

    std::optional<std::string> value(const std::string &key);
    int setValue(const std::string &key, const std::string &value);

    /// Waits until the file is safe, then sends the event.
    int sync();

    /// Writes what is not written yet and ends the thread.
    void finish() { m_writer.finish(); }

private:
    void load();
    void save();

    EventRegistry &m_events;
    std::mutex m_mutex;
    BootParameterValues m_values;
    bool m_loaded = false;
    bool m_changed = false; // since the file was written
    bool m_saveFailed = false;
    TaskQueue m_writer;
};

} // namespace Desk
