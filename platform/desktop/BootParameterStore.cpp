// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BootParameterStore.h"
#include "BoxPaths.h"
#include "DurableFile.h"
#include "Log.h"

#include <cstdlib>
#include <sstream>

using namespace Desk;

namespace {

constexpr std::size_t shownOfALine = 80; // bytes

// What would break a line, or the line's key, is written as % and two hexadecimal digits.
std::string escaped(const std::string &text)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || c == '%' || c == '=') {
            result += '%';
            result += digits[byte >> 4];
            result += digits[byte & 15];
        } else {
            result += c;
        }
    }
    return result;
}

std::string unescaped(const std::string &text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            result += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

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
    std::istringstream lines(readFile(BoxPaths::bootParameters));
    int ignored = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t separator = line.find('=');
        if (separator != std::string::npos && separator != 0)
            m_values[unescaped(line.substr(0, separator))] = unescaped(line.substr(separator + 1));
        else if (ignored++ == 0)
            log("ignored in " + std::string(BoxPaths::bootParameters)
                + ", not key=value: " + line.substr(0, shownOfALine));
    }
    if (ignored > 1)
        log("ignored in " + std::string(BoxPaths::bootParameters) + ": " + std::to_string(ignored - 1)
            + " more lines like it");
}

void BootParameterStore::save()
{
    std::string content;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_changed)
            return;
        m_changed = false;
        for (const auto &[key, value] : m_values)
            content += escaped(key) + '=' + escaped(value) + '\n';
    }
    const bool saved = writeDurably(BoxPaths::bootParameters, content);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_saveFailed = !saved;
    m_changed = m_changed || !saved;
}
