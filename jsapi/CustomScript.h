// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QVariant>

/// The operator's own scripts, which pages can run. They lie in one directory of the box.
namespace CustomScript {

/// Runs a script and waits for it, however long it takes. The answer is the map that the page gets: the script's exit
/// code and output, or why it was not run.
QVariantMap run(const QString &name, const QString &arguments);

} // namespace CustomScript
