// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordingPlatform.h"

#include <QMutex>
#include <QProcess>
#include <QSemaphore>
#include <QtTest>
#include <atomic>
#include <cfloat>
#include <climits>
#include <cstdlib>

using RecordingPlatform::Answer;

Q_DECLARE_METATYPE(std::function<void()>)

namespace {

std::atomic<int> threadCount{0};

// Unlike the system's names of threads, never given twice.
int threadNumber()
{
    thread_local const int number = ++threadCount;
    return number;
}

// The threads and arguments with which the handler below was called.
using Calls = QVector<QPair<int, int>>; // thread and argument
Q_GLOBAL_STATIC(QMutex, seenMutex)
Q_GLOBAL_STATIC(Calls, seen)

int noteArgument(int argument)
{
    const QMutexLocker lock(seenMutex);
    *seen += qMakePair(threadNumber(), argument);
    return 0;
}

constexpr int meetingThreads = 4;
Q_GLOBAL_STATIC(QSemaphore, arrivals)
Q_GLOBAL_STATIC(QSemaphore, departures)
std::atomic<int> met{0};

// Stays until the test lets it go, or for 5 seconds.
int meet(int)
{
    arrivals->release();
    if (departures->tryAcquire(1, 5000))
        ++met;
    return 0;
}

QVector<int> seenArguments()
{
    const QMutexLocker lock(seenMutex);
    QVector<int> arguments;
    for (const auto &call : qAsConst(*seen))
        arguments += call.second;
    return arguments;
}

KVR_Track track(int id, const char *descr)
{
    KVR_Track track = {};
    track.id = id;
    qstrncpy(track.descr, descr, sizeof track.descr);
    return track;
}

const char *const secondFree = "--second-free";

// What this program does when it is its own child: frees a block twice.
int freeTwice()
{
    int *order = nullptr;
    int count = 0;
    KVR_GetOrder(&order, &count);
    std::free(order);
    std::free(order); // NOLINT(clang-analyzer-unix.Malloc): what this is about
    return RecordingPlatform::memoryFaults() == QByteArrayList{"KVR_GetOrder: freed 2 times"} ? 0 : 1;
}

} // namespace

// The recording platform itself, as the tests that stand on it see it.
class TestRecordingPlatform : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void callsAreTextsWithAllArguments_data();
    void callsAreTextsWithAllArguments();
    void unscriptedFunctionsAnswerNothingInParticular();
    void newPlayersAndRecordingsAreNumberedFromOne();
    void answersOfTheQueueComeBeforeTheLastingOne();
    void extremeResultsArriveUnchanged();
    void anAnswerOfANumberLeavesOutPointersAlone();
    void arraysAndTextsAreHandedOutAsScripted();
    void buffersGetExactlyTheBytesScripted();
    void structuresAreStoredAsScripted();
    void anActionRunsInsideTheCall();

    void aBlockFreedOnceIsNoFault();
    void aBlockNeverFreedIsNamed();
    void aBlockFreedTwiceIsReported();
    void theLibrarysOwnTextMustNotBeFreed();
    void emptyArraysAreBlocksToo();
    void manyThreadsMayFreeAtOnce();

    void registrationsAreKeptAndGivenBack();
    void closingAPlayerEndsItsRegistrations();
    void aRegistrationThatFailsIsNotKept();
    void eventsComeFromOneThreadOfTheLibraryInTheirOrder();
    void noEventComesInsideACallUnlessAskedFor();
    void recordsHaveAHandlerOfTheirOwn();
    void severalThreadsFireAtOnce();
    void eachThreadFiresInOrder();
};

void TestRecordingPlatform::cleanup()
{
    RecordingPlatform::reset();
    RecordingPlatform::forgetHandlers();
    seen->clear();
}

void TestRecordingPlatform::callsAreTextsWithAllArguments_data()
{
    const KVR_Rect rect = {1, -2, 3, 4};
    const int order[] = {3, 1, 2};
    const auto row = [](const char *call, const std::function<void()> &makeCall) {
        QTest::newRow(call) << makeCall << QByteArray(call);
    };
    QTest::addColumn<std::function<void()>>("makeCall");
    QTest::addColumn<QByteArray>("call");

    row("KVR_CreatePlayer()", [] { KVR_CreatePlayer(); });
    row("KVR_SetSpeed(1, -2147483648)", [] { KVR_SetSpeed(1, INT_MIN); });
    row("KVR_SetPosition(1, -9223372036854775808)", [] { KVR_SetPosition(1, LLONG_MIN); });
    row("KVR_SetGraphicsAlphaLevel(4294967295)", [] { KVR_SetGraphicsAlphaLevel(UINT_MAX); });
    row("KVR_SetZoom(1, 2)", [] { KVR_SetZoom(1, 2.0); });
    row("KVR_SetZoom(1, 0.1)", [] { KVR_SetZoom(1, 0.1); });
    row("KVR_SetZoom(1, 0.30000000000000004)", [] { KVR_SetZoom(1, 0.1 + 0.2); });
    row("KVR_SetZoom(1, -1.7976931348623157e+308)", [] { KVR_SetZoom(1, -DBL_MAX); });
    row("KVR_PlayStream(1, udp://%2, -1, -1, -1)", [] { KVR_PlayStream(1, "udp://%2", -1, -1, -1); });
    row("KVR_PlayHttp(2, \u043a\u0438\u043d\u043e, \"a, b\", 5, 6, 7)",
        [] { KVR_PlayHttp(2, "\u043a\u0438\u043d\u043e", "\"a, b\"", 5, 6, 7); });
    row("KVR_PlayFile(1, , 2, 3, 23.976, null, 4, 5, 6)", [] { KVR_PlayFile(1, "", 2, 3, 23.976, nullptr, 4, 5, 6); });
    row("KVR_PlayMagnet(1, m, n, 2, 3, 4, 25, 5, 6, 7)", [] { KVR_PlayMagnet(1, "m", "n", 2, 3, 4, 25, 5, 6, 7); });
    row("KVR_SetPlayerViewPort(1, {1, -2, 3, 4})", [rect] { KVR_SetPlayerViewPort(1, &rect); });
    row("KVR_SetPlayerViewPort(1, null)", [] { KVR_SetPlayerViewPort(1, nullptr); });
    row("KVR_SetChromaKey({52, 86, 120, 255})", [] { KVR_SetChromaKey({52, 86, 120, 255}); });
    row("KVR_SetOrder({3, 1, 2}, 3)", [order] { KVR_SetOrder(order, 3); });
    row("KVR_SetOrder({}, 0)", [order] { KVR_SetOrder(order, 0); });
    row("KVR_SetOrder(null, 0)", [] { KVR_SetOrder(nullptr, 0); });
    row("KVR_RegisterEventHandler(-128, 137, handler)", [] { KVR_RegisterEventHandler(KVR_BOX, 137, noteArgument); });
    row("KVR_SetRecordsSharedCallback(null)", [] { KVR_SetRecordsSharedCallback(nullptr); });
    row("KVR_AddRecord(udp://1, a.ts, 4294967295, -5)", [] { KVR_AddRecord("udp://1", "a.ts", UINT_MAX, -5); });
    row("KVR_GetPlayerViewPort(9)", [] {
        KVR_Rect window;
        KVR_GetPlayerViewPort(9, &window);
    });
    row("KVR_GetBootParamValue(ver)", [] {
        char value[256];
        KVR_GetBootParamValue("ver", value);
    });
}

void TestRecordingPlatform::callsAreTextsWithAllArguments()
{
    QFETCH(const std::function<void()>, makeCall);
    QFETCH(const QByteArray, call);

    makeCall();
    QCOMPARE(RecordingPlatform::calls(), QByteArrayList{call});
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList{call});
    QVERIFY(RecordingPlatform::calls().isEmpty());
}

void TestRecordingPlatform::unscriptedFunctionsAnswerNothingInParticular()
{
    QCOMPARE(KVR_Stop(1), 0);
    QCOMPARE(KVR_GetDuration(1), 0LL);
    QCOMPARE(KVR_GetFps(1), 0.0);

    char *model = nullptr;
    QCOMPARE(KVR_GetDeviceModel(&model), 0);
    QCOMPARE(model, "MZ-600 test");
    std::free(model);

    KVR_Rect window = {1, 2, 3, 4};
    QCOMPARE(KVR_GetPlayerViewPort(1, &window), 0);
    QCOMPARE(window.x + window.y + window.width + window.height, 0);

    char value[256] = "old";
    QCOMPARE(KVR_GetBootParamValue("ver", value), 0);
    QCOMPARE(value, "");

    QCOMPARE(KVR_GetRecordFilename(1), "");
}

void TestRecordingPlatform::newPlayersAndRecordingsAreNumberedFromOne()
{
    QCOMPARE(KVR_CreatePlayer(), 1);
    QCOMPARE(KVR_CreatePlayer(), 2);
    QCOMPARE(KVR_AddRecord("u", "f", 0, 0), 1);
    RecordingPlatform::answerOnce("KVR_CreatePlayer", KVR_ERR_FAILED);
    QCOMPARE(KVR_CreatePlayer(), -1);
    QCOMPARE(KVR_CreatePlayer(), 3);
    RecordingPlatform::reset();
    QCOMPARE(KVR_CreatePlayer(), 1);
}

void TestRecordingPlatform::answersOfTheQueueComeBeforeTheLastingOne()
{
    RecordingPlatform::answer("KVR_GetSpeed", 9);
    RecordingPlatform::answerOnce("KVR_GetSpeed", -7);
    RecordingPlatform::answerOnce("KVR_GetSpeed", 5);
    QCOMPARE(KVR_GetVolume(1), 0);
    QCOMPARE(KVR_GetSpeed(1), -7);
    QCOMPARE(KVR_GetSpeed(1), 5);
    QCOMPARE(KVR_GetSpeed(1), 9);
    QCOMPARE(KVR_GetSpeed(1), 9);
}

void TestRecordingPlatform::extremeResultsArriveUnchanged()
{
    RecordingPlatform::answer("KVR_GetSpeed", INT_MIN);
    QCOMPARE(KVR_GetSpeed(1), INT_MIN);
    RecordingPlatform::answer("KVR_GetPosition", LLONG_MAX);
    QCOMPARE(KVR_GetPosition(1), LLONG_MAX);
    RecordingPlatform::answer("KVR_GetZoom", DBL_MIN);
    QCOMPARE(KVR_GetZoom(1), DBL_MIN);
    RecordingPlatform::answer("KVR_GetZoom", -3);
    QCOMPARE(KVR_GetZoom(1), -3.0);
}

void TestRecordingPlatform::anAnswerOfANumberLeavesOutPointersAlone()
{
    for (const char *function :
         {"KVR_GetAudioTrackList", "KVR_GetFirmwareVersion", "KVR_GetBootParamValue", "KVR_GetChromaKey"})
        RecordingPlatform::answer(function, KVR_ERR_INVALID_ID);

    KVR_Track own = track(1, "own");
    KVR_Track *tracks = &own;
    int count = 77;
    QCOMPARE(KVR_GetAudioTrackList(1, &tracks, &count), -127);
    QCOMPARE(tracks, &own);
    QCOMPARE(count, 77);

    char text[] = "own";
    char *version = text;
    QCOMPARE(KVR_GetFirmwareVersion(&version), -127);
    QCOMPARE(version, text);

    QCOMPARE(KVR_GetBootParamValue("ver", text), -127);
    QCOMPARE(text, "own");

    KVR_Color color = {1, 2, 3, 4};
    QCOMPARE(KVR_GetChromaKey(&color), -127);
    QCOMPARE(int(color.blue), 3);
    QCOMPARE(RecordingPlatform::blocksHandedOut(), 0);
}

void TestRecordingPlatform::arraysAndTextsAreHandedOutAsScripted()
{
    RecordingPlatform::answer("KVR_GetVideoTrackList",
                              Answer::array(QVector<KVR_Track>{track(5, "rus"), track(6, "eng")}, 3));
    RecordingPlatform::answerOnce("KVR_GetOrder", Answer::array(QVector<int>{4, 2}, KVR_OK, -1));
    RecordingPlatform::answerOnce("KVR_GetOrder", Answer::nullArray(8, -2));
    RecordingPlatform::answer("KVR_GetDeviceSerialNumber", Answer::text("\xe9\xff", -1));

    KVR_Track *tracks = nullptr;
    int count = 0;
    QCOMPARE(KVR_GetVideoTrackList(1, &tracks, &count), 3);
    QCOMPARE(count, 2);
    QCOMPARE(tracks[1].id, 6);
    QCOMPARE(tracks[1].descr, "eng");

    int *order = nullptr;
    QCOMPARE(KVR_GetOrder(&order, &count), 0);
    QCOMPARE(count, -1);
    QCOMPARE(order[1], 2);
    std::free(order);
    QCOMPARE(KVR_GetOrder(&order, &count), -2);
    QCOMPARE(count, 8);
    QVERIFY(!order);

    char *serial = nullptr;
    QCOMPARE(KVR_GetDeviceSerialNumber(&serial), -1);
    QCOMPARE(QByteArray(serial), QByteArray("\xe9\xff"));

    QCOMPARE(RecordingPlatform::blocksHandedOut(), 3);
    std::free(tracks);
    std::free(serial);
}

void TestRecordingPlatform::buffersGetExactlyTheBytesScripted()
{
    QByteArray buffer(300, 'x');
    RecordingPlatform::answer("KVR_GetBootParamValue", Answer::buffer("ab"));
    KVR_GetBootParamValue("ver", buffer.data());
    QCOMPARE(buffer, "ab" + QByteArray(298, 'x'));

    RecordingPlatform::answer("KVR_GetBootParamValue", Answer::buffer(QByteArray(256, 'y'), -1));
    QCOMPARE(KVR_GetBootParamValue("ver", buffer.data()), -1);
    QCOMPARE(buffer, QByteArray(256, 'y') + QByteArray(44, 'x'));
}

void TestRecordingPlatform::structuresAreStoredAsScripted()
{
    RecordingPlatform::answer("KVR_GetGraphicsViewport", Answer::structure(KVR_Rect{1, 2, 3, 4}, 6));
    KVR_Rect viewport = {};
    QCOMPARE(KVR_GetGraphicsViewport(&viewport), 6);
    QCOMPARE(viewport.height, 4);

    RecordingPlatform::answer("KVR_GetLastMulticastEvent", Answer::structure(KVR_MulticastEvent{"239.1.1.1:5000", 1}));
    KVR_MulticastEvent event = {};
    QCOMPARE(KVR_GetLastMulticastEvent(1, &event), 0);
    QCOMPARE(event.ip_port, "239.1.1.1:5000");
    QCOMPARE(event.join, 1);
}

void TestRecordingPlatform::anActionRunsInsideTheCall()
{
    RecordingPlatform::onCall("KVR_Pause", [] { KVR_Stop(2); });
    KVR_Pause(1);
    QCOMPARE(RecordingPlatform::takeCalls(), (QByteArrayList{"KVR_Pause(1)", "KVR_Stop(2)"}));
}

void TestRecordingPlatform::aBlockFreedOnceIsNoFault()
{
    char *text = nullptr;
    KVR_GetFirmwareVersion(&text);
    std::free(text);
    QCOMPARE(RecordingPlatform::blocksHandedOut(), 1);
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestRecordingPlatform::aBlockNeverFreedIsNamed()
{
    char *text = nullptr;
    KVR_GetFirmwareVersion(&text);
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList{"KVR_GetFirmwareVersion: never freed"});
    std::free(text);
}

void TestRecordingPlatform::aBlockFreedTwiceIsReported()
{
    QProcess child;
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(), {secondFree});
    QVERIFY(child.waitForFinished());
    const QByteArray output = child.readAll();
#ifdef __SANITIZE_ADDRESS__
    QVERIFY2(output.contains("attempting double-free"), output);
    QVERIFY(child.exitCode() != 0);
#else
    QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0, output);
#endif
}

void TestRecordingPlatform::theLibrarysOwnTextMustNotBeFreed()
{
    RecordingPlatform::answer("KVR_GetRecordFilename", Answer::text("a.ts"));
    const char *name = KVR_GetRecordFilename(1);
    QCOMPARE(name, "a.ts");
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
    std::free(const_cast<char *>(name));
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList{"KVR_GetRecordFilename: freed, but the library's own"});
}

void TestRecordingPlatform::emptyArraysAreBlocksToo()
{
    KVR_Record *records = nullptr;
    int count = 5;
    QCOMPARE(KVR_GetRecordsList(&records, &count), 0);
    QCOMPARE(count, 0);
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList{"KVR_GetRecordsList: never freed"});
    std::free(records);
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestRecordingPlatform::manyThreadsMayFreeAtOnce()
{
    constexpr int threads = 4;
    constexpr int rounds = 2000;
    RecordingPlatform::fireFromThreads(threads, rounds, [](int thread, int index) {
        char *text = nullptr;
        KVR_GetDeviceModel(&text);
        std::free(text);
        return RecordingPlatform::Event{thread, index, 0};
    });
    RecordingPlatform::waitUntilFired();
    QCOMPARE(RecordingPlatform::blocksHandedOut(), threads * rounds);
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestRecordingPlatform::registrationsAreKeptAndGivenBack()
{
    QVERIFY(!KVR_GetEventHandler(1, KVR_EVENT_STATE));
    QCOMPARE(KVR_DeleteEventHandler(1, KVR_EVENT_STATE), int(KVR_ERR_FAILED));
    QCOMPARE(KVR_RegisterEventHandler(1, KVR_EVENT_STATE, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_RegisterEventHandler(1, KVR_EVENT_STATE, noteArgument), 0);
    QVERIFY(KVR_GetEventHandler(1, KVR_EVENT_STATE) == noteArgument);
    QVERIFY(!KVR_GetEventHandler(2, KVR_EVENT_STATE));
    QVERIFY(!KVR_GetEventHandler(1, KVR_EVENT_MUTE));
    RecordingPlatform::reset();
    QVERIFY(KVR_GetEventHandler(1, KVR_EVENT_STATE) == noteArgument);
    QCOMPARE(KVR_DeleteEventHandler(1, KVR_EVENT_STATE), 0);
    QVERIFY(!KVR_GetEventHandler(1, KVR_EVENT_STATE));
}

void TestRecordingPlatform::closingAPlayerEndsItsRegistrations()
{
    KVR_RegisterEventHandler(1, KVR_EVENT_STATE, noteArgument);
    KVR_RegisterEventHandler(1, KVR_EVENT_TELETEXT_PAGE, noteArgument);
    KVR_RegisterEventHandler(2, KVR_EVENT_STATE, noteArgument);
    KVR_ClosePlayer(1);
    QVERIFY(!KVR_GetEventHandler(1, KVR_EVENT_STATE));
    QVERIFY(!KVR_GetEventHandler(1, KVR_EVENT_TELETEXT_PAGE));
    QVERIFY(KVR_GetEventHandler(2, KVR_EVENT_STATE));
}

void TestRecordingPlatform::aRegistrationThatFailsIsNotKept()
{
    RecordingPlatform::answerOnce("KVR_RegisterEventHandler", KVR_ERR_FAILED);
    QCOMPARE(KVR_RegisterEventHandler(1, KVR_EVENT_STATE, noteArgument), -1);
    QVERIFY(!KVR_GetEventHandler(1, KVR_EVENT_STATE));
}

void TestRecordingPlatform::eventsComeFromOneThreadOfTheLibraryInTheirOrder()
{
    KVR_RegisterEventHandler(7, KVR_EVENT_POSITION, noteArgument);
    KVR_RegisterEventHandler(KVR_BOX, KVR_EVENT_HDMI, noteArgument);
    const int before = RecordingPlatform::deliveredEvents();
    RecordingPlatform::fire(7, KVR_EVENT_POSITION);
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_HDMI, 2);
    RecordingPlatform::fire(8, KVR_EVENT_POSITION);
    RecordingPlatform::fire(7, KVR_EVENT_POSITION);
    RecordingPlatform::waitUntilFired();
    QCOMPARE(seenArguments(), (QVector<int>{7, 2, 7}));
    QCOMPARE(RecordingPlatform::deliveredEvents() - before, 3);
    QVERIFY(seen->first().first != threadNumber());
    QCOMPARE(seen->first().first, seen->last().first);
}

void TestRecordingPlatform::noEventComesInsideACallUnlessAskedFor()
{
    KVR_RegisterEventHandler(1, KVR_EVENT_STATE, noteArgument);
    RecordingPlatform::onCall("KVR_Pause", [] { RecordingPlatform::fire(1, KVR_EVENT_STATE); });
    RecordingPlatform::onCall("KVR_Stop", [] { RecordingPlatform::fireHere({1, KVR_EVENT_STATE, 9}); });
    KVR_Pause(1);
    RecordingPlatform::waitUntilFired();
    QVERIFY(seen->takeFirst().first != threadNumber());
    KVR_Stop(1);
    QCOMPARE(seen->size(), 1);
    QCOMPARE(seen->first().first, threadNumber());
}

void TestRecordingPlatform::recordsHaveAHandlerOfTheirOwn()
{
    QCOMPARE(KVR_SetRecordsSharedCallback(noteArgument), 0);
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_RECORDS, 42);
    RecordingPlatform::waitUntilFired();
    QCOMPARE(KVR_CleanRecordsSharedCallback(), 0);
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_RECORDS, 43);
    RecordingPlatform::waitUntilFired();
    QCOMPARE(seenArguments(), QVector<int>{42});
}

void TestRecordingPlatform::severalThreadsFireAtOnce()
{
    KVR_RegisterEventHandler(1, KVR_EVENT_STATE, meet);
    RecordingPlatform::fireFromThreads(meetingThreads, 1, [](int, int) {
        return RecordingPlatform::Event{1, KVR_EVENT_STATE, 1};
    });
    QVERIFY(arrivals->tryAcquire(meetingThreads, 5000));
    departures->release(meetingThreads);
    RecordingPlatform::waitUntilFired();
    QCOMPARE(int(met), meetingThreads);
}

void TestRecordingPlatform::eachThreadFiresInOrder()
{
    constexpr int threads = 4;
    constexpr int events = 2500;
    for (int thread = 0; thread < threads; ++thread)
        KVR_RegisterEventHandler(thread, KVR_EVENT_STATE, noteArgument);
    RecordingPlatform::fireFromThreads(threads, events, [](int thread, int index) {
        return RecordingPlatform::Event{thread, KVR_EVENT_STATE, thread * events + index};
    });
    RecordingPlatform::waitUntilFired();

    QHash<int, QVector<int>> byThread;
    for (const auto &call : qAsConst(*seen))
        byThread[call.first] += call.second;
    QCOMPARE(byThread.size(), threads);
    for (const QVector<int> &arguments : qAsConst(byThread)) {
        QCOMPARE(arguments.size(), events);
        for (int i = 0; i < events; ++i)
            QCOMPARE(arguments[i], arguments[0] + i);
    }
}

int main(int argc, char **argv)
{
    if (argc == 2 && qstrcmp(argv[1], secondFree) == 0)
        return freeTwice();
    QCoreApplication application(argc, argv);
    TestRecordingPlatform test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_recordingplatform.moc"
