// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Multicast.h"

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

std::string Desk::multicastGroup(const std::string &address)
{
    const std::size_t scheme = address.find("://");
    if (scheme == std::string::npos
        || (address.compare(0, scheme, "udp") != 0 && address.compare(0, scheme, "rtp") != 0))
        return {};
    std::string authority = address.substr(scheme + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    const std::size_t at = authority.rfind('@');
    if (at != std::string::npos)
        authority.erase(0, at + 1);

    const std::size_t colon = authority.rfind(':');
    std::string host = authority.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    return isMulticast(host) ? authority : std::string();
}
