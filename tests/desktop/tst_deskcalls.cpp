// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BadSources.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>
#include <sys/resource.h>
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
constexpr int rounds = 10;    // of calls in a cycle
constexpr int pause = 100;    // milliseconds between rounds
constexpr int startTime = 20; // in which a player starts its threads

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

void listTracks(KVR_ID id, int (*list)(KVR_ID, KVR_Track **, int *))
{
    KVR_Track *tracks = nullptr;
    int count = 0;
    list(id, &tracks, &count);
    free(tracks);
}

struct Call
{
    const char *name;
    void (*function)(KVR_ID);
};

const Call calls[] = {
    {"KVR_GetPlayerState", [](KVR_ID id) { KVR_GetPlayerState(id); }},
    {"KVR_GetPlayersCount", [](KVR_ID) { KVR_GetPlayersCount(); }},
    {"KVR_Pause", [](KVR_ID id) { KVR_Pause(id); }},
    {"KVR_NextFrame", [](KVR_ID id) { KVR_NextFrame(id); }},
    {"KVR_SetPosition", [](KVR_ID id) { KVR_SetPosition(id, 1000); }},
    {"KVR_GetPosition", [](KVR_ID id) { KVR_GetPosition(id); }},
    {"KVR_GetDuration", [](KVR_ID id) { KVR_GetDuration(id); }},
    {"KVR_SetSpeed", [](KVR_ID id) { KVR_SetSpeed(id, 2); }},
    {"KVR_SetSpeed, backwards", [](KVR_ID id) { KVR_SetSpeed(id, -2); }},
    {"KVR_GetSpeed", [](KVR_ID id) { KVR_GetSpeed(id); }},
    {"KVR_Continue", [](KVR_ID id) { KVR_Continue(id); }},
    {"KVR_GetVideoTrackList", [](KVR_ID id) { listTracks(id, KVR_GetVideoTrackList); }},
    {"KVR_GetAudioTrackList", [](KVR_ID id) { listTracks(id, KVR_GetAudioTrackList); }},
    {"KVR_GetSubtitleTrackList", [](KVR_ID id) { listTracks(id, KVR_GetSubtitleTrackList); }},
    {"KVR_GetTeletextTrackList", [](KVR_ID id) { listTracks(id, KVR_GetTeletextTrackList); }},
    {"KVR_GetVideoPid", [](KVR_ID id) { KVR_GetVideoPid(id); }},
    {"KVR_GetAudioPid", [](KVR_ID id) { KVR_GetAudioPid(id); }},
    {"KVR_SetAudioPid", [](KVR_ID id) { KVR_SetAudioPid(id, -1); }},
    {"KVR_GetSubtitlePid", [](KVR_ID id) { KVR_GetSubtitlePid(id); }},
    {"KVR_SetSubtitlePid", [](KVR_ID id) { KVR_SetSubtitlePid(id, -1); }},
    {"KVR_GetTeletextPid", [](KVR_ID id) { KVR_GetTeletextPid(id); }},
    {"KVR_SetTeletextPid", [](KVR_ID id) { KVR_SetTeletextPid(id, -1); }},
    {"KVR_GetTeletextPage", [](KVR_ID id) { KVR_GetTeletextPage(id); }},
    {"KVR_SetTeletextPage", [](KVR_ID id) { KVR_SetTeletextPage(id, 123); }},
    {"KVR_IsSubtitlesVisible", [](KVR_ID id) { KVR_IsSubtitlesVisible(id); }},
    {"KVR_SetSubtitlesVisible", [](KVR_ID id) { KVR_SetSubtitlesVisible(id, 1); }},
    {"KVR_IsTeletextVisible", [](KVR_ID id) { KVR_IsTeletextVisible(id); }},
    {"KVR_SetTeletextVisible", [](KVR_ID id) { KVR_SetTeletextVisible(id, 1); }},
    {"KVR_GetLastMulticastEvent",
     [](KVR_ID id) {
         KVR_MulticastEvent event = {};
         KVR_GetLastMulticastEvent(id, &event);
     }},
    {"KVR_SetVolume", [](KVR_ID id) { KVR_SetVolume(id, 50); }},
    {"KVR_GetVolume", [](KVR_ID id) { KVR_GetVolume(id); }},
    {"KVR_SetMute", [](KVR_ID id) { KVR_SetMute(id, 1); }},
    {"KVR_IsMute", [](KVR_ID id) { KVR_IsMute(id); }},
    {"KVR_SetZoom", [](KVR_ID id) { KVR_SetZoom(id, 1.1); }},
    {"KVR_GetZoom", [](KVR_ID id) { KVR_GetZoom(id); }},
    {"KVR_GetFps", [](KVR_ID id) { KVR_GetFps(id); }},
    {"KVR_SetPlayerViewPort",
     [](KVR_ID id) {
         const KVR_Rect window = {0, 0, 320, 180};
         KVR_SetPlayerViewPort(id, &window);
     }},
    {"KVR_GetPlayerViewPort",
     [](KVR_ID id) {
         KVR_Rect window = {};
         KVR_GetPlayerViewPort(id, &window);
     }},
    {"KVR_SetPlayerAlphaLevel", [](KVR_ID id) { KVR_SetPlayerAlphaLevel(id, 200); }},
    {"KVR_GetPlayerAlphaLevel", [](KVR_ID id) { KVR_GetPlayerAlphaLevel(id); }},
    {"KVR_SetPlayerVisible", [](KVR_ID id) { KVR_SetPlayerVisible(id, 1); }},
    {"KVR_IsPlayerVisible", [](KVR_ID id) { KVR_IsPlayerVisible(id); }},
    {"KVR_SetPlayerDisplayMode", [](KVR_ID id) { KVR_SetPlayerDisplayMode(id, KVR_DISPLAY_CROP); }},
    {"KVR_GetPlayerDisplayMode", [](KVR_ID id) { KVR_GetPlayerDisplayMode(id); }},
};

} // namespace

/// No call waits for a source, however it fails.
class TestDeskCalls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_sources.prepare()); }
    void noCallWaitsWhateverTheSourceDoes();

private:
    template <typename Function>
    void time(const char *name, Function function);
    KVR_ID begin(const QByteArray &address);
    void end(KVR_ID id, const QByteArray &address);
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

void TestDeskCalls::callEverything(const std::vector<BadSource> &sources)
{
    std::vector<KVR_ID> ids(sources.size());
    std::transform(sources.begin(), sources.end(), ids.begin(),
                   [this](const BadSource &source) { return begin(source.address); });
    for (int round = 0; round < rounds; ++round) {
        for (const KVR_ID id : ids) {
            for (const Call &call : calls)
                time(call.name, [&] { call.function(id); });
        }
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

QTEST_GUILESS_MAIN(TestDeskCalls)
#include "tst_deskcalls.moc"
