// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "NetAddress.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace {

const std::size_t mappedPrefix = 12; // bytes
const std::array<std::uint8_t, mappedPrefix> mapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
const std::array<std::uint8_t, mappedPrefix> translated = {0, 0x64, 0xff, 0x9b}; // by a network without version 4

const struct
{
    const char *address;
    int bits;
} privateNetworks[] = {
    {"0.0.0.0", 96 + 8},          // this host
    {"10.0.0.0", 96 + 8},         // private
    {"100.64.0.0", 96 + 10},      // behind a provider's translation
    {"127.0.0.0", 96 + 8},        // loopback
    {"169.254.0.0", 96 + 16},     // link-local
    {"172.16.0.0", 96 + 12},      // private
    {"192.168.0.0", 96 + 16},     // private
    {"255.255.255.255", 96 + 32}, // broadcast
    {"::", 96},                   // unspecified, loopback, and an old way to write addresses of version 4
    {"fc00::", 7},                // private
    {"fe80::", 10},               // link-local
};

} // namespace

NetAddress::NetAddress(const Bytes &bytes, std::uint16_t port)
    : m_bytes(bytes)
    , m_port(port)
{
    if (std::equal(translated.begin(), translated.end(), m_bytes.begin()))
        std::copy(mapped.begin(), mapped.end(), m_bytes.begin());
}

std::optional<NetAddress> NetAddress::fromSocket(const sockaddr *address, socklen_t length)
{
    if (!address || length < sizeof(sockaddr_in)) // the smallest of all
        return std::nullopt;
    Bytes bytes = {};
    if (address->sa_family == AF_INET) {
        sockaddr_in v4 = {};
        std::memcpy(&v4, address, sizeof v4);
        std::copy(mapped.begin(), mapped.end(), bytes.begin());
        std::memcpy(bytes.data() + mappedPrefix, &v4.sin_addr, sizeof v4.sin_addr);
        return NetAddress(bytes, ntohs(v4.sin_port));
    }
    sockaddr_in6 v6 = {};
    if (address->sa_family != AF_INET6 || length < offsetof(sockaddr_in6, sin6_scope_id))
        return std::nullopt;
    std::memcpy(&v6, address, std::min(std::size_t(length), sizeof v6));
    std::memcpy(bytes.data(), &v6.sin6_addr, bytes.size());
    return NetAddress(bytes, ntohs(v6.sin6_port));
}

std::optional<NetAddress> NetAddress::fromText(const QString &text)
{
    Bytes bytes = {};
    const QByteArray latin = text.section('%', 0, 0).toLatin1(); // without an interface's name
    if (inet_pton(AF_INET, latin.constData(), bytes.data() + mappedPrefix) == 1)
        std::copy(mapped.begin(), mapped.end(), bytes.begin());
    else if (inet_pton(AF_INET6, latin.constData(), bytes.data()) != 1)
        return std::nullopt;
    return NetAddress(bytes, 0);
}

const std::vector<NetAddress::Network> &NetAddress::privateOnes()
{
    // Read once: a player that shares a torrent asks for each packet.
    static const std::vector<Network> networks = [] {
        std::vector<Network> read;
        for (const auto &network : privateNetworks)
            read.push_back({fromText(network.address)->m_bytes, network.bits});
        return read;
    }();
    return networks;
}

bool NetAddress::isPrivate() const
{
    return std::any_of(privateOnes().begin(), privateOnes().end(),
                       [this](const Network &network) { return isIn(network); });
}

bool NetAddress::isIn(const Network &network) const
{
    const int whole = network.bits / 8;
    const int rest = 8 - network.bits % 8;
    return std::equal(m_bytes.begin(), m_bytes.begin() + whole, network.address.begin())
        && (rest == 8 || m_bytes[whole] >> rest == network.address[whole] >> rest);
}

QString NetAddress::toString() const
{
    char text[INET6_ADDRSTRLEN] = {};
    if (std::equal(mapped.begin(), mapped.end(), m_bytes.begin())) {
        inet_ntop(AF_INET, m_bytes.data() + mappedPrefix, text, sizeof text);
        return QString("%1:%2").arg(text).arg(m_port);
    }
    inet_ntop(AF_INET6, m_bytes.data(), text, sizeof text);
    return QString("[%1]:%2").arg(text).arg(m_port);
}
