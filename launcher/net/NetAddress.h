// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <sys/socket.h>

/// An address of the internet protocols, of either version, with a port. One of version 4 that is written as one of
/// version 6 is itself.
class NetAddress
{
public:
    /// Nothing for a socket of another kind.
    static std::optional<NetAddress> fromSocket(const sockaddr *address, socklen_t length);
    /// An address as it is written, without brackets and port.
    static std::optional<NetAddress> fromText(const QString &text);

    /// Whether it leads to this PC or its network: loopback, private, link-local and unspecified addresses, and the
    /// broadcast address. Multicast does not count.
    bool isPrivate() const;
    bool isSameHost(const NetAddress &other) const { return m_bytes == other.m_bytes; }
    std::uint16_t port() const { return m_port; }

    /// "192.168.1.5:80" or "[fd00::5]:80".
    QString toString() const;

private:
    using Bytes = std::array<std::uint8_t, 16>; // of version 6; addresses of version 4 are mapped to it

    struct Network
    {
        Bytes address;
        int bits; // that all of its addresses have
    };

    NetAddress(const Bytes &bytes, std::uint16_t port);
    static const std::vector<Network> &privateOnes();
    bool isIn(const Network &network) const;

    Bytes m_bytes;
    std::uint16_t m_port;
};
