// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The plugin on the desk box's platform library.

#include "PluginSubject.h"
#include "Tasks.h"

#include <QApplication>
#include <clocale>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // of which players' libraries take their decimal point
    return Tasks::run({[] { return std::make_unique<PluginSubject>(); }, [] {}});
}
