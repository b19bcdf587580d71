// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct AVFormatContext;

namespace Desk {

/// A transport stream file that may be written to while it is played, as a recording that runs is. Of other files it
/// tells nothing.
class GrowingFile
{
public:
    explicit GrowingFile(const std::string &name);
    GrowingFile(const GrowingFile &) = delete;
    GrowingFile &operator=(const GrowingFile &) = delete;
    ~GrowingFile();

    /// If it has grown since the last call, or the construction: the time of its last picture or sound, in seconds, by
    /// the stream's own clock. Reads from the disk.
    std::optional<double> takeEnd();

private:
    std::int64_t size() const;
    bool open();
    std::optional<double> readEnd();

    const std::string m_name;
    std::int64_t m_size;
    AVFormatContext *m_stream = nullptr;
    bool m_isOther = false; // than a transport stream
    bool m_isBegun = false; // to read
};

} // namespace Desk
