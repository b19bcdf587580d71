// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/DeskBox.h"

#include <QList>
#include <QRect>
#include <QTest>

namespace {

QRect rectOf(const KVR_Rect &rect)
{
    return QRect(rect.x, rect.y, rect.width, rect.height);
}

QRect placeOf(KVR_ID id)
{
    for (const DeskBox::PlayerWindow &window : DeskBox::playerWindows()) {
        if (window.id == id)
            return rectOf(window.place);
    }
    return {};
}

QList<int> order()
{
    int *ids = nullptr;
    int count = 0;
    if (KVR_GetOrder(&ids, &count) != KVR_OK)
        return {-1};
    QList<int> result;
    for (int i = 0; i < count; ++i)
        result.append(ids[i]);
    free(ids);
    return result;
}

int setOrder(const QList<int> &ids)
{
    const std::vector<int> array(ids.begin(), ids.end());
    return KVR_SetOrder(array.data(), int(array.size()));
}

} // namespace

/// The desk box's graphics layer and the places of its players' windows.
class TestDeskGraphics : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void theLayerIsWhatWasSet();
    void wrongValuesAreRefusedAndChangeNothing();
    void aFullViewportStaysFull();
    void aWindowStandsWhereItWasPut_data();
    void aWindowStandsWhereItWasPut();
    void aNewWindowFillsTheScreenWhateverTheResolution();
    void wrongWindowsAreRefused();
    void theSecondLayoutTilesTheWindows();
    void theOrderIsFromTheBottomToTheTop();
    void wrongOrdersAreRefused();
    void unknownPlayersAreToldApart();
};

void TestDeskGraphics::cleanup()
{
    const auto players = order();
    for (const int id : players)
        KVR_ClosePlayer(id);
    KVR_SetCurrentLayout(0);
    KVR_SetResolution(1920, 1080);
    const KVR_Rect whole = {0, 0, 1920, 1080};
    KVR_SetGraphicsViewport(&whole);
}

void TestDeskGraphics::theLayerIsWhatWasSet()
{
    const KVR_Rect viewport = {10, 20, 300, 200};
    QCOMPARE(KVR_SetResolution(1280, 720), int(KVR_OK));
    QCOMPARE(KVR_SetGraphicsViewport(&viewport), int(KVR_OK));
    QCOMPARE(KVR_SetGraphicsAlphaLevel(77), int(KVR_OK));
    QCOMPARE(KVR_SetGraphicsVisible(0), int(KVR_OK));
    QCOMPARE(KVR_SetChromaKey({1, 2, 3, 4}), int(KVR_OK));
    QCOMPARE(KVR_SetChromaKeyEnable(5), int(KVR_OK));

    const DeskBox::GraphicsLayer layer = DeskBox::graphicsLayer();
    QCOMPARE(layer.width, 1280);
    QCOMPARE(layer.height, 720);
    QCOMPARE(rectOf(layer.viewport), QRect(10, 20, 300, 200));
    QCOMPARE(layer.alpha, 77);
    QVERIFY(!layer.visible);
    QVERIFY(layer.chromaKeyEnabled);

    KVR_Rect readViewport = {};
    KVR_Color color = {};
    QCOMPARE(KVR_GetGraphicsViewport(&readViewport), int(KVR_OK));
    QCOMPARE(rectOf(readViewport), rectOf(viewport));
    QCOMPARE(KVR_GetGraphicsAlphaLevel(), 77);
    QCOMPARE(KVR_IsGraphicsVisible(), 0);
    QCOMPARE(KVR_GetChromaKey(&color), int(KVR_OK));
    QCOMPARE(QList<int>({color.red, color.green, color.blue, color.alpha}), QList<int>({1, 2, 3, 4}));
    QCOMPARE(KVR_IsChromaKeyEnable(), 1);

    KVR_SetGraphicsAlphaLevel(255);
    KVR_SetGraphicsVisible(1);
    KVR_SetChromaKeyEnable(0);
    QCOMPARE(KVR_IsChromaKeyEnable(), 0);
}

void TestDeskGraphics::wrongValuesAreRefusedAndChangeNothing()
{
    const KVR_Rect empty = {0, 0, 0, 10};
    QCOMPARE(KVR_SetResolution(0, 720), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetResolution(1280, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetGraphicsViewport(&empty), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetGraphicsViewport(nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetGraphicsAlphaLevel(256), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetCurrentLayout(-1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetCurrentLayout(2), int(KVR_ERR_INVALID_ARGUMENT));
    const DeskBox::GraphicsLayer layer = DeskBox::graphicsLayer();
    QCOMPARE(layer.width, 1920);
    QCOMPARE(rectOf(layer.viewport), QRect(0, 0, 1920, 1080));
    QCOMPARE(layer.alpha, 255);
    QCOMPARE(KVR_GetCurrentLayout(), 0);
}

void TestDeskGraphics::aFullViewportStaysFull()
{
    KVR_SetResolution(1280, 720);
    QCOMPARE(rectOf(DeskBox::graphicsLayer().viewport), QRect(0, 0, 1280, 720));
    const KVR_Rect part = {0, 0, 640, 720};
    KVR_SetGraphicsViewport(&part);
    KVR_SetResolution(1920, 1080);
    QCOMPARE(rectOf(DeskBox::graphicsLayer().viewport), QRect(0, 0, 640, 720));
}

void TestDeskGraphics::aWindowStandsWhereItWasPut_data()
{
    QTest::addColumn<QSize>("resolution");
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QRect>("place");
    QTest::newRow("full resolution") << QSize(1920, 1080) << QRect(100, 50, 640, 360) << QRect(100, 50, 640, 360);
    QTest::newRow("scaled up") << QSize(1280, 720) << QRect(100, 50, 640, 360) << QRect(150, 75, 960, 540);
    QTest::newRow("too small to be seen") << QSize(7680, 4320) << QRect(0, 0, 1, 1) << QRect(0, 0, 1, 1);
    QTest::newRow("rounded") << QSize(720, 576) << QRect(1, 1, 100, 100) << QRect(3, 2, 266, 187);
    QTest::newRow("partly off screen") << QSize(1280, 720) << QRect(-64, -36, 128, 72) << QRect(-96, -54, 192, 108);
}

void TestDeskGraphics::aWindowStandsWhereItWasPut()
{
    QFETCH(QSize, resolution);
    QFETCH(QRect, window);
    KVR_SetResolution(resolution.width(), resolution.height());
    const KVR_ID id = KVR_CreatePlayer();
    const KVR_Rect rect = {window.x(), window.y(), window.width(), window.height()};
    QCOMPARE(KVR_SetPlayerViewPort(id, &rect), int(KVR_OK));
    QTEST(placeOf(id), "place");
    KVR_Rect read = {};
    QCOMPARE(KVR_GetPlayerViewPort(id, &read), int(KVR_OK));
    QCOMPARE(rectOf(read), window);
    KVR_SetResolution(1920, 1080);
    QCOMPARE(placeOf(id), window);
}

void TestDeskGraphics::aNewWindowFillsTheScreenWhateverTheResolution()
{
    const KVR_ID id = KVR_CreatePlayer();
    KVR_SetResolution(1280, 720);
    KVR_Rect read = {};
    QCOMPARE(KVR_GetPlayerViewPort(id, &read), int(KVR_OK));
    QCOMPARE(rectOf(read), QRect(0, 0, 1280, 720));
    QCOMPARE(placeOf(id), QRect(0, 0, 1920, 1080));
    QCOMPARE(KVR_IsPlayerVisible(id), 1);
    QCOMPARE(KVR_GetPlayerAlphaLevel(id), 255);
    QCOMPARE(KVR_GetPlayerDisplayMode(id), int(KVR_DISPLAY_LETTERBOX));
}

void TestDeskGraphics::wrongWindowsAreRefused()
{
    const KVR_ID id = KVR_CreatePlayer();
    for (const KVR_Rect &rect : {KVR_Rect{0, 0, 0, 10}, KVR_Rect{0, 0, 10, -1}, KVR_Rect{0, 0, 100000, 100000},
                                 KVR_Rect{0, 0, 3841, 10}, KVR_Rect{0, 0, 10, 2161}})
        QCOMPARE(KVR_SetPlayerViewPort(id, &rect), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetPlayerViewPort(id, nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetPlayerAlphaLevel(id, 256), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetPlayerAlphaLevel(id, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetPlayerDisplayMode(id, 3), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(placeOf(id), QRect(0, 0, 1920, 1080));
}

void TestDeskGraphics::theSecondLayoutTilesTheWindows()
{
    const KVR_ID first = KVR_CreatePlayer();
    const KVR_ID second = KVR_CreatePlayer();
    const KVR_ID third = KVR_CreatePlayer();
    QCOMPARE(KVR_SwitchToNextLayout(), 1);
    QCOMPARE(placeOf(first), QRect(0, 0, 960, 540));
    QCOMPARE(placeOf(second), QRect(960, 0, 960, 540));
    QCOMPARE(placeOf(third), QRect(0, 540, 960, 540));
    KVR_ClosePlayer(second);
    QCOMPARE(placeOf(third), QRect(960, 0, 960, 540));
    QCOMPARE(KVR_SwitchToNextLayout(), 0);
    QCOMPARE(placeOf(first), QRect(0, 0, 1920, 1080));
}

void TestDeskGraphics::theOrderIsFromTheBottomToTheTop()
{
    const KVR_ID a = KVR_CreatePlayer();
    const KVR_ID b = KVR_CreatePlayer();
    const KVR_ID c = KVR_CreatePlayer();
    QCOMPARE(KVR_GetPlayersCount(), 3);
    QCOMPARE(order(), QList<int>({a, b, c}));
    QCOMPARE(setOrder({b, a}), int(KVR_OK));
    QCOMPARE(order(), QList<int>({c, b, a}));
    const auto windows = DeskBox::playerWindows();
    QCOMPARE(windows.front().id, c);
    QCOMPARE(windows.back().id, a);
    QCOMPARE(KVR_SetOrder(nullptr, 0), int(KVR_OK));
    QCOMPARE(order(), QList<int>({c, b, a}));
}

void TestDeskGraphics::wrongOrdersAreRefused()
{
    const KVR_ID a = KVR_CreatePlayer();
    const KVR_ID b = KVR_CreatePlayer();
    QCOMPARE(setOrder({b, b}), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(setOrder({b, 12345}), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetOrder(nullptr, 1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetOrder(&a, -1), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(order(), QList<int>({a, b}));
}

void TestDeskGraphics::unknownPlayersAreToldApart()
{
    const KVR_ID id = KVR_CreatePlayer();
    QVERIFY(id > 0);
    QCOMPARE(KVR_ClosePlayer(id), int(KVR_OK));
    QVERIFY(KVR_CreatePlayer() != id);

    KVR_Rect rect = {0, 0, 10, 10};
    KVR_MulticastEvent multicast = {};
    KVR_Track *tracks = nullptr;
    int count = 0;
    QCOMPARE(KVR_ClosePlayer(id), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetPlayerState(id), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_PlayStream(id, "udp://127.0.0.1:1", -1, -1, -1), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_Stop(id), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetPosition(id), qint64(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetZoom(id), double(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetVideoTrackList(id, &tracks, &count), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetLastMulticastEvent(id, &multicast), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_SetPlayerViewPort(id, &rect), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_GetPlayerViewPort(id, &rect), int(KVR_ERR_INVALID_ID));
    QCOMPARE(KVR_SetVolume(-1, 5), int(KVR_ERR_INVALID_ID));
}

QTEST_GUILESS_MAIN(TestDeskGraphics)
#include "tst_deskgraphics.moc"
