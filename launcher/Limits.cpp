// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Limits.h"

#include <algorithm>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace {

const rlim_t stackSize = 256 << 20; // bytes
const rlim_t threadStackSize = 2 << 20;
// For a page that has a thousand requests waiting. What we use to wait for descriptors, poll and epoll, takes any.
const rlim_t descriptors = 65536;
const rlim_t memorySize = rlim_t(4) << 30; // bytes

// The shadow memory of a sanitizer takes more than any page.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const bool isMemoryLimited = false;
#else
const bool isMemoryLimited = true;
#endif

void raiseTo(rlim_t size, __rlimit_resource resource)
{
    rlimit limit = {};
    if (getrlimit(resource, &limit) != 0 || limit.rlim_cur >= size)
        return;
    limit.rlim_cur = std::min(size, limit.rlim_max);
    setrlimit(resource, &limit);
}

} // namespace

void Limits::set()
{
    // The web engine goes down the elements of a page one in the other, and a script can nest any number of them.
    raiseTo(stackSize, RLIMIT_STACK);
    raiseTo(descriptors, RLIMIT_NOFILE);
    // Not the address space, of which the web engine reserves more than it ever uses.
    rlimit limit = {};
    if (memory() && getrlimit(RLIMIT_DATA, &limit) == 0) {
        limit.rlim_cur = *memory();
        setrlimit(RLIMIT_DATA, &limit);
    }
}

std::optional<rlim_t> Limits::memory()
{
    rlimit limit = {};
    if (!isMemoryLimited || getrlimit(RLIMIT_DATA, &limit) != 0)
        return std::nullopt;
    return std::min(memorySize, limit.rlim_cur); // RLIM_INFINITY is the largest number
}

rlim_t Limits::memoryTaken()
{
    const int dataField = 5; // from 0, in pages
    char text[200];
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    const ssize_t size = read(file, text, sizeof text);
    close(file);
    rlim_t pages = 0;
    int field = 0;
    for (ssize_t i = 0; i < size && field <= dataField; ++i) {
        if (text[i] == ' ')
            ++field;
        else if (field == dataField)
            pages = pages * 10 + rlim_t(text[i] - '0');
    }
    return pages * rlim_t(sysconf(_SC_PAGESIZE));
}

QString Limits::memoryText(rlim_t bytes)
{
    const rlim_t gigabyte = rlim_t(1) << 30;
    return bytes % gigabyte == 0 ? QString("%1 GB").arg(bytes / gigabyte) : QString("%1 MB").arg(bytes >> 20);
}

void Limits::keepThreadsSmall()
{
    pthread_attr_t attributes;
    if (!isMemoryLimited || pthread_attr_init(&attributes) != 0)
        return;
    pthread_attr_setstacksize(&attributes, threadStackSize);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
}
