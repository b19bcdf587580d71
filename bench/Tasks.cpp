// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Tasks.h"

#include "Memory.h"
#include "Probe.h"

#include <QApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>
#include <QWebFrame>
#include <QWebView>
#include <cstdio>
#include <malloc.h>
#include <thread>

namespace {

using Tasks::Setting;
using Clock = Probe::Clock;
using Values = QJsonArray;

constexpr int loadTimeout = 20000;                                  // ms
constexpr auto pauseBetweenEvents = std::chrono::microseconds(300); // for the page's thread to fall asleep

struct Work
{
    QUrl page;
    int rounds;
    int count;
};

double nanoseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::nano>(duration).count();
}

QVariant evaluate(const Subject &subject, const QString &script)
{
    return subject.view()->page()->mainFrame()->evaluateJavaScript(script);
}

std::unique_ptr<Subject> opened(const Setting &setting, const QUrl &page)
{
    std::unique_ptr<Subject> subject = setting.create();
    subject->start(page);
    if (!QTest::qWaitFor([&] { return subject->view() && evaluate(*subject, "window.isReady").toBool(); }, loadTimeout))
        qFatal("The page %s is not shown", qPrintable(page.toString()));
    return subject;
}

// Runs a function beside the event loop of this thread, which is the page's.
template <typename Function>
void besideThePage(Function function)
{
    QEventLoop loop;
    std::thread thread([&] {
        function();
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    loop.exec();
    thread.join();
}

// The page counts events and reports each so-many-th.
void countEvents(Subject *subject, Probe *probe, int reportEach)
{
    subject->view()->page()->mainFrame()->addToJavaScriptWindowObject("probe", probe);
    evaluate(*subject,
             QString("var count = 0;"
                     "StbMedia.SetEventCallback(function () { if (++count % %1 === 0) probe.arrived(); });")
                 .arg(reportEach));
    subject->connectEvents();
}

void fireAll(Subject *subject, int count)
{
    static int argument = 0;
    for (int i = 0; i < count; ++i)
        subject->fire(++argument);
}

// The number of names that StbMedia offers the page.
Values names(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    return {evaluate(*subject, "Object.keys(StbMedia).length").toInt()};
}

// Nanoseconds of a call from the page, for each round.
Values calls(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    evaluate(*subject, "function run(n) { for (var i = 0; i < n; ++i) StbMedia.GetSpeed(i); }");
    const QString script = QString("run(%1)").arg(work.count);
    evaluate(*subject, script); // the engine compiles what is called often
    Values values;
    for (int round = 0; round < work.rounds; ++round) {
        const Clock::time_point start = Clock::now();
        evaluate(*subject, script);
        values += nanoseconds(Clock::now() - start) / work.count;
    }
    return values;
}

// Milliseconds of closing a player, for each round.
Values closings(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    Values values;
    for (int round = 0; round < work.rounds; ++round) {
        const Clock::time_point start = Clock::now();
        evaluate(*subject, "StbMedia.ClosePlayer(1)");
        values += nanoseconds(Clock::now() - start) / 1e6;
        setting.afterRound();
    }
    return values;
}

// Nanoseconds from another thread to the page, for each event.
Values latencies(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    Probe probe;
    countEvents(subject.get(), &probe, 1);
    Values values;
    besideThePage([&] {
        for (int i = 0; i < work.count; ++i) {
            std::this_thread::sleep_for(pauseBetweenEvents);
            const Clock::time_point start = Clock::now();
            fireAll(subject.get(), 1);
            values += nanoseconds(probe.wait() - start);
        }
    });
    return values;
}

// Nanoseconds from the first event of a burst until the page has the last one, for each round.
Values bursts(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    Probe probe;
    countEvents(subject.get(), &probe, work.count);
    Values values;
    for (int round = 0; round < work.rounds; ++round) {
        besideThePage([&] {
            const Clock::time_point start = Clock::now();
            fireAll(subject.get(), work.count);
            values += nanoseconds(probe.wait() - start);
        });
    }
    return values;
}

// The memory after each round, without what the engine could do without: it collects its garbage when it sees fit,
// which would hide what is lost.
Values memoryAfter(const Setting &setting, int rounds, const std::function<void()> &round)
{
    Values values;
    for (int i = 0; i < rounds; ++i) {
        round();
        setting.afterRound();
        QWebSettings::clearMemoryCaches();
        malloc_trim(0);
        values += Memory::allocatedHere();
    }
    return values;
}

Values memoryOfCalls(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    const QString script = QString("for (var i = 0; i < %1; ++i) StbMedia.GetSpeed(i)").arg(work.count);
    return memoryAfter(setting, work.rounds, [&] { evaluate(*subject, script); });
}

Values memoryOfEvents(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    Probe probe;
    countEvents(subject.get(), &probe, work.count);
    return memoryAfter(setting, work.rounds, [&] {
        besideThePage([&] {
            fireAll(subject.get(), work.count);
            probe.wait();
        });
    });
}

Values memoryOfReloads(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    QEventLoop loop;
    QObject::connect(subject->view(), &QWebView::loadFinished, &loop, &QEventLoop::quit);
    return memoryAfter(setting, work.rounds, [&] {
        for (int i = 0; i < work.count; ++i) {
            subject->view()->setUrl(work.page);
            loop.exec();
        }
    });
}

Values memoryOfLives(const Setting &setting, const Work &work)
{
    return memoryAfter(setting, work.rounds, [&] {
        for (int i = 0; i < work.count; ++i)
            opened(setting, work.page);
    });
}

// Each player plays the box's file /clip.ts, and is closed when the size of the picture is known.
Values memoryOfPlayers(const Setting &setting, const Work &work)
{
    const auto subject = opened(setting, work.page);
    Probe probe;
    subject->view()->page()->mainFrame()->addToJavaScriptWindowObject("probe", &probe);
    evaluate(*subject,
             "var id = -1;"
             "StbMedia.SetEventCallback(function (player, code) {"
             "    if (player === id && code === 5) probe.arrived();"
             "});");
    return memoryAfter(setting, work.rounds, [&] {
        for (int i = 0; i < work.count; ++i) {
            evaluate(*subject, "id = StbMedia.CreatePlayer(); StbMedia.PlayFile(id, '/clip.ts', 0, 0, 0, '')");
            besideThePage([&] { probe.wait(); });
            evaluate(*subject, "StbMedia.ClosePlayer(id); id = -1");
        }
    });
}

struct Task
{
    const char *name;
    Values (*function)(const Setting &, const Work &);
};

const Task tasks[] = {
    {"names", names},
    {"calls", calls},
    {"closings", closings},
    {"latencies", latencies},
    {"bursts", bursts},
    {"memory-of-calls", memoryOfCalls},
    {"memory-of-events", memoryOfEvents},
    {"memory-of-reloads", memoryOfReloads},
    {"memory-of-lives", memoryOfLives},
    {"memory-of-players", memoryOfPlayers},
};

// Shows the page until the process is killed.
int show(const Setting &setting, const QUrl &page)
{
    const std::unique_ptr<Subject> subject = setting.create();
    subject->start(page);
    return QApplication::exec();
}

} // namespace

int Tasks::run(const Setting &setting)
{
    const QStringList arguments = QApplication::arguments();
    const Work work = {QUrl(arguments.value(2)), arguments.value(3).toInt(), arguments.value(4).toInt()};
    if (arguments.value(1) == "show")
        return show(setting, work.page);
    for (const Task &task : tasks) {
        if (arguments.value(1) != task.name)
            continue;
        const Values values = task.function(setting, work);
        std::puts(QJsonDocument(values).toJson(QJsonDocument::Compact).constData());
        return 0;
    }
    qCritical("There is no task \"%s\"", qPrintable(arguments.value(1)));
    return 2;
}
