// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArrayList>
#include <cstddef>
#include <mutex>
#include <unordered_map>
#include <vector>

/// Keeps account of the memory that the library hands out. It sees each free of the process: through the function free
/// that the library defines, or under the address sanitizer, whose own comes first, through a hook of the sanitizer.
class MemoryLedger
{
public:
    /// Lives as long as the process, because memory is freed until its very end.
    static MemoryLedger &instance();

    /// A block from malloc that the caller of function has to free, or must not free when it stays the library's.
    void *allocate(const char *function, std::size_t size, bool platformOwned = false);
    int blocksHandedOut() const;
    QByteArrayList faults() const;
    /// Forgets all blocks. Blocks that should have been freed, and were not, stay allocated: someone may yet free them.
    void reset();

    /// Notes a free. True if the block is one of the ledger's, which keeps it until reset() lest its address be used
    /// again.
    static bool noteFree(const volatile void *address);
    /// Notes that an address is in use again, by somebody else.
    static void noteReuse(const volatile void *address);

private:
    struct Block
    {
        void *address;
        const char *function;
        bool platformOwned;
        int frees;
    };

    mutable std::mutex m_mutex;
    std::vector<Block> m_blocks;
    std::unordered_map<const volatile void *, std::size_t> m_byAddress;
};
