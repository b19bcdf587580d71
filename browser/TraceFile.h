// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

class QFileSystemWatcher;
class QObject;

/// The file by which a technician switches tracing on and off while the browser runs. Tells the tracer its level.
class TraceFile
{
public:
    /// Watches the file from here on, whether or not it exists: owner's slot checkDebugFile, which is to call check, is
    /// called when it changes.
    explicit TraceFile(QObject *owner);

    /// Takes the level from the file as it is now.
    void check();

private:
    QFileSystemWatcher *watcher;
};
