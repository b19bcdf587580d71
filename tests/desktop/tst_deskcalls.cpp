// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BadSources.h"
#include "KvrFunctions.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <map>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

// Milliseconds, for 99 of 100 calls of a function. Instrumented code is that much slower, above all in starting
// threads.
#if defined(__SANITIZE_THREAD__)
constexpr double longestCall = 500;
#elif defined(__SANITIZE_ADDRESS__)
constexpr double longestCall = 100;
#else
constexpr double longestCall = 20;
#endif

constexpr std::size_t mostPlayers = 15; // at a time; each has a dozen threads
constexpr int cycles = 3;
constexpr int rounds = 10;      // of calls in a cycle
constexpr int pause = 100;      // milliseconds between rounds
constexpr int startTime = 20;   // in which a player starts its threads
constexpr int keptBack = 5000;  // events
constexpr int patience = 30000; // milliseconds

rusage usage()
{
    rusage result = {};
    ::getrusage(RUSAGE_THREAD, &result);
    return result;
}

double processorTime()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

// Milliseconds that a call takes. That a busy computer gives the processor to others meanwhile is not the call's fault:
// only if the call waits for something, the time of the clock counts.
template <typename Function>
double timeOf(Function function)
{
    const long waitsBefore = usage().ru_nvcsw;
    const double processorBefore = processorTime();
    QElapsedTimer clock;
    clock.start();
    function();
    const double elapsed = double(clock.nsecsElapsed()) / 1e6;
    return usage().ru_nvcsw > waitsBefore ? elapsed : processorTime() - processorBefore;
}

// The functions that begin and end a playback or a player, which are called less often, count as one.
constexpr char beginAndEnd[] = "KVR_CreatePlayer, KVR_Play..., KVR_Stop or KVR_ClosePlayer";

bool beginsOrEnds(const KvrFunction &function)
{
    return function.name == "KVR_CreatePlayer" || function.name.startsWith("KVR_Play") || function.name == "KVR_Stop"
        || function.name == "KVR_ClosePlayer";
}

bool mayWait(const KvrFunction &function)
{
    return function.name == "KVR_SyncBootParams";
}

} // namespace

/// No call waits for a source, however it fails, nor for a handler.
class TestDeskCalls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_sources.prepare()); }
    void noCallWaitsWhateverTheSourceDoes();
    void noCallWaitsForAHandler();

private:
    template <typename Function>
    void time(const char *name, Function function);
    KVR_ID begin(const QByteArray &address);
    void end(KVR_ID id, const QByteArray &address);
    void callEverything(KVR_ID player);
    void callEverything(const std::vector<BadSource> &sources);

    BadSources m_sources;
    std::map<QByteArray, std::vector<double>> m_times; // of each function, in milliseconds
};

template <typename Function>
void TestDeskCalls::time(const char *name, Function function)
{
    m_times[name].push_back(timeOf(function));
}

KVR_ID TestDeskCalls::begin(const QByteArray &address)
{
    KVR_ID id = -1;
    time(beginAndEnd, [&] { id = KVR_CreatePlayer(); });
    time(beginAndEnd, [&] { BadSources::play(id, address); });
    QTest::qWait(startTime);
    return id;
}

void TestDeskCalls::end(KVR_ID id, const QByteArray &address)
{
    time(beginAndEnd, [&] { KVR_Stop(id); });
    time(beginAndEnd, [&] { BadSources::play(id, address); });
    time(beginAndEnd, [&] { KVR_ClosePlayer(id); });
}

void TestDeskCalls::callEverything(KVR_ID player)
{
    int recording = -1;
    for (const KvrFunction &function : kvrFunctions()) {
        if (beginsOrEnds(function) || mayWait(function))
            continue;
        QByteArray result;
        const KVR_ID id = function.subject == KvrFunction::Recording ? recording : player;
        time(function.name, [&] { result = function.call(id); });
        if (function.name == "KVR_AddRecord")
            recording = result.toInt();
    }
    time("KVR_SetSpeed, backwards", [&] { KVR_SetSpeed(player, -2); });
}

void TestDeskCalls::callEverything(const std::vector<BadSource> &sources)
{
    std::vector<KVR_ID> ids(sources.size());
    std::transform(sources.begin(), sources.end(), ids.begin(),
                   [this](const BadSource &source) { return begin(source.address); });
    for (int round = 0; round < rounds; ++round) {
        for (const KVR_ID id : ids)
            callEverything(id);
        QTest::qWait(pause); // for the servers too
    }
    for (std::size_t i = 0; i < ids.size(); ++i)
        end(ids[i], sources[i].address);
}

void TestDeskCalls::noCallWaitsWhateverTheSourceDoes()
{
    std::vector<BadSource> sources = m_sources.all();
    sources.push_back({"none", BadSources::bars, {}});
    for (std::size_t first = 0; first < sources.size(); first += mostPlayers) {
        const auto begin = sources.begin() + long(first);
        const auto end = sources.begin() + long(std::min(first + mostPlayers, sources.size()));
        for (int cycle = 0; cycle < cycles; ++cycle)
            callEverything({begin, end});
    }
    double worst = 0;
    for (auto &[name, times] : m_times) {
        std::sort(times.begin(), times.end());
        const double percentile = times[times.size() * 99 / 100];
        worst = std::max(worst, percentile);
        QVERIFY2(times.size() >= 400, "enough calls for a percentile");
        QVERIFY2(percentile <= longestCall,
                 qPrintable(QString("%1 takes %2 ms").arg(QString::fromLatin1(name)).arg(percentile)));
    }
    qInfo("99 of 100 calls of the slowest function take at most %g ms", worst);
}

// A handler that hangs keeps back the events of all players and of the box, and nothing else.
void TestDeskCalls::noCallWaitsForAHandler()
{
    static QSemaphore begun;
    static QSemaphore released;
    const KVR_ID player = KVR_CreatePlayer();
    KVR_RegisterEventHandler(player, KVR_EVENT_VOLUME, [](int) {
        begun.release();
        released.acquire();
        return 0;
    });
    for (int i = 0; i < keptBack; ++i)
        KVR_SetVolume(player, i % 2);
    QVERIFY(begun.tryAcquire(1, patience));

    // On its own, so that a call that never returns has a name.
    static std::atomic<std::size_t> returned(0);
    std::thread([player] {
        KVR_ID recording = -1;
        for (const KvrFunction &function : kvrFunctions()) {
            const QByteArray result = function.call(function.subject == KvrFunction::Recording ? recording : player);
            if (function.name == "KVR_AddRecord")
                recording = result.toInt();
            ++returned;
        }
    }).detach();
    const bool allReturned = QTest::qWaitFor([] { return returned == kvrFunctions().size(); }, patience);
    const QByteArray waiting = allReturned ? QByteArray() : kvrFunctions()[returned].name;
    released.release(keptBack);
    QCOMPARE(waiting, QByteArray());
}

QTEST_GUILESS_MAIN(TestDeskCalls)
#include "tst_deskcalls.moc"
