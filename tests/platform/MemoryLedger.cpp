// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MemoryLedger.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>

// NOLINTBEGIN(bugprone-reserved-identifier): names of the C library and of the sanitizer
#ifdef __SANITIZE_ADDRESS__
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloced)(const volatile void *, std::size_t),
                                                         void (*freed)(const volatile void *));
#else
extern "C" void __libc_free(void *block);

extern "C" __attribute__((visibility("default"))) void free(void *block) noexcept
{
    if (!MemoryLedger::noteFree(block))
        __libc_free(block);
}
#endif
// NOLINTEND(bugprone-reserved-identifier)

namespace {

// Between these lies every block of the ledger, so that other frees, nearly all, cost little.
std::atomic<std::uintptr_t> lowest{UINTPTR_MAX};
std::atomic<std::uintptr_t> highest{0};

// The ledger's own containers allocate and free too, with its lock held.
thread_local bool busy = false;

struct Busy
{
    Busy() { busy = true; }
    ~Busy() { busy = false; }
};

bool mayBeOurs(const volatile void *address)
{
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    return number >= lowest && number <= highest && !busy;
}

void watchFrees()
{
#ifdef __SANITIZE_ADDRESS__
    static const int installed = __sanitizer_install_malloc_and_free_hooks(
        [](const volatile void *address, std::size_t) { MemoryLedger::noteReuse(address); },
        [](const volatile void *address) { MemoryLedger::noteFree(address); });
    if (!installed)
        qFatal("The address sanitizer has no place for another hook");
#endif
}

// Gives a block back whose free was noted, but not carried out.
void release(void *address)
{
#ifndef __SANITIZE_ADDRESS__
    __libc_free(address);
#else
    Q_UNUSED(address)
#endif
}

} // namespace

MemoryLedger &MemoryLedger::instance()
{
    static auto *ledger = new MemoryLedger;
    return *ledger;
}

void *MemoryLedger::allocate(const char *function, std::size_t size, bool platformOwned)
{
    watchFrees();
    void *address = std::malloc(size);
    if (!address)
        qFatal("No memory for the answer of %s", function);
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Busy guard;
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    lowest = std::min(lowest.load(), number);
    highest = std::max(highest.load(), number);
    m_byAddress[address] = m_blocks.size();
    m_blocks.push_back({address, function, platformOwned, 0});
    return address;
}

int MemoryLedger::blocksHandedOut() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return int(m_blocks.size());
}

QByteArrayList MemoryLedger::faults() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Busy guard;
    QByteArrayList lines;
    for (const Block &block : m_blocks) {
        const QByteArray function = block.function;
        if (block.platformOwned && block.frees > 0)
            lines += function + ": freed, but the library's own";
        else if (!block.platformOwned && block.frees == 0)
            lines += function + ": never freed";
        else if (!block.platformOwned && block.frees > 1)
            lines += function + ": freed " + QByteArray::number(block.frees) + " times";
    }
    return lines;
}

void MemoryLedger::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Busy guard;
    lowest = UINTPTR_MAX;
    highest = 0;
    for (const Block &block : m_blocks) {
        if (block.frees > 0)
            release(block.address);
        else if (block.platformOwned)
            std::free(block.address);
    }
    m_blocks.clear();
    m_byAddress.clear();
}

bool MemoryLedger::noteFree(const volatile void *address)
{
    if (!mayBeOurs(address))
        return false;
    MemoryLedger &ledger = instance();
    const std::lock_guard<std::mutex> lock(ledger.m_mutex);
    const Busy guard;
    const auto found = ledger.m_byAddress.find(address);
    if (found == ledger.m_byAddress.end())
        return false;
    ++ledger.m_blocks[found->second].frees;
    return true;
}

void MemoryLedger::noteReuse(const volatile void *address)
{
    if (!mayBeOurs(address))
        return;
    MemoryLedger &ledger = instance();
    const std::lock_guard<std::mutex> lock(ledger.m_mutex);
    const Busy guard;
    ledger.m_byAddress.erase(address);
}
