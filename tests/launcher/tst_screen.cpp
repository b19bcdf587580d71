// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/PlayerItem.h"
#include "launcher/Screen.h"
#include "launcher/ScreenWindow.h"

#include "platform/stbapi.h"

#include <QDialog>
#include <QGraphicsProxyWidget>
#include <QPainter>
#include <QPointer>
#include <QTest>

#include <algorithm>

namespace {

constexpr Qt::GlobalColor leftColor = Qt::red;
constexpr Qt::GlobalColor rightColor = Qt::blue;

// What the plugin's widget is to the screen: see-through but for two coloured halves of its page.
class Page : public QWidget
{
public:
    explicit Page(const QSize &page)
        : m_page(page)
    {
        setFixedSize(Screen::screenWidth, Screen::screenHeight);
        setAttribute(Qt::WA_TranslucentBackground);
    }

    int paintings = 0;
    QColor left = leftColor;

protected:
    void paintEvent(QPaintEvent *) override
    {
        ++paintings;
        QPainter painter(this);
        const int half = m_page.width() / 2;
        painter.fillRect(0, 0, half, m_page.height(), left);
        painter.fillRect(half, 0, half, m_page.height(), rightColor);
    }

private:
    QSize m_page;
};

struct Spot
{
    QPoint place; ///< on the screen
    QColor color;
};

} // namespace

/// The picture that the desk box composes.
class TestScreen : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theLayerFillsTheScreen_data();
    void theLayerFillsTheScreen();
    void nothingIsDrawnOutsideTheViewport();
    void alphaMixesTheLayerWithTheVideo_data();
    void alphaMixesTheLayerWithTheVideo();
    void anInvisibleLayerIsNotDrawnButItsWidgetLives();
    void theChromaKeyMakesExactlyOneColourTransparent_data();
    void theChromaKeyMakesExactlyOneColourTransparent();
    void anotherChromaKeyIsTakenAtOnce();
    void theChromaKeyIsThatOfThePageAsItIs();
    void aChangeOfTheLayerReachesTheScreenByItself();
    void videoDoesNotRepaintThePage();
    void aFrameIsShownInItsWindow();
    void aChangeOfAWindowIsPainted_data();
    void aChangeOfAWindowIsPainted();
    void theWindowOfAClosedPlayerGoes();
    void aDialogStandsInTheMiddleOfItsPage();
    void keysReturnToTheWidgetWhoseDialogItWas();
    void theScreenOutlivesThePlugin();
    void theWindowShowsTheSamePicture();
    void theWindowKeepsTheShapeOfTheScreen();
};

namespace {

bool isAbout(const QColor &color, const QColor &expected)
{
    return qAbs(color.red() - expected.red()) <= 2 && qAbs(color.green() - expected.green()) <= 2
        && qAbs(color.blue() - expected.blue()) <= 2;
}

void verifySpots(const QImage &picture, const QList<Spot> &spots)
{
    for (const Spot &spot : spots) {
        const QColor color = picture.pixelColor(spot.place);
        const auto message = QString("%1,%2 is %3").arg(spot.place.x()).arg(spot.place.y()).arg(color.name());
        QVERIFY2(color == spot.color, qPrintable(message));
    }
}

} // namespace

void TestScreen::init()
{
    KVR_SetResolution(1280, 720);
    const KVR_Rect all = {0, 0, 1280, 720};
    KVR_SetGraphicsViewport(&all);
    KVR_SetGraphicsAlphaLevel(255);
    KVR_SetGraphicsVisible(1);
    KVR_SetChromaKeyEnable(0);
}

void TestScreen::theLayerFillsTheScreen_data()
{
    QTest::addColumn<QSize>("resolution");
    QTest::newRow("as the screen") << QSize(1920, 1080);
    QTest::newRow("HD") << QSize(1280, 720);
    QTest::newRow("SD, another shape") << QSize(720, 576);
    QTest::newRow("an odd one") << QSize(1024, 577);
}

void TestScreen::theLayerFillsTheScreen()
{
    QFETCH(QSize, resolution);
    KVR_SetResolution(resolution.width(), resolution.height());
    const KVR_Rect all = {0, 0, resolution.width(), resolution.height()};
    KVR_SetGraphicsViewport(&all);
    Screen screen;
    screen.setPlugin(new Page(resolution));
    const QImage picture = screen.picture();
    QCOMPARE(picture.size(), QSize(1920, 1080));
    verifySpots(picture,
                {{{0, 0}, leftColor},
                 {{0, 1079}, leftColor},
                 {{955, 500}, leftColor},
                 {{964, 500}, rightColor},
                 {{1919, 0}, rightColor},
                 {{1919, 1079}, rightColor}});
}

void TestScreen::nothingIsDrawnOutsideTheViewport()
{
    const KVR_Rect part = {200, 100, 600, 400};
    KVR_SetGraphicsViewport(&part);
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    verifySpots(screen.picture(),
                {{{299, 300}, Qt::black},
                 {{300, 300}, leftColor},
                 {{600, 149}, Qt::black},
                 {{600, 150}, leftColor},
                 {{1199, 300}, rightColor},
                 {{1200, 300}, Qt::black},
                 {{600, 749}, leftColor},
                 {{600, 750}, Qt::black}});
}

void TestScreen::alphaMixesTheLayerWithTheVideo_data()
{
    QTest::addColumn<int>("alpha");
    for (const int alpha : {0, 1, 128, 254, 255})
        QTest::addRow("%d", alpha) << alpha;
}

void TestScreen::alphaMixesTheLayerWithTheVideo()
{
    QFETCH(int, alpha);
    KVR_SetGraphicsAlphaLevel(unsigned(alpha));
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    const QColor mixed = screen.picture().pixelColor(100, 100);
    QVERIFY2(qAbs(mixed.red() - alpha) <= 1, qPrintable(mixed.name()));
    QCOMPARE(mixed.green(), 0);
}

void TestScreen::anInvisibleLayerIsNotDrawnButItsWidgetLives()
{
    Screen screen;
    auto *page = new Page({1280, 720});
    screen.setPlugin(page);
    QVERIFY(page->isVisible());
    KVR_SetGraphicsVisible(0);
    verifySpots(screen.picture(), {{{100, 100}, Qt::black}});
    QVERIFY(page->isVisible());
    KVR_SetGraphicsVisible(1);
    verifySpots(screen.picture(), {{{100, 100}, leftColor}});
}

void TestScreen::theChromaKeyMakesExactlyOneColourTransparent_data()
{
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<QColor>("key");
    QTest::addColumn<QColor>("shownLeft");
    QTest::addColumn<QColor>("shownRight");
    QTest::newRow("red") << true << QColor(255, 0, 0) << QColor(Qt::black) << QColor(rightColor);
    QTest::newRow("red, other alpha") << true << QColor(255, 0, 0, 7) << QColor(Qt::black) << QColor(rightColor);
    QTest::newRow("blue") << true << QColor(0, 0, 255) << QColor(leftColor) << QColor(Qt::black);
    QTest::newRow("almost red") << true << QColor(254, 0, 0) << QColor(leftColor) << QColor(rightColor);
    QTest::newRow("switched off") << false << QColor(255, 0, 0) << QColor(leftColor) << QColor(rightColor);
}

void TestScreen::theChromaKeyMakesExactlyOneColourTransparent()
{
    QFETCH(bool, isEnabled);
    QFETCH(QColor, key);
    QFETCH(QColor, shownLeft);
    QFETCH(QColor, shownRight);
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    verifySpots(screen.picture(), {{{100, 100}, leftColor}});
    KVR_SetChromaKey({quint8(key.red()), quint8(key.green()), quint8(key.blue()), quint8(key.alpha())});
    KVR_SetChromaKeyEnable(isEnabled);
    verifySpots(
        screen.picture(),
        {{{100, 100}, shownLeft}, {{955, 500}, shownLeft}, {{964, 500}, shownRight}, {{1919, 1079}, shownRight}});
    KVR_SetChromaKeyEnable(0);
    verifySpots(screen.picture(), {{{100, 100}, leftColor}, {{1800, 100}, rightColor}});
}

void TestScreen::anotherChromaKeyIsTakenAtOnce()
{
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    KVR_SetChromaKeyEnable(1);
    KVR_SetChromaKey({255, 0, 0, 255});
    verifySpots(screen.picture(), {{{100, 100}, Qt::black}, {{1800, 100}, rightColor}});
    KVR_SetChromaKey({0, 0, 255, 255});
    verifySpots(screen.picture(), {{{100, 100}, leftColor}, {{1800, 100}, Qt::black}});
}

void TestScreen::theChromaKeyIsThatOfThePageAsItIs()
{
    Screen screen;
    auto *page = new Page({1280, 720});
    screen.setPlugin(page);
    KVR_SetChromaKeyEnable(1);
    KVR_SetChromaKey({255, 0, 0, 255});
    verifySpots(screen.picture(), {{{100, 100}, Qt::black}});
    page->left = Qt::green;
    page->update();
    QTRY_COMPARE(screen.picture().pixelColor(100, 100), QColor(Qt::green));
    page->left = leftColor;
    page->update();
    QTRY_COMPARE(screen.picture().pixelColor(100, 100), QColor(Qt::black));
}

void TestScreen::aChangeOfTheLayerReachesTheScreenByItself()
{
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    ScreenWindow window(&screen, {960, 540});
    window.show();
    QTRY_COMPARE(window.grab().toImage().pixelColor(100, 100), QColor(leftColor));
    KVR_SetGraphicsAlphaLevel(0);
    QTRY_COMPARE(window.grab().toImage().pixelColor(100, 100), QColor(Qt::black));
    KVR_SetGraphicsAlphaLevel(255);
    QTRY_COMPARE(window.grab().toImage().pixelColor(100, 100), QColor(leftColor));
}

void TestScreen::videoDoesNotRepaintThePage()
{
    Screen screen;
    auto *page = new Page({1280, 720});
    screen.setPlugin(page);
    PlayerItem video;
    screen.addItem(&video);
    DeskBox::PlayerWindow place;
    place.place = {0, 0, 1920, 1080};
    const auto showFrame = [&] {
        auto frame = std::make_shared<DeskBox::Frame>();
        *frame = {16, 16, 64, std::vector<std::uint8_t>(1024)};
        place.frame = frame;
        video.setWindow(place);
    };
    showFrame();
    screen.picture();
    const int paintings = page->paintings;
    QVERIFY(paintings > 0);
    for (int i = 0; i < 5; ++i) {
        showFrame();
        screen.picture();
    }
    QCOMPARE(page->paintings, paintings);
    page->update();
    QTRY_VERIFY(screen.picture().isNull() || page->paintings > paintings);
}

void TestScreen::aFrameIsShownInItsWindow()
{
    auto frame = std::make_shared<DeskBox::Frame>();
    *frame = {2, 1, 12, {1, 2, 3, 0, 4, 5, 6, 0, 9, 9, 9, 9}}; // the last four are not shown
    DeskBox::PlayerWindow window;
    window.place = {100, 50, 2, 1};
    window.frame = frame;
    QGraphicsScene scene(0, 0, 200, 100);
    scene.setBackgroundBrush(Qt::white);
    auto *item = new PlayerItem;
    scene.addItem(item);
    const auto render = [&scene] {
        QImage image(200, 100, QImage::Format_RGB32);
        QPainter painter(&image);
        scene.render(&painter, image.rect(), image.rect());
        return image;
    };
    item->setWindow(window);
    verifySpots(render(),
                {{{99, 50}, Qt::white},
                 {{100, 50}, QColor(3, 2, 1)},
                 {{101, 50}, QColor(6, 5, 4)},
                 {{102, 50}, Qt::white},
                 {{100, 51}, Qt::white}});
    window.alpha = 0;
    item->setWindow(window);
    verifySpots(render(), {{{100, 50}, Qt::white}});
    window.alpha = 128;
    item->setWindow(window);
    QVERIFY2(isAbout(render().pixelColor(100, 50), QColor(128, 128, 127)),
             qPrintable(render().pixelColor(100, 50).name()));
    window.alpha = 255;
    window.visible = false;
    item->setWindow(window);
    verifySpots(render(), {{{100, 50}, Qt::white}});
    window.visible = true;
    window.place = {10, 10, 4, 2};
    item->setWindow(window);
    verifySpots(render(), {{{100, 50}, Qt::white}, {{10, 11}, QColor(3, 2, 1)}, {{13, 10}, QColor(6, 5, 4)}});
}

void TestScreen::aChangeOfAWindowIsPainted_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<bool>("isNewFrame");
    QTest::addColumn<bool>("isPainted");
    QTest::newRow("another frame") << QRect(10, 10, 40, 20) << true << true;
    QTest::newRow("smaller") << QRect(10, 10, 20, 10) << false << true;
    QTest::newRow("elsewhere") << QRect(50, 50, 40, 20) << false << true;
    QTest::newRow("none") << QRect(10, 10, 40, 20) << false << false;
}

void TestScreen::aChangeOfAWindowIsPainted()
{
    QFETCH(QRect, place);
    QFETCH(bool, isNewFrame);
    QFETCH(bool, isPainted);
    const auto frame = [] {
        auto made = std::make_shared<DeskBox::Frame>();
        *made = {1, 1, 4, {1, 2, 3, 0}};
        return made;
    };
    QGraphicsScene scene(0, 0, 200, 100);
    auto *item = new PlayerItem;
    scene.addItem(item);
    DeskBox::PlayerWindow window;
    window.place = {10, 10, 40, 20};
    window.frame = frame();
    item->setWindow(window);
    QRegion painted;
    connect(&scene, &QGraphicsScene::changed, this, [&painted](const QList<QRectF> &parts) {
        for (const QRectF &part : parts)
            painted += part.toAlignedRect();
    });
    QTRY_VERIFY(painted.contains(QRect(10, 10, 40, 20)));

    painted = QRegion();
    window.place = {place.x(), place.y(), place.width(), place.height()};
    if (isNewFrame)
        window.frame = frame();
    item->setWindow(window);
    // What comes after it.
    const QRect corner(199, 99, 1, 1);
    scene.update(corner);
    QTRY_VERIFY(painted.contains(corner));
    QCOMPARE(painted.contains(QRect(10, 10, 40, 20)), isPainted);
}

void TestScreen::theWindowOfAClosedPlayerGoes()
{
    Screen screen;
    const auto windows = [&screen] {
        const QList<QGraphicsItem *> items = screen.items();
        return std::count_if(items.begin(), items.end(), [](const QGraphicsItem *item) {
            return dynamic_cast<const PlayerItem *>(item) != nullptr;
        });
    };
    const KVR_ID one = KVR_CreatePlayer();
    const KVR_ID other = KVR_CreatePlayer();
    QTRY_COMPARE(windows(), 2);
    KVR_ClosePlayer(one);
    QTRY_COMPARE(windows(), 1);
    KVR_ClosePlayer(other);
    QTRY_COMPARE(windows(), 0);
}

void TestScreen::aDialogStandsInTheMiddleOfItsPage()
{
    Screen screen;
    auto *page = new Page({1280, 720});
    screen.setPlugin(page);
    QDialog dialog(page);
    dialog.resize(200, 100);
    dialog.show();
    QVERIFY(dialog.graphicsProxyWidget());
    QTRY_COMPARE(dialog.graphicsProxyWidget()->pos(), QPointF(page->rect().center() - dialog.rect().center()));
}

void TestScreen::keysReturnToTheWidgetWhoseDialogItWas()
{
    Screen screen;
    auto *page = new Page({1280, 720});
    auto *view = new QWidget(page);
    auto *other = new QWidget(page);
    for (QWidget *widget : {view, other})
        widget->setFocusPolicy(Qt::StrongFocus);
    screen.setPlugin(page);
    ScreenWindow window(&screen, {960, 540});
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    QTRY_VERIFY(other->hasFocus());
    QDialog dialog(view);
    dialog.show();
    dialog.setFocus();
    QTRY_VERIFY(dialog.hasFocus());
    dialog.hide();
    QTRY_VERIFY(view->hasFocus());
}

void TestScreen::theScreenOutlivesThePlugin()
{
    Screen screen;
    ScreenWindow window(&screen, {960, 540});
    auto *page = new Page({1280, 720});
    screen.setPlugin(page);
    window.show();
    QTRY_VERIFY(page->paintings > 0);
    delete page;
    KVR_SetResolution(1920, 1080); // as the plugin does at its end
    QCoreApplication::processEvents();
    verifySpots(screen.picture(), {{{100, 100}, Qt::black}});
}

void TestScreen::theWindowShowsTheSamePicture()
{
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    ScreenWindow window(&screen, {1920, 1080});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.grab().toImage().convertToFormat(QImage::Format_RGB32), screen.picture());
}

void TestScreen::theWindowKeepsTheShapeOfTheScreen()
{
    Screen screen;
    screen.setPlugin(new Page({1280, 720}));
    ScreenWindow window(&screen, {640, 480});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    // 640 x 360 in the middle.
    verifySpots(window.grab().toImage(),
                {{{100, 55}, Qt::black}, {{100, 65}, leftColor}, {{100, 415}, leftColor}, {{100, 425}, Qt::black}});
}

QTEST_MAIN(TestScreen)

#include "tst_screen.moc"
