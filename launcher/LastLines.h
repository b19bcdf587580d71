// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QList>

#include <deque>

/// The last lines of what went through it, of several streams with each its own line in progress.
class LastLines
{
public:
    /// A text that begins and ends anywhere in the stream's lines.
    void add(size_t stream, const QByteArray &text);
    /// A whole line of the launcher's own, without its end.
    void addOwn(const QByteArray &line);
    /// Made harmless; the oldest first, and the lines in progress last. None is complete that is very long.
    QList<QByteArray> lines() const;

private:
    struct Line
    {
        QByteArray text;
        bool isOwn = false;
    };

    void add(const Line &line);

    std::deque<Line> m_lines;
    std::deque<QByteArray> m_inProgress; // by stream
};
