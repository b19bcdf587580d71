// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"
#include "RecordFile.h"

#include <cstdint>
#include <vector>

struct AVFormatContext;
struct AVIOContext;
struct AVPacket;

namespace Desk {

class StreamSource;

/// The transport stream that a recording makes of a source's streams.
class StreamFile
{
public:
    explicit StreamFile(RecordFile &file)
        : m_file(file)
    {
    }
    StreamFile(const StreamFile &) = delete;
    StreamFile &operator=(const StreamFile &) = delete;
    ~StreamFile();

    /// Writes the header for those streams of the source that are taken.
    Problem open(const StreamSource &source);

    /// Whether a stream of the source is in the file.
    bool has(int stream) const;

    /// Writes a packet of the source, with times of its stream's time base.
    Problem write(AVPacket &packet);

    /// Writes what is still to be written.
    Problem finish();

private:
    struct Output
    {
        int index = -1; // in the file, negative for what is left out
        std::int64_t lastDts = INT64_MIN;
    };

    Problem addStreams(const StreamSource &source);
    Problem problemOf(int error) const;

    RecordFile &m_file;
    const AVFormatContext *m_source = nullptr;
    AVFormatContext *m_context = nullptr;
    AVIOContext *m_io = nullptr;
    std::vector<Output> m_outputs; // for each stream that the source had when it was opened
    Problem m_writeProblem;
};

} // namespace Desk
