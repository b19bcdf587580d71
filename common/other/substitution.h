// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace Common {

/// The template (ASCII) with its places %1 to %9 replaced by the arguments, in one pass: what an argument brings in is
/// not looked at again. A place without an argument stays as it is.
QString substituted(const char *text, const QString arguments[], int count);

} // namespace Common
