// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <cstdio>

/// Writes one line of the launcher's own to standard error.
inline void report(const QString &text)
{
    std::fprintf(stderr, "kavro-box: %s\n", text.toLocal8Bit().constData());
}
