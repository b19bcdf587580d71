// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "NetGate.h"

#include "launcher/Report.h"

#include <QStringList>

#include <atomic>
#include <thread>

#include <netdb.h>

namespace {

const int mostSaid = 100; // addresses

std::atomic<NetGate *> guard = nullptr;

// Whether the text was not in the set, which does not grow endlessly.
bool add(const QString &text, QSet<QString> *set)
{
    if (set->contains(text) || set->size() >= mostSaid)
        return false;
    set->insert(text);
    return true;
}

} // namespace

NetGate *NetGate::start(const QStringList &allowed)
{
    QVector<AllowedHost> hosts;
    for (const QString &text : allowed)
        hosts += *AllowedHost::parse(text);
    NetGate *const started = new NetGate(hosts);
    guard = started;
    started->lookUp(hosts);
    return started;
}

NetGate *NetGate::running()
{
    return guard;
}

NetGate::NetGate(const QVector<AllowedHost> &allowed)
    : m_policy(allowed)
{
}

void NetGate::setFirstPage(const QUrl &page)
{
    m_policy.setFirstPage(page);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_firstHost = page.host();
}

// Pages may use the address of a host that was allowed by its name.
void NetGate::lookUp(const QVector<AllowedHost> &hosts)
{
    QVector<QByteArray> names;
    for (const AllowedHost &host : hosts) {
        if (!host.address())
            names += host.name();
    }
    if (names.isEmpty())
        return;
    std::thread([this, names] {
        for (const QByteArray &name : names) {
            addrinfo *found = nullptr;
            if (getaddrinfo(name.constData(), nullptr, nullptr, &found) != 0)
                continue;
            learn(name.constData(), found);
            freeaddrinfo(found);
        }
    }).detach();
}

bool NetGate::permits(const sockaddr *address, socklen_t length)
{
    const std::optional<NetAddress> known = NetAddress::fromSocket(address, length);
    if (!known || m_policy.permits(*known))
        return true;
    refuse(*known);
    return false;
}

void NetGate::learn(const char *name, const addrinfo *found)
{
    QVector<NetAddress> addresses;
    for (const addrinfo *next = found; next; next = next->ai_next) {
        if (const std::optional<NetAddress> address = NetAddress::fromSocket(next->ai_addr, next->ai_addrlen))
            addresses += *address;
    }
    m_policy.learn(QString::fromUtf8(name), addresses);
}

void NetGate::tellAgain()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_told.clear();
}

void NetGate::refuse(const NetAddress &address)
{
    const QString text = address.toString();
    std::unique_lock<std::mutex> lock(m_mutex);
    const QString sentence =
        QString("%1 is on this PC or its network, and refused to pages from %2; --allow-net %1 allows it")
            .arg(text, m_firstHost);
    const bool isNew = add(text, &m_said);
    const bool isLast = m_said.size() == mostSaid;
    const bool isNewToPage = add(text, &m_told);
    lock.unlock();
    if (isNew)
        report(isLast ? sentence + "; further addresses are refused without a word" : sentence);
    if (isNewToPage)
        emit refused(sentence);
}
