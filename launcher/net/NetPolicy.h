// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "AllowedHost.h"

#include <QHash>
#include <QUrl>
#include <QVector>

#include <mutex>

/// Decides which addresses the box may reach. Where its first page comes from this PC or its network, or from no host,
/// that is every one; else they are the public ones, and what the user allows. A host name is what it has been looked
/// up to be each time: a first page whose name has ever led elsewhere is from elsewhere. Any thread.
class NetPolicy
{
public:
    explicit NetPolicy(const QVector<AllowedHost> &allowed);

    /// Until there is a first page, every address may be reached: nobody else is there to reach any.
    void setFirstPage(const QUrl &page);
    bool permits(const NetAddress &address) const;
    /// Takes note of what a host name has been looked up to be.
    void learn(const QString &name, const QVector<NetAddress> &addresses);

private:
    enum Place { Unknown, Here, Elsewhere };
    using Addresses = QVector<NetAddress>;

    void learnFirstHost(const Addresses &addresses);

    mutable std::mutex m_mutex;
    bool m_hasFirstPage = false;
    QByteArray m_firstHost; // if it is a name
    Place m_firstPlace = Unknown;
    const QVector<AllowedHost> m_allowed;
    QHash<QByteArray, Addresses> m_known; // of the allowed names and, until there is a first page, of all
};
