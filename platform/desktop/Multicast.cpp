// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Multicast.h"
#include "Address.h"

#include <arpa/inet.h>
#include <netinet/in.h>

namespace {

bool isMulticast(const std::string &host)
{
    in_addr v4 = {};
    if (::inet_pton(AF_INET, host.c_str(), &v4) == 1)
        return IN_MULTICAST(ntohl(v4.s_addr));
    in6_addr v6 = {};
    return ::inet_pton(AF_INET6, host.c_str(), &v6) == 1 && IN6_IS_ADDR_MULTICAST(&v6);
}

} // namespace

std::string Desk::multicastGroup(const std::string &text)
{
    const Address address(text);
    if (address.scheme() != "udp" && address.scheme() != "rtp")
        return {};
    std::string host = address.host();
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    return isMulticast(host) ? address.hostAndPort() : std::string();
}
