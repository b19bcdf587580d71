// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>

#include <iostream>
#include <sstream>

/// Takes what is written to a standard output stream, for as long as it lives.
class StreamCapture
{
public:
    explicit StreamCapture(std::ostream &stream)
        : m_stream(stream)
        , m_previous(stream.rdbuf(m_buffer.rdbuf()))
    {
    }
    ~StreamCapture() { m_stream.rdbuf(m_previous); }
    StreamCapture(const StreamCapture &) = delete;
    StreamCapture &operator=(const StreamCapture &) = delete;

    QByteArray text() const { return QByteArray::fromStdString(m_buffer.str()); }

private:
    std::ostringstream m_buffer;
    std::ostream &m_stream;
    std::streambuf *m_previous;
};
