// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QUrl>

struct MHD_Daemon;

/// Serves the files of a folder over HTTP on loopback, from a thread of its own, while it lives. Nothing is cached: who
/// edits a page and reloads it sees the change.
class PageServer
{
public:
    PageServer() = default;
    ~PageServer();
    PageServer(const PageServer &) = delete;
    PageServer &operator=(const PageServer &) = delete;

    /// Listens on this port, or on another if it is taken. False if it cannot listen at all.
    bool start(const QString &folder, quint16 port);
    /// The address of a file in the folder.
    QUrl address(const QString &fileName) const;

private:
    QString m_root;
    MHD_Daemon *m_daemon = nullptr;
};
