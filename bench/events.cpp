// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Events on their way from another thread to the page's eventCallback: one by one, many at once, and a million.

#include "ChannelListPage.h"
#include "Child.h"
#include "Comparison.h"
#include "Statistics.h"
#include "tests/support/HttpServer.h"

#include <QCoreApplication>

namespace {

using Limit = Comparison::Limit;

constexpr int eventsOfBurst = 100000;

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList programs = {"plugin", "bare"};
    HttpServer server;
    server.serve("/", channelListPage());
    const QString page = server.url().toString();

    const auto latency = [&](const QString &program) {
        return Statistics::median(Child(program, {"latencies", page, "1", "3000"}).values()) / 1e3;
    };
    const auto burst = [&](const QString &program) {
        const QVector<double> times = Child(program, {"bursts", page, "5", QString::number(eventsOfBurst)}).values();
        return eventsOfBurst / Statistics::median(times) * 1e9;
    };
    const auto growth = [&](const QString &program) {
        const QVector<double> memory = Child(program, {"memory-of-events", page, "101", "10000"}).values();
        return (memory.last() - memory.first()) / 1e6;
    };

    Table table("events", Comparison::columns());
    Comparison({"event to page", "µs", 1}, programs, 9, latency).addRow(&table, "bare", Limit{Limit::RatioAtMost, 0.6});
    Comparison({"burst of 100,000 events", "events/s", 0}, programs, 9, burst)
        .addRow(&table, "bare", Limit{Limit::RatioAtLeast, 5});
    Comparison({"growth by 1,000,000 events", "MB", 1}, programs, 3, growth)
        .addRow(&table, "bare", Limit{Limit::PluginAtMost, 10});
    return table.finish();
}
