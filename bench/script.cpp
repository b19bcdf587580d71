// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// A call from the page of a slot that takes and gives a number, and of one that writes a file.

#include "ChannelListPage.h"
#include "Child.h"
#include "Comparison.h"
#include "Statistics.h"
#include "tests/support/HttpServer.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    HttpServer server;
    server.serve("/", channelListPage());
    const QString page = server.url().toString();

    // The engine looks a name up among all, of which it has one more than pages of the plugin are shown.
    const auto names = [&](const QString &program) { return Child(program, {"names", page}).values().value(0); };
    if (names("plugin") + 1 != names("bare"))
        qFatal("The bare object has %g names, the plugin's %g; give it those of StbMedia", names("bare"),
               names("plugin"));

    const auto callTime = [&](const QString &program) {
        return Statistics::median(Child(program, {"calls", page, "9", "100000"}).values());
    };
    const Comparison comparison({"script call", "ns", 0}, {"plugin", "bare"}, 15, callTime);
    Table table("script", Comparison::columns());
    comparison.addRow(&table, "bare", Comparison::Limit{Comparison::Limit::RatioAtMost, 1.1});

    const auto closingTime = [&](const QString &program) {
        return Statistics::median(Child(program, {"closings", page, "25"}).values());
    };
    const Comparison closing({"closing a player on a slow disk", "ms", 2}, {"plugin", "bare"}, 5, closingTime);
    closing.addRow(&table, "bare", Comparison::Limit{Comparison::Limit::DifferenceAtMost, 2});
    return table.finish();
}
