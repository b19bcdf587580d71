// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "NameLookup.h"
#include "LooseThreads.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <sys/socket.h>

using namespace Desk;

namespace {

// 0, or an error of getaddrinfo().
int find(const std::string &host, int flags)
{
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = flags;
    addrinfo *found = nullptr;
    const int result = ::getaddrinfo(host.c_str(), nullptr, &wanted, &found);
    if (result == 0)
        ::freeaddrinfo(found);
    return result;
}

Problem lookUp(const std::string &host)
{
    const int result = find(host, 0);
    if (result == 0)
        return std::nullopt;
    return std::string(result == EAI_SYSTEM ? std::strerror(errno) : ::gai_strerror(result));
}

} // namespace

std::future<Problem> Desk::lookUpName(const std::string &host)
{
    const auto answer = std::make_shared<std::promise<Problem>>();
    std::future<Problem> future = answer->get_future();
    if (host.empty() || host.front() == '[' || find(host, AI_NUMERICHOST) == 0)
        answer->set_value(std::nullopt);
    else
        LooseThreads::run([host, answer] { answer->set_value(lookUp(host)); });
    return future;
}
