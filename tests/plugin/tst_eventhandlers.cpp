// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HostedPlugin.h"

#include "browser/bridge/EventNotifier.h"
#include "jsapi/DisplayCallbacks.h"
#include "jsapi/PlayerCallbacks.h"
#include "jsapi/StbDisplay.h"
#include "jsapi/StbMedia.h"
#include "jsapi/StbPVR.h"
#include "jsapi/deprecated/DeprecatedCallbacks.h"
#include "jsapi/deprecated/stb_media.h"
#include "shell/CStbApplication.h"

#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <climits>
#include <memory>

Q_DECLARE_METATYPE(KVR_EventHandler)

using KavroJS::StbDisplay;
using KavroJS::StbMedia;
using KavroJS::StbPVR;
using KavroJSDeprecated::stb_media;

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

// In the place of the older object's callback is null where that object registers none.
struct PlayerEvent
{
    const char *name;
    int type;
    KVR_EventHandler callback;
    KVR_EventHandler older;
};

const PlayerEvent playerEvents[] = {
    {"statcb", 1, KavroJS::statcb, KavroJSDeprecated::statcb},
    {"metacb", 2, KavroJS::metacb, KavroJSDeprecated::metacb},
    {"poscb", 3, KavroJS::poscb, KavroJSDeprecated::poscb},
    {"audcb", 4, KavroJS::audcb, KavroJSDeprecated::audcb},
    {"vidcb", 5, KavroJS::vidcb, KavroJSDeprecated::vidcb},
    {"subcb", 6, KavroJS::subcb, KavroJSDeprecated::subcb},
    {"volcb", 7, KavroJS::volcb, KavroJSDeprecated::volcb},
    {"zoomcb", 8, KavroJS::zoomcb, KavroJSDeprecated::zoomcb},
    {"mutecb", 9, KavroJS::mutecb, KavroJSDeprecated::mutecb},
    {"multcb", 11, KavroJS::multcb, KavroJSDeprecated::multcb},
    {"telxpidcb", 14, KavroJS::telxpidcb, nullptr},
    {"telxpagecb", 15, KavroJS::telxpagecb, nullptr},
};

// What is registered for a player, by type.
QMap<int, KVR_EventHandler> handlersOf(KVR_ID id)
{
    QMap<int, KVR_EventHandler> handlers;
    for (int type = 0; type < 256; ++type) {
        if (const KVR_EventHandler handler = KVR_GetEventHandler(id, type))
            handlers[type] = handler;
    }
    return handlers;
}

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
    void playersHaveTheCallbacksOfTheirObject();
    void callbacksTellTheirCodes_data();
    void callbacksTellTheirCodes();
    void noTwoCallbacksAreTheSameFunction();
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

void TestEventHandlers::playersHaveTheCallbacksOfTheirObject()
{
    QMap<int, KVR_EventHandler> expected;
    QMap<int, KVR_EventHandler> expectedOlder;
    for (const PlayerEvent &event : playerEvents) {
        expected[event.type] = event.callback;
        if (event.older)
            expectedOlder[event.type] = event.older;
    }
    StbMedia *const media = StbMedia::instance();
    stb_media older;
    QVERIFY(handlersOf(media->CreatePlayer()) == expected);
    QVERIFY(handlersOf(older.CreatePlayer()) == expectedOlder);
    QVERIFY(handlersOf(media->CreatePlayer()) == expected);
    StbMedia::destroyInstance();
}

void TestEventHandlers::callbacksTellTheirCodes_data()
{
    QTest::addColumn<KVR_EventHandler>("callback");
    QTest::addColumn<int>("code");
    for (const PlayerEvent &event : playerEvents) {
        QTest::addRow("KavroJS::%s", event.name) << event.callback << event.type;
        if (event.older)
            QTest::addRow("KavroJSDeprecated::%s", event.name) << event.older << event.type;
    }
    QTest::newRow("hdmicb") << KVR_EventHandler(KavroJS::hdmicb) << 144;
    QTest::newRow("syncdonecb") << KVR_EventHandler(KavroJS::syncdonecb) << 137;
    QTest::newRow("KavroJS::outportcb") << KVR_EventHandler(KavroJS::outportcb) << 129;
    QTest::newRow("KavroJSDeprecated::outportcb") << KVR_EventHandler(KavroJSDeprecated::outportcb) << 129;
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

// A platform library, and a technician who debugs one, tell by the address whose event it is.
void TestEventHandlers::noTwoCallbacksAreTheSameFunction()
{
    QList<KVR_EventHandler> callbacks = {KavroJS::hdmicb, KavroJS::syncdonecb, KavroJS::outportcb, KavroJS::pvr_clbk,
                                         KavroJSDeprecated::outportcb};
    for (const PlayerEvent &event : playerEvents) {
        callbacks += event.callback;
        if (event.older)
            callbacks += event.older;
    }
    QCOMPARE(callbacks.size(), 27);
    for (const KVR_EventHandler callback : std::as_const(callbacks))
        QCOMPARE(callbacks.count(callback), 1);
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
