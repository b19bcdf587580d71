// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "NetAddress.h"

/// What --allow-net names: HOST or HOST:PORT, the host being a name or an address, one of version 6 in brackets if a
/// port follows.
class AllowedHost
{
public:
    /// Nothing if the text is none.
    static std::optional<AllowedHost> parse(const QString &text);

    /// The name to look up, empty if the host is an address.
    QByteArray name() const { return m_name; }
    std::optional<NetAddress> address() const { return m_address; }
    bool isForPort(std::uint16_t port) const { return !m_port || *m_port == port; }

    /// A host name as all of its spellings compare.
    static QByteArray normalized(const QString &name);

private:
    QByteArray m_name;
    std::optional<NetAddress> m_address;
    std::optional<std::uint16_t> m_port;
};
