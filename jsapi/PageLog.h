// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/other/plainfile.h"

/// The log file that pages write. Each display object has its own handle of it.
class PageLog : public Common::PlainFile
{
public:
    /// Opens and empties the file.
    explicit PageLog(QObject *parent);

    /// Writes a line with the time before it; begins anew when the file has grown too large.
    void append(const QString &text);

    /// Writes a page's line to standard output.
    static void print(const QString &text);
};
