// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Long loops, and whether memory stays flat in them.

#include "ChannelListPage.h"
#include "Child.h"
#include "Statistics.h"
#include "Table.h"
#include "tests/desktop/TestMedia.h"
#include "tests/support/HttpServer.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

constexpr double kilobyte = 1024;
constexpr double megabyte = kilobyte * kilobyte;
constexpr int quickly = 10; // times shorter loops
// Memory goes up and down, because the engine collects its garbage when it sees fit. The lows tell what stays.
constexpr int samplesPerLow = 5;
// Of the lows at the beginning, while caches fill.
constexpr int warmUpPart = 4;
constexpr double standardErrors = 3;
constexpr double negligible = 1 * megabyte; // in a whole loop
constexpr double vague = 0.1;               // of the memory: what goes up and down so much tells nothing

struct Loop
{
    QString name;
    const char *program;
    const char *task;
    int rounds; ///< after each of which memory is looked at
    int countOfRound;
    bool hasBare; ///< whether the bare program can do the same
};

const Loop loops[] = {
    {"1,000,000 script calls", "plugin", "memory-of-calls", 100, 10000, true},
    {"1,000,000 events", "plugin", "memory-of-events", 100, 10000, true},
    {"1,000 loads of a portal of 200 KB", "plugin", "memory-of-reloads", 100, 10, true},
    {"the plugin created and destroyed 200 times", "plugin", "memory-of-lives", 50, 4, true},
    {"1,000 players opened and closed", "deskplatform", "memory-of-players", 100, 10, false},
};

// How memory went in a loop.
struct Course
{
    QVector<double> samples;
    Statistics::Slope slope; ///< bytes in the whole loop

    bool isFlat() const
    {
        const double doubt = standardErrors * slope.error;
        return slope.rise - doubt < negligible && doubt < std::max(vague * samples.last(), negligible);
    }
};

QVector<double> lowsOf(const QVector<double> &samples)
{
    QVector<double> lows;
    for (int i = 0; i + samplesPerLow <= samples.size(); i += samplesPerLow)
        lows += *std::min_element(samples.begin() + i, samples.begin() + i + samplesPerLow);
    return lows;
}

Course course(const Loop &loop, const QString &program, const QString &page, int shortening)
{
    const QStringList arguments = {loop.task, page, QString::number(loop.rounds),
                                   QString::number(std::max(loop.countOfRound / shortening, 1))};
    const QVector<double> samples = Child(program, arguments).values();
    const QVector<double> lows = lowsOf(samples);
    Statistics::Slope slope = Statistics::slope(lows.mid(lows.size() / warmUpPart));
    slope.rise *= lows.size();
    slope.error *= lows.size();
    return {samples, slope};
}

QString slopeText(const Statistics::Slope &slope)
{
    return QString("%1 ± %2 KiB").arg(slope.rise / kilobyte, 0, 'f', 0).arg(slope.error / kilobyte, 0, 'f', 0);
}

QString megabytes(double bytes)
{
    return QString("%1 MiB").arg(bytes / megabyte, 0, 'f', 1);
}

QJsonObject json(const Course &course)
{
    QJsonArray samples;
    for (double sample : course.samples)
        samples += sample;
    return {{"samples", samples}, {"rise", course.slope.rise}, {"error", course.slope.error}};
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int shortening = QCoreApplication::arguments().contains("--quick") ? quickly : 1;
    HttpServer server;
    server.serve("/", channelListPage());
    if (!TestMedia::makeBars("/mnt/stb/clip.ts", 5))
        return 1;
    const QString page = server.url().toString();

    Table table("endurance", {"loop", "first", "last", "fitted rise in the loop", "the same in the bare view", "flat"});
    for (const Loop &loop : loops) {
        const Course plugin = course(loop, loop.program, page, shortening);
        QJsonObject figures = {{"plugin", json(plugin)}};
        QString bareText;
        if (loop.hasBare) {
            const Course bare = course(loop, "bare", page, shortening);
            figures["bare"] = json(bare);
            bareText = slopeText(bare.slope);
        }
        table.addRow({loop.name + (shortening > 1 ? ", shortened" : ""), megabytes(plugin.samples.first()),
                      megabytes(plugin.samples.last()), slopeText(plugin.slope), bareText,
                      plugin.isFlat() ? "yes" : "no"},
                     figures, plugin.isFlat());
    }
    return table.finish();
}
