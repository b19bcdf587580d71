// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The functions by which a process reaches an address, in place of the C library's: those of the executable come first
// for all of its libraries, the toolkit's and the players' alike. What a name is looked up with does not come here, as
// the C library calls itself by other names; so name servers are always reached.

#include "NetGate.h"

#include <cerrno>
#include <cstddef>

#include <dlfcn.h>
#include <netdb.h>
#include <sys/un.h>

namespace {

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

bool permits(const sockaddr *address, socklen_t length)
{
    NetGate *const guard = NetGate::running();
    if (!guard || guard->permits(address, length))
        return true;
    errno = EACCES;
    return false;
}

bool isAbstract(const sockaddr *address, socklen_t length)
{
    const size_t name = offsetof(sockaddr_un, sun_path);
    return address->sa_family == AF_UNIX && length > name && reinterpret_cast<const char *>(address)[name] == '\0';
}

bool permits(const msghdr &message)
{
    return permits(static_cast<const sockaddr *>(message.msg_name), message.msg_namelen);
}

} // namespace

extern "C" {

int connect(int socket, const sockaddr *address, socklen_t length)
{
    static auto *const original = next<decltype(connect)>("connect");
    const int result = permits(address, length) ? original(socket, address, length) : -1;
    // The display's library looks for the server's abstract socket, which a box may not reach, and only goes on to the
    // file if nobody listens there.
    if (result != 0 && errno == EPERM && isAbstract(address, length))
        errno = ECONNREFUSED;
    return result;
}

ssize_t sendto(int socket, const void *data, size_t size, int flags, const sockaddr *address, socklen_t length)
{
    static auto *const original = next<decltype(sendto)>("sendto");
    return permits(address, length) ? original(socket, data, size, flags, address, length) : -1;
}

ssize_t sendmsg(int socket, const msghdr *message, int flags)
{
    static auto *const original = next<decltype(sendmsg)>("sendmsg");
    return permits(*message) ? original(socket, message, flags) : -1;
}

// Sends what comes before the first that is refused, as the system does before the first that fails.
int sendmmsg(int socket, mmsghdr *messages, unsigned count, int flags)
{
    static auto *const original = next<decltype(sendmmsg)>("sendmmsg");
    unsigned permitted = 0;
    while (permitted < count && permits(messages[permitted].msg_hdr))
        ++permitted;
    return permitted > 0 || count == 0 ? original(socket, messages, permitted, flags) : -1;
}

int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **found)
{
    static auto *const original = next<decltype(getaddrinfo)>("getaddrinfo");
    const int result = original(name, service, hints, found);
    NetGate *const guard = NetGate::running();
    if (result == 0 && name && guard)
        guard->learn(name, *found);
    return result;
}

} // extern "C"
