// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"

#include "platform/desktop/DeskBox.h"

#include <QTest>

#include <atomic>
#include <future>
#include <thread>

namespace {

constexpr KVR_ID player = 7;
constexpr int burst = 500;

std::atomic<int> calls{0};

int countCall(int)
{
    return ++calls;
}

int ignoreCall(int)
{
    return 0;
}

} // namespace

using Change = int (*)(KVR_ID);
Q_DECLARE_METATYPE(Change)

/// The desk box's delivery of events.
class TestDeskEvents : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void eventsArriveInTheirOrderOnOneThreadOfTheLibrary();
    void aHandlerIsNeverCalledFromInsideACall();
    void aSecondRegistrationReplacesTheFirst();
    void anEndedRegistrationGetsNothing();
    void registrationsOfAPlayerEndWithIt();
    void wrongRegistrationsAreRefused();
    void aHandlerMayCallTheLibrary();
    void theScreenHandlerHearsOfEachChange_data();
    void theScreenHandlerHearsOfEachChange();
    void theScreenHandlerHearsNothingWhenItIsTakenAway();
    void theScreenHandlerIsTakenAwayWhenItsCallHasEnded();
};

void TestDeskEvents::init()
{
    calls = 0;
}

void TestDeskEvents::eventsArriveInTheirOrderOnOneThreadOfTheLibrary()
{
    const DeskEvents events(player);
    for (int i = 0; i < burst; ++i)
        DeskBox::injectEvent(player, i % 2 ? KVR_EVENT_AUDIO : KVR_EVENT_POSITION, i);
    QTRY_COMPARE(DeskEvents::all().size(), burst);

    const auto all = DeskEvents::all();
    for (int i = 0; i < burst; ++i) {
        QCOMPARE(all[i].argument, i);
        QCOMPARE(all[i].type, int(i % 2 ? KVR_EVENT_AUDIO : KVR_EVENT_POSITION));
        QVERIFY(all[i].thread == all[0].thread);
        QVERIFY(all[i].thread != std::this_thread::get_id());
    }
}

void TestDeskEvents::aHandlerIsNeverCalledFromInsideACall()
{
    const KVR_ID id = KVR_CreatePlayer();
    {
        const DeskEvents events(id);
        for (int i = 0; i < burst; ++i)
            KVR_SetVolume(id, i % 2 ? 30 : 40);
        QTRY_COMPARE(DeskEvents::count(KVR_EVENT_VOLUME), burst);
        const QList<DeskEvents::Event> all = DeskEvents::all();
        for (const DeskEvents::Event &event : all)
            QVERIFY(event.thread != std::this_thread::get_id());
    }
    QCOMPARE(KVR_ClosePlayer(id), int(KVR_OK));
}

void TestDeskEvents::aSecondRegistrationReplacesTheFirst()
{
    QCOMPARE(KVR_RegisterEventHandler(player, KVR_EVENT_STATE, ignoreCall), int(KVR_OK));
    QCOMPARE(KVR_RegisterEventHandler(player, KVR_EVENT_STATE, countCall), int(KVR_OK));
    QVERIFY(KVR_GetEventHandler(player, KVR_EVENT_STATE) == countCall);
    DeskBox::injectEvent(player, KVR_EVENT_STATE, player);
    QTRY_COMPARE(calls.load(), 1);
    QCOMPARE(KVR_DeleteEventHandler(player, KVR_EVENT_STATE), int(KVR_OK));
}

void TestDeskEvents::anEndedRegistrationGetsNothing()
{
    KVR_RegisterEventHandler(player, KVR_EVENT_STATE, countCall);
    QCOMPARE(KVR_DeleteEventHandler(player, KVR_EVENT_STATE), int(KVR_OK));
    QVERIFY(!KVR_GetEventHandler(player, KVR_EVENT_STATE));
    DeskBox::injectEvent(player, KVR_EVENT_STATE, player);

    // Events come in order: when the second one is here, the first one has gone by.
    const DeskEvents events(player);
    DeskBox::injectEvent(player, KVR_EVENT_MUTE, player);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_MUTE), 1);
    QCOMPARE(calls.load(), 0);
}

void TestDeskEvents::registrationsOfAPlayerEndWithIt()
{
    const KVR_ID id = KVR_CreatePlayer();
    KVR_RegisterEventHandler(id, KVR_EVENT_STATE, countCall);
    KVR_RegisterEventHandler(id, KVR_EVENT_TELETEXT_PAGE, countCall);
    KVR_ClosePlayer(id);
    QVERIFY(!KVR_GetEventHandler(id, KVR_EVENT_STATE));
    QVERIFY(!KVR_GetEventHandler(id, KVR_EVENT_TELETEXT_PAGE));
}

void TestDeskEvents::wrongRegistrationsAreRefused()
{
    QCOMPARE(KVR_RegisterEventHandler(player, KVR_EVENT_STATE, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_DeleteEventHandler(player, KVR_EVENT_STATE), int(KVR_ERR_FAILED));
}

void TestDeskEvents::aHandlerMayCallTheLibrary()
{
    const KVR_ID id = KVR_CreatePlayer();
    const DeskEvents events(id);
    static KVR_ID closed;
    closed = id;
    DeskEvents::setReaction([](int) { KVR_ClosePlayer(closed); });
    KVR_SetMute(id, 1);
    QTRY_COMPARE(KVR_GetPlayerState(id), int(KVR_ERR_INVALID_ID));
}

void TestDeskEvents::theScreenHandlerHearsOfEachChange_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, Change change) { QTest::newRow(name) << change; };
    row("layer's alpha", [](KVR_ID) { return KVR_SetGraphicsAlphaLevel(100); });
    row("layer's visibility", [](KVR_ID) { return KVR_SetGraphicsVisible(0); });
    row("layer's colour key", [](KVR_ID) { return KVR_SetChromaKey({1, 2, 3, 255}); });
    row("use of the colour key", [](KVR_ID) { return KVR_SetChromaKeyEnable(1); });
    row("resolution", [](KVR_ID) { return KVR_SetResolution(1280, 720); });
    row("viewport", [](KVR_ID) {
        const KVR_Rect viewport = {0, 0, 100, 100};
        return KVR_SetGraphicsViewport(&viewport);
    });
    row("layout", [](KVR_ID) { return KVR_SetCurrentLayout(1); });
    row("order", [](KVR_ID id) { return KVR_SetOrder(&id, 1); });
    row("player's alpha", [](KVR_ID id) { return KVR_SetPlayerAlphaLevel(id, 100); });
    row("player's visibility", [](KVR_ID id) { return KVR_SetPlayerVisible(id, 0); });
    row("player's window", [](KVR_ID id) {
        const KVR_Rect window = {0, 0, 100, 100};
        return KVR_SetPlayerViewPort(id, &window);
    });
    row("player's end", KVR_ClosePlayer);
}

void TestDeskEvents::theScreenHandlerHearsOfEachChange()
{
    QFETCH(Change, change);
    const KVR_ID id = KVR_CreatePlayer();
    DeskBox::setScreenHandler([] { ++calls; });
    QCOMPARE(change(id), int(KVR_OK));
    DeskBox::setScreenHandler({});
    QVERIFY(calls > 0);

    KVR_ClosePlayer(id);
    KVR_SetGraphicsAlphaLevel(255);
    KVR_SetGraphicsVisible(1);
    KVR_SetChromaKeyEnable(0);
    KVR_SetCurrentLayout(0);
}

void TestDeskEvents::theScreenHandlerHearsNothingWhenItIsTakenAway()
{
    DeskBox::setScreenHandler([] { ++calls; });
    KVR_SetGraphicsAlphaLevel(100);
    QCOMPARE(calls.load(), 1);
    KVR_SetGraphicsAlphaLevel(255);
    QCOMPARE(calls.load(), 2);
    DeskBox::setScreenHandler({});
    KVR_SetGraphicsVisible(1);
    QCOMPARE(calls.load(), 2);
}

void TestDeskEvents::theScreenHandlerIsTakenAwayWhenItsCallHasEnded()
{
    std::promise<void> mayEnd;
    bool hasEnded = false;
    DeskBox::setScreenHandler([&] {
        if (++calls > 1)
            return;
        mayEnd.get_future().wait();
        hasEnded = true;
    });
    std::thread caller([] { KVR_SetGraphicsVisible(1); });
    QTRY_COMPARE(calls.load(), 1);
    bool hadEnded = false;
    std::thread remover([&] {
        DeskBox::setScreenHandler({});
        hadEnded = hasEnded;
    });
    // Changes are heard of no longer, but the call goes on.
    const auto isHeard = [] {
        const int before = calls;
        KVR_SetGraphicsVisible(1);
        return calls != before;
    };
    QTRY_VERIFY(!isHeard());
    mayEnd.set_value();
    remover.join();
    caller.join();
    QVERIFY(hadEnded);
}

QTEST_GUILESS_MAIN(TestDeskEvents)
#include "tst_deskevents.moc"
