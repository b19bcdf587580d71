// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>

/// The files tmp/crash-*.txt of a box directory, which tell of the box's crashes. Written from outside, where links
/// that the box may have put there are not followed.
namespace CrashFile {

/// Writes a new one and removes the oldest of many. Returns its path; empty, and the reason in *error, if it cannot be
/// written.
QString write(const QString &boxDirectory, const QByteArray &content, QString *error);

} // namespace CrashFile
