// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "PageServer.h"

#include <QStringList>

class BoxDirectory;

/// What the desk box is to show: the argument of its command line, or the demonstration portal.
class Page
{
public:
    /// Finds out what the argument is, which may be empty. False, and the reason in *error, if it is nothing to show.
    bool setArgument(const QString &argument, QString *error);
    /// False if a box with this directory would not have a file that the argument is the address of, and the PC does.
    bool isInBox(const QString &boxDirectory, const QStringList &shared) const;
    /// Serves what has to be served. False, and the reason in *error, if that is impossible.
    bool serve(const BoxDirectory &box, QString *error);

    /// The address of the page, empty for the demonstration portal.
    QString address() const { return m_address; }
    QString portalAddress() const { return m_portalAddress; }

private:
    bool setFile(const QString &argument, QString *error);

    QString m_folder; // that is served; empty if nothing is
    QString m_file;   // in it, empty for the portal's first page
    QString m_address;
    QString m_portalAddress;
    PageServer m_server;
};
