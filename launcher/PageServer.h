// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QUrl>

#include <atomic>
#include <memory>
#include <thread>

struct MHD_Daemon;

/// Serves the files of a folder over HTTP on loopback, from a thread of its own, while it lives: to programs of the
/// same user alone, and under its own address alone, which keeps out pages that give 127.0.0.1 a name of theirs.
/// Nothing is cached: who edits a page and reloads it sees the change.
class PageServer
{
public:
    PageServer();
    ~PageServer();
    PageServer(const PageServer &) = delete;
    PageServer &operator=(const PageServer &) = delete;

    /// Listens on this port, or, if it is 0 or taken, on one that nobody can guess. False, and the reason in *error, if
    /// it cannot serve at all.
    bool start(const QString &folder, quint16 port, QString *error);
    quint16 port() const { return m_port; }
    /// The address of a file in the folder.
    QUrl address(const QString &fileName) const;

private:
    struct Site;

    void run();

    quint16 m_port = 0;
    int m_listener = -1;
    std::unique_ptr<Site> m_site;
    MHD_Daemon *m_daemon = nullptr;
    std::atomic_bool m_stopping{false};
    std::thread m_thread; // has the site and the daemon for itself while it runs
};
