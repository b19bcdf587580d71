// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The box's trace level file. Written inside the box; restored from outside when the box is off, however it went off.
class TraceLevel
{
public:
    /// Remembers the file of a box directory, to restore it at the end.
    explicit TraceLevel(const QString &boxDirectory);
    ~TraceLevel();
    TraceLevel(const TraceLevel &) = delete;
    TraceLevel &operator=(const TraceLevel &) = delete;

    /// Inside the box: has script calls traced. False if the file cannot be written.
    static bool switchOn();

private:
    QString m_file;
    std::optional<QByteArray> m_before;
};
