// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Browser.h"

#include "ChannelListPage.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <QTimer>

namespace {

constexpr int longestWait = 30000; // ms

// Debian's own script for the second one looks for settings that a box does not have.
QString path(const QString &name)
{
    return name == "chromium" ? QStandardPaths::findExecutable(name, {"/usr/lib/chromium"})
                              : QStandardPaths::findExecutable(name);
}

// Without a display, as ours run here. The second one refuses to be root with its sandbox.
QStringList arguments(const QString &name, const QString &page)
{
    if (name == "cog")
        return {"--platform=headless", page};
    if (name == "chromium")
        return {"--headless", "--no-sandbox", "--disable-gpu", "--window-size=1280,720", "--remote-debugging-port=0",
                page};
    return {"show", page};
}

} // namespace

QStringList Browser::others()
{
    return {"cog", "chromium"};
}

bool Browser::isInstalled(const QString &name)
{
    return !path(name).isEmpty();
}

Browser::Browser(const QString &name)
{
    m_server.serve("/", channelListPage());
    const QString program = others().contains(name) ? path(name) : name;
    QTimer timeout; // wakes the loop below
    timeout.start(longestWait);
    QElapsedTimer clock;
    clock.start();
    m_child = std::make_unique<Child>(program, arguments(name, m_server.url().toString()));
    while (m_server.requestsFor("/ready").isEmpty()) {
        if (!m_child->isRunning() || clock.hasExpired(longestWait))
            m_child->fail("did not show the page");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    m_milliseconds = double(clock.nsecsElapsed()) / 1e6;
}

int Browser::compare(const QString &benchmark, const Comparison::Quantity &quantity, int rounds,
                     const Comparison::Limit &limit, const std::function<double(const Browser &)> &measure)
{
    QStringList programs = {"plugin", "bare"};
    QStringList missing;
    const QStringList candidates = others();
    for (const QString &other : candidates)
        (isInstalled(other) ? programs : missing) += other;
    const Comparison comparison(quantity, programs, rounds,
                                [&](const QString &program) { return measure(Browser(program)); });

    Table table(benchmark, Comparison::columns());
    comparison.addRow(&table, "bare", limit);
    for (int i = 2; i < programs.size(); ++i)
        comparison.addRow(&table, programs.at(i));
    for (const QString &other : std::as_const(missing))
        table.addRow({quantity.name, other, "", "", "not installed", "", "", ""}, {});
    return table.finish();
}
