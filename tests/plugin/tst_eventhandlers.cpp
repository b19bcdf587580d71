// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HostedPlugin.h"

#include "browser/bridge/EventNotifier.h"
#include "jsapi/DisplayCallbacks.h"
#include "jsapi/StbDisplay.h"
#include "jsapi/StbPVR.h"
#include "shell/CStbApplication.h"

#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <climits>
#include <memory>

Q_DECLARE_METATYPE(KVR_EventHandler)

using KavroJS::StbDisplay;
using KavroJS::StbPVR;

namespace {

std::atomic<int> launcherEvents{0};

// Handlers of whoever had the box before; told apart by their addresses.
int launcherSync(int)
{
    return launcherEvents += 1;
}
int launcherOutput(int)
{
    return launcherEvents += 100;
}
int launcherHdmi(int)
{
    return launcherEvents += 10000;
}

struct BoxEvent
{
    int type;
    KVR_EventHandler launcher;
    KVR_EventHandler display; ///< what a display object installs
};

const BoxEvent boxEvents[] = {
    {137, launcherSync, KavroJS::syncdonecb}, {143, launcherOutput, nullptr}, {144, launcherHdmi, KavroJS::hdmicb}};

void registerLauncher()
{
    for (const BoxEvent &event : boxEvents)
        KVR_RegisterEventHandler(KVR_BOX, event.type, event.launcher);
    RecordingPlatform::takeCalls();
}

QByteArrayList lines(const char *text)
{
    return QByteArray(text).split('\n');
}

} // namespace

// How StbDisplay and StbPVR take the box's events over and give them back, and what they make of them.
class TestEventHandlers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void nothingWasThereBefore();
    void whatWasThereIsKeptAndGivenBack();
    void outputPortEventsReachNobodyMeanwhile();
    void aSecondObjectGivesBackTheFirstOnesHandlers();
    void theSingleObjectIsMadeOnFirstUseAndAgainAfterItsEnd();
    void recordingsHaveTheirCallback();
    void callbacksTellTheirCodes_data();
    void callbacksTellTheirCodes();
    void thePluginGivesBackWhatTheLauncherHad();
    void eventsOfTheBoxReachThePage();
};

void TestEventHandlers::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest()); // ends the program outside a box
}

void TestEventHandlers::init()
{
    RecordingPlatform::reset();
    RecordingPlatform::forgetHandlers();
    launcherEvents = 0;
}

void TestEventHandlers::nothingWasThereBefore()
{
    auto display = std::make_unique<StbDisplay>();
    QCOMPARE(RecordingPlatform::takeCalls(),
             lines("KVR_GetEventHandler(-128, 137)\n"
                   "KVR_RegisterEventHandler(-128, 137, handler)\n"
                   "KVR_GetEventHandler(-128, 143)\n"
                   "KVR_GetEventHandler(-128, 144)\n"
                   "KVR_RegisterEventHandler(-128, 144, handler)"));
    for (const BoxEvent &event : boxEvents)
        QVERIFY(KVR_GetEventHandler(KVR_BOX, event.type) == event.display);
    RecordingPlatform::takeCalls();
    display.reset();
    QCOMPARE(RecordingPlatform::takeCalls(),
             lines("KVR_DeleteEventHandler(-128, 137)\n"
                   "KVR_DeleteEventHandler(-128, 143)\n"
                   "KVR_DeleteEventHandler(-128, 144)"));
    for (const BoxEvent &event : boxEvents)
        QVERIFY(!KVR_GetEventHandler(KVR_BOX, event.type));
}

void TestEventHandlers::whatWasThereIsKeptAndGivenBack()
{
    registerLauncher();
    auto display = std::make_unique<StbDisplay>();
    QCOMPARE(RecordingPlatform::takeCalls(),
             lines("KVR_GetEventHandler(-128, 137)\n"
                   "KVR_DeleteEventHandler(-128, 137)\n"
                   "KVR_RegisterEventHandler(-128, 137, handler)\n"
                   "KVR_GetEventHandler(-128, 143)\n"
                   "KVR_DeleteEventHandler(-128, 143)\n"
                   "KVR_GetEventHandler(-128, 144)\n"
                   "KVR_DeleteEventHandler(-128, 144)\n"
                   "KVR_RegisterEventHandler(-128, 144, handler)"));
    for (const BoxEvent &event : boxEvents)
        QVERIFY(KVR_GetEventHandler(KVR_BOX, event.type) == event.display);
    RecordingPlatform::takeCalls();
    display.reset();
    QCOMPARE(RecordingPlatform::takeCalls(),
             lines("KVR_DeleteEventHandler(-128, 137)\n"
                   "KVR_RegisterEventHandler(-128, 137, handler)\n"
                   "KVR_DeleteEventHandler(-128, 143)\n"
                   "KVR_RegisterEventHandler(-128, 143, handler)\n"
                   "KVR_DeleteEventHandler(-128, 144)\n"
                   "KVR_RegisterEventHandler(-128, 144, handler)"));
    for (const BoxEvent &event : boxEvents)
        QVERIFY(KVR_GetEventHandler(KVR_BOX, event.type) == event.launcher);
}

void TestEventHandlers::outputPortEventsReachNobodyMeanwhile()
{
    registerLauncher();
    QSignalSpy told(EventNotifier::instance(), &EventNotifier::eventOccured);
    auto display = std::make_unique<StbDisplay>();
    RecordingPlatform::fireHere({KVR_BOX, 143, 1});
    QCOMPARE(told.size(), 0);
    QCOMPARE(launcherEvents.load(), 0);
    display.reset();
    RecordingPlatform::fireHere({KVR_BOX, 143, 1});
    QCOMPARE(launcherEvents.load(), 100);
}

void TestEventHandlers::aSecondObjectGivesBackTheFirstOnesHandlers()
{
    registerLauncher();
    auto first = std::make_unique<StbDisplay>();
    RecordingPlatform::takeCalls();
    auto second = std::make_unique<StbDisplay>();
    // Nobody had been installed for 143, so there is nothing to remove.
    QCOMPARE(RecordingPlatform::takeCalls(),
             lines("KVR_GetEventHandler(-128, 137)\n"
                   "KVR_DeleteEventHandler(-128, 137)\n"
                   "KVR_RegisterEventHandler(-128, 137, handler)\n"
                   "KVR_GetEventHandler(-128, 143)\n"
                   "KVR_GetEventHandler(-128, 144)\n"
                   "KVR_DeleteEventHandler(-128, 144)\n"
                   "KVR_RegisterEventHandler(-128, 144, handler)"));
    second.reset();
    QCOMPARE(RecordingPlatform::takeCalls(),
             lines("KVR_DeleteEventHandler(-128, 137)\n"
                   "KVR_RegisterEventHandler(-128, 137, handler)\n"
                   "KVR_DeleteEventHandler(-128, 143)\n"
                   "KVR_DeleteEventHandler(-128, 144)\n"
                   "KVR_RegisterEventHandler(-128, 144, handler)"));
    for (const BoxEvent &event : boxEvents)
        QVERIFY(KVR_GetEventHandler(KVR_BOX, event.type) == event.display);
    first.reset();
    for (const BoxEvent &event : boxEvents)
        QVERIFY(KVR_GetEventHandler(KVR_BOX, event.type) == event.launcher);
}

void TestEventHandlers::theSingleObjectIsMadeOnFirstUseAndAgainAfterItsEnd()
{
    QPointer<StbDisplay> display = StbDisplay::instance();
    QCOMPARE(StbDisplay::instance(), display.data());
    QVERIFY(!display->parent());
    StbDisplay::destroyInstance();
    QVERIFY(!display);
    StbDisplay::destroyInstance();
    QVERIFY(!KVR_GetEventHandler(KVR_BOX, 144));
    StbDisplay::instance();
    QVERIFY(KVR_GetEventHandler(KVR_BOX, 144));
    StbDisplay::destroyInstance();

    QPointer<StbPVR> pvr = StbPVR::instance();
    QCOMPARE(StbPVR::instance(), pvr.data());
    QVERIFY(!pvr->parent());
    StbPVR::destroyInstance();
    QVERIFY(!pvr);
    StbPVR::destroyInstance();
}

void TestEventHandlers::recordingsHaveTheirCallback()
{
    QSignalSpy told(EventNotifier::instance(), &EventNotifier::eventOccured);
    StbPVR::instance();
    QCOMPARE(RecordingPlatform::takeCalls(), lines("KVR_SetRecordsSharedCallback(handler)"));
    RecordingPlatform::fireHere({KVR_BOX, KVR_EVENT_RECORDS, 7});
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first(), QVariantList({7, 139}));
    StbPVR::destroyInstance();
    QCOMPARE(RecordingPlatform::takeCalls(), lines("KVR_CleanRecordsSharedCallback()"));
    RecordingPlatform::fireHere({KVR_BOX, KVR_EVENT_RECORDS, 8});
    QCOMPARE(told.size(), 1);
}

void TestEventHandlers::callbacksTellTheirCodes_data()
{
    QTest::addColumn<KVR_EventHandler>("callback");
    QTest::addColumn<int>("code");
    QTest::newRow("hdmicb") << KVR_EventHandler(KavroJS::hdmicb) << 144;
    QTest::newRow("syncdonecb") << KVR_EventHandler(KavroJS::syncdonecb) << 137;
    QTest::newRow("outportcb") << KVR_EventHandler(KavroJS::outportcb) << 129;
    QTest::newRow("pvr_clbk") << KVR_EventHandler(KavroJS::pvr_clbk) << 139;
}

void TestEventHandlers::callbacksTellTheirCodes()
{
    QFETCH(const KVR_EventHandler, callback);
    QFETCH(const int, code);
    for (const int argument : {0, 5, -128, INT_MAX, INT_MIN}) {
        QSignalSpy told(EventNotifier::instance(), &EventNotifier::eventOccured);
        QCOMPARE(callback(argument), 0);
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first(), QVariantList({argument, code}));
    }
}

void TestEventHandlers::thePluginGivesBackWhatTheLauncherHad()
{
    registerLauncher();
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    for (const BoxEvent &event : boxEvents)
        RecordingPlatform::fireHere({KVR_BOX, event.type, 0});
    QCOMPARE(launcherEvents.load(), 0);
    plugin.destroy();
    for (const BoxEvent &event : boxEvents)
        QVERIFY(KVR_GetEventHandler(KVR_BOX, event.type) == event.launcher);
    for (const BoxEvent &event : boxEvents)
        RecordingPlatform::fireHere({KVR_BOX, event.type, 0});
    QCOMPARE(launcherEvents.load(), 10101);
    QCOMPARE(RecordingPlatform::calls().count("KVR_CleanRecordsSharedCallback()"), 1);
}

void TestEventHandlers::eventsOfTheBoxReachThePage()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<script>var events = [];"
                            "StbMedia.eventCallback = function (argument, code) { events.push([argument, code]); };"
                            "</script>"));
    RecordingPlatform::fire(KVR_BOX, 144, 2);
    RecordingPlatform::fire(KVR_BOX, 143, 1); // of an output, for nobody
    RecordingPlatform::fire(KVR_BOX, 129, 1); // without a handler as well
    RecordingPlatform::fire(KVR_BOX, 137, -128);
    RecordingPlatform::fire(KVR_BOX, 139, 7);
    RecordingPlatform::waitUntilFired();
    QTRY_COMPARE(plugin.evaluateToJson("events"), QString("[[2,144],[-128,137],[7,139]]"));
}

QTEST_MAIN(TestEventHandlers)

#include "tst_eventhandlers.moc"
