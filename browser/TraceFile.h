// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

class QFileSystemWatcher;

/// The file by which a technician switches tracing on and off while the browser runs. Tells the tracer its level.
class TraceFile : public QObject
{
    Q_OBJECT

public:
    /// Watches the file from here on, whether or not it exists.
    TraceFile();

public slots:
    /// Takes the level from the file as it is now.
    void check();

private:
    QFileSystemWatcher *watcher;
};
