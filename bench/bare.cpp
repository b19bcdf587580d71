// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// A program with nothing but a web view, beside which the plugin is measured.

#include "BareSubject.h"
#include "Tasks.h"

#include <QApplication>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    return Tasks::run({[] { return std::make_unique<BareSubject>(); }, [] {}});
}
