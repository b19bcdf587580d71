// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "KernelScope.h"

#include <cerrno>
#include <cstdint>

#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// As in the headers of newer kernels than those that this is built with.
struct RulesetAttributes
{
    uint64_t handledFileAccess;
    uint64_t handledNetworkAccess;
    uint64_t scoped;
};
const uint64_t abstractUnixSockets = 1;
const uint64_t signalsToOthers = 2;
const long firstVersionWithScopes = 6;

} // namespace

int KernelScope::restrict()
{
    if (syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < firstVersionWithScopes)
        return 0;
    const RulesetAttributes attributes = {0, 0, abstractUnixSockets | signalsToOthers};
    const long rules = syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0);
    if (rules < 0)
        return errno;
    const int error = syscall(SYS_landlock_restrict_self, rules, 0) == 0 ? 0 : errno;
    close(static_cast<int>(rules));
    return error;
}
