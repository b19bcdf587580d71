// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace Desk {

class BootParameterStore;

/// How many seconds of a stream a player has before it plays. Those that are not set are the player core's affair.
struct BufferTimes
{
    std::optional<double> udp; ///< UDP and RTP
    std::optional<double> http;
    std::optional<double> hls;
};

/// Reads the boot parameters buf_time_udp, buf_time_http and buf_time_hls, which are in milliseconds.
class BufferTimeParameters
{
public:
    static constexpr int longest = 30000; ///< milliseconds

    explicit BufferTimeParameters(BootParameterStore &parameters);

    /// The times of now. A value that is none is logged, once.
    BufferTimes times();

private:
    std::optional<double> seconds(const std::string &key);

    BootParameterStore &m_parameters;
    std::mutex m_mutex;
    std::map<std::string, std::string> m_refused; // the last values that were logged
};

} // namespace Desk
