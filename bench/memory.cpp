// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The memory of a program that shows a page and does nothing.

#include "Memory.h"
#include "Browser.h"

#include <QCoreApplication>
#include <QThread>

namespace {

constexpr int settlingTime = 3; // seconds
constexpr double megabyte = 1 << 20;

double idleMemory(const Browser &browser)
{
    QThread::sleep(settlingTime);
    return Memory::shareOfTree(browser.processId()) / megabyte;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return Browser::compare("memory", {"memory when idle", "MiB", 1}, 8, {Comparison::Limit::DifferenceAtMost, 8},
                            idleMemory);
}
