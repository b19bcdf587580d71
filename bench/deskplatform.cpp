// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The plugin on the desk box's platform library.

#include "PluginSubject.h"
#include "Tasks.h"

#include <QApplication>
#include <QDir>
#include <QTest>
#include <clocale>
#include <malloc.h>

namespace {

constexpr int pause = 200; // ms

int threads()
{
    return int(QDir("/proc/self/task").count());
}

// A closed player's threads take a moment to end.
void waitForClosedPlayers()
{
    for (int before = 0, now = threads(); now != before; now = threads()) {
        before = now;
        QTest::qWait(pause);
    }
}

} // namespace

int main(int argc, char **argv)
{
    // What lies free between the memory of a hundred threads comes and goes, and would hide what is lost.
    mallopt(M_ARENA_MAX, 1);
    const QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // of which players' libraries take their decimal point
    return Tasks::run({[] { return std::make_unique<PluginSubject>(); }, waitForClosedPlayers});
}
