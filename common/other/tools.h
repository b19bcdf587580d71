// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <ostream>

/// Writes the text as UTF-8.
std::ostream &operator<<(std::ostream &stream, const QString &text);

namespace Common {

/// Writes an error line to standard error, for the function of this signature.
void writeError(const char *signature, const QString &message);

} // namespace Common
