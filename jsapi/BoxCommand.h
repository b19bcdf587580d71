// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QVariant>

/// What pages can have the box run.
namespace BoxCommand {

/// Runs one of the operator's own scripts, which lie in one directory of the box, and waits for it, however long it
/// takes. The answer is the map that the page gets: the script's exit code and output, or why it was not run.
QVariantMap runScript(const QString &name, const QString &arguments);

/// Has the box start anew. Returns when the command that does so has returned.
void reboot();

} // namespace BoxCommand
