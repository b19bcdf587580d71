// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BufferTimes.h"
#include "BootParameterStore.h"
#include "Log.h"

#include <algorithm>
#include <charconv>

using namespace Desk;

BufferTimeParameters::BufferTimeParameters(BootParameterStore &parameters)
    : m_parameters(parameters)
{
}

BufferTimes BufferTimeParameters::times()
{
    return {seconds("buf_time_udp"), seconds("buf_time_http"), seconds("buf_time_hls")};
}

std::optional<double> BufferTimeParameters::seconds(const std::string &key)
{
    const std::optional<std::string> value = m_parameters.value(key);
    if (!value || value->empty())
        return std::nullopt;
    int milliseconds = -1;
    const char *const end = value->data() + value->size();
    const std::from_chars_result read = std::from_chars(value->data(), end, milliseconds);
    if (read.ec == std::errc() && read.ptr == end && milliseconds >= 0 && milliseconds <= longest)
        return static_cast<double>(milliseconds) / 1000;

    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string &refused = m_refused[key];
    if (refused != *value)
        log("the boot parameter " + key + " is no number of milliseconds from 0 to " + std::to_string(longest)
            + ", so players buffer as without it: " + value->substr(0, 80));
    refused = *value;
    return std::nullopt;
}
