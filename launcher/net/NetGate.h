// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "NetPolicy.h"

#include <QObject>
#include <QSet>

struct addrinfo;

/// Asks the policy for every connection of this process, pages and players alike, and says what is refused. Lives as
/// long as the process: players' threads may outlive all else.
class NetGate : public QObject
{
    Q_OBJECT

public:
    /// Begins to guard the process, with what --allow-net names.
    static NetGate *start(const QStringList &allowed);
    /// Null until there is one.
    static NetGate *running();

    void setFirstPage(const QUrl &page);

    /// Any thread.
    bool permits(const sockaddr *address, socklen_t length);
    /// Takes note of what a host name has been looked up to be. Any thread.
    void learn(const char *name, const addrinfo *found);

public slots:
    /// Has every refusal told once more, for another page's console.
    void tellAgain();

signals:
    /// Sent from the thread that wanted to connect.
    void refused(const QString &sentence);

private:
    explicit NetGate(const QVector<AllowedHost> &allowed);
    void lookUp(const QVector<AllowedHost> &hosts);
    void refuse(const NetAddress &address);

    NetPolicy m_policy;
    std::mutex m_mutex; // for what follows
    QString m_firstHost;
    QSet<QString> m_said;
    QSet<QString> m_told;
};
