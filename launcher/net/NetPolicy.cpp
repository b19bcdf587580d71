// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "NetPolicy.h"

#include <algorithm>

namespace {

const int mostAddresses = 256; // of a name

bool holds(const QVector<NetAddress> &addresses, const NetAddress &address)
{
    return std::any_of(addresses.begin(), addresses.end(),
                       [&address](const NetAddress &other) { return other.isSameHost(address); });
}

} // namespace

NetPolicy::NetPolicy(const QVector<AllowedHost> &allowed)
    : m_allowed(allowed)
{
}

void NetPolicy::setFirstPage(const QUrl &page)
{
    const std::optional<NetAddress> address = NetAddress::fromText(page.host());
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_hasFirstPage = true;
    if (page.host().isEmpty()) {
        m_firstPlace = Here;
    } else if (address) {
        m_firstPlace = address->isPrivate() ? Here : Elsewhere;
    } else {
        m_firstHost = AllowedHost::normalized(page.host());
        learnFirstHost(m_known.value(m_firstHost));
    }
}

bool NetPolicy::permits(const NetAddress &address) const
{
    if (!address.isPrivate())
        return true;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_hasFirstPage || m_firstPlace == Here)
        return true;
    return std::any_of(m_allowed.begin(), m_allowed.end(), [this, &address](const AllowedHost &host) {
        return host.isForPort(address.port())
            && (host.address() ? host.address()->isSameHost(address) : holds(m_known.value(host.name()), address));
    });
}

void NetPolicy::learn(const QString &name, const QVector<NetAddress> &addresses)
{
    const QByteArray host = AllowedHost::normalized(name);
    const bool isAllowed = std::any_of(m_allowed.begin(), m_allowed.end(),
                                       [&host](const AllowedHost &allowed) { return allowed.name() == host; });
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (isAllowed || !m_hasFirstPage) {
        Addresses &known = m_known[host];
        for (const NetAddress &address : addresses) {
            if (known.size() < mostAddresses && !holds(known, address))
                known += address;
        }
    }
    if (m_hasFirstPage && host == m_firstHost)
        learnFirstHost(addresses);
}

void NetPolicy::learnFirstHost(const Addresses &addresses)
{
    for (const NetAddress &address : addresses) {
        if (m_firstPlace != Elsewhere)
            m_firstPlace = address.isPrivate() ? Here : Elsewhere;
    }
}
