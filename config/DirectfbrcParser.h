// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/other/plainfile.h"

#include <QSize>
#include <QStringList>

/// Reads and rewrites the screen mode line of a DirectFB configuration file, and keeps its other lines as they are.
/// Construct, ask mode(), setMode(), write(). No operation reports a failure; the file stays open until the end.
class Q_DECL_EXPORT DirectfbrcParser
{
public:
    /// Opens the file, which is created if it is missing, and reads it.
    explicit DirectfbrcParser(const QString &path);
    ~DirectfbrcParser();

    /// The size of the first mode line, or what was set last; invalid if there is neither.
    QSize mode() const;
    /// Changes every mode line, in memory; adds none. Always true.
    bool setMode(QSize size);
    /// Writes the lines back to the file. Always true.
    bool write();

private:
    Q_DISABLE_COPY(DirectfbrcParser)

    Common::PlainFile m_file;
    QSize m_mode;
    QStringList m_lines;
};
