// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// From a program's start until it shows its first page.

#include "Browser.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return Browser::compare("start", {"start to first page", "ms", 0}, 24, {Comparison::Limit::RatioAtMost, 1.1},
                            [](const Browser &browser) { return browser.milliseconds(); });
}
