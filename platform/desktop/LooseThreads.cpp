// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LooseThreads.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

using namespace Desk;

namespace {

// The number of tasks that have not ended. Never destroyed: a thread that is held may outlive main().
struct Running
{
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;
};

Running &running()
{
    static auto *const instance = new Running;
    return *instance;
}

void count(int change)
{
    const std::lock_guard<std::mutex> lock(running().mutex);
    running().count += change;
    running().changed.notify_all();
}

} // namespace

void LooseThreads::run(std::function<void()> task)
{
    count(+1);
    try {
        std::thread([task = std::move(task)]() mutable {
            task();
            task = nullptr; // what it holds counts as a part of it
            count(-1);
        }).detach();
    } catch (...) {
        count(-1);
        throw;
    }
}

bool LooseThreads::waitForAll(std::chrono::milliseconds timeout)
{
    std::unique_lock<std::mutex> lock(running().mutex);
    return running().changed.wait_for(lock, timeout, [] { return running().count == 0; });
}
