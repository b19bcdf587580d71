// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BootParameterStore.h"
#include "BoxPaths.h"
#include "DurableFile.h"
#include "Log.h"

#include <vector>

using namespace Desk;

namespace {

constexpr std::size_t shownOfALine = 80; // bytes

} // namespace

BootParameterStore::BootParameterStore(EventRegistry &events)
    : m_events(events)
{
}

std::optional<std::string> BootParameterStore::value(const std::string &key)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    load();
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::nullopt : std::make_optional(found->second);
}

int BootParameterStore::setValue(const std::string &key, const std::string &value)
{
    if (key.empty() || value.size() > maximumValueSize)
        return KVR_ERR_INVALID_ARGUMENT;
    const std::lock_guard<std::mutex> lock(m_mutex);
    load();
    m_values[key] = value;
    m_changed = true;
    m_writer.post([this] { save(); });
    return KVR_OK;
}

int BootParameterStore::sync()
{
    m_writer.post([this] { save(); });
    m_writer.drain();
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_saveFailed)
        return KVR_ERR_FAILED;
    m_events.send(KVR_BOX, KVR_EVENT_SYNC_DONE, KVR_BOX);
    return KVR_OK;
}

void BootParameterStore::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    std::vector<std::string> ignored;
    m_values = readBootParameterText(readFile(BoxPaths::bootParameters), &ignored);
    if (ignored.empty())
        return;
    const std::string where = "ignored in " + std::string(BoxPaths::bootParameters);
    log(where + ", not key=value: " + ignored.front().substr(0, shownOfALine));
    if (ignored.size() > 1)
        log(where + ": " + std::to_string(ignored.size() - 1) + " more lines like it");
}

void BootParameterStore::save()
{
    std::string content;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_changed)
            return;
        m_changed = false;
        content = bootParameterText(m_values);
    }
    const bool saved = writeDurably(BoxPaths::bootParameters, content);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_saveFailed = !saved;
    m_changed = m_changed || !saved;
}
