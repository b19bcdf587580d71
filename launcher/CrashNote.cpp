// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "CrashNote.h"

#include "Channel.h"
#include "Limits.h"

#include <array>
#include <csignal>
#include <vector>

namespace {

const int crashes[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP};
const size_t alternateStackSize = 64 << 10;

const Channel *channelOfCrash = nullptr;

// Nothing that allocates or locks: the process is in an unknown state.
void tellMemory()
{
    std::array<char, 20> digits;
    char *const end = digits.data() + digits.size();
    char *begin = end;
    for (rlim_t rest = Limits::memoryTaken(); rest > 0; rest /= 10)
        *--begin = static_cast<char>('0' + rest % 10);
    channelOfCrash->tellMemory(begin, static_cast<size_t>(end - begin));
}

// The action is the system's own by now, and comes when this returns.
void handle(int signalNumber)
{
    tellMemory();
    raise(signalNumber);
}

void setAction(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    for (const int signalNumber : crashes)
        sigaction(signalNumber, &action, nullptr);
}

} // namespace

CrashNote::CrashNote(const Channel *channel)
{
    if (!Limits::memory())
        return;
    channelOfCrash = channel;
    static std::vector<char> stack(alternateStackSize); // of a crash for want of stack
    stack_t alternate = {};
    alternate.ss_sp = stack.data();
    alternate.ss_size = stack.size();
    sigaltstack(&alternate, nullptr);
    setAction(handle);
}

CrashNote::~CrashNote()
{
    if (channelOfCrash)
        setAction(SIG_DFL);
    channelOfCrash = nullptr;
}
