// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/launcher/Program.h"

#include <QDir>
#include <QImage>
#include <QTest>
#include <functional>

namespace {

using Check = std::function<bool(const QImage &)>;

// The test card's clip: its size, and where a small white mark runs over its red and blue bars and all others.
constexpr QSize clipSize(960, 540);
constexpr int markLine = 300;
constexpr int markStep = 6; // pixels a frame
constexpr int framesPerSecond = 25;

// The picture's window on the screen, and the whole screen.
constexpr QRect window(864, 189, 960, 540);
constexpr QRect fullScreen(0, 0, 1920, 1080);

QColor colourAt(const QImage &screen, const QRect &video, int x, int y)
{
    return screen.pixelColor(video.x() + x * video.width() / clipSize.width(),
                             video.y() + y * video.height() / clipSize.height());
}

bool showsBars(const QImage &screen, const QRect &video)
{
    const QColor yellow = colourAt(screen, video, 270, 100);
    const QColor green = colourAt(screen, video, 470, 100);
    const QColor blue = colourAt(screen, video, 780, 100);
    return yellow.red() > 150 && yellow.green() > 150 && yellow.blue() < 60 && green.green() > 150 && green.red() < 60
        && blue.blue() > 120 && blue.green() < 60;
}

// How long the clip has played, modulo the time in which the mark crosses the picture, or -1 without a mark.
double secondsPlayed(const QImage &screen, const QRect &video)
{
    for (int x = 0; x < clipSize.width(); ++x) {
        const QColor colour = colourAt(screen, video, x, markLine);
        if (colour.red() > 230 && colour.green() > 230 && colour.blue() > 230)
            return double(x) / markStep / framesPerSecond;
    }
    return -1;
}

bool playsIn(const QImage &screen, const QRect &video)
{
    return showsBars(screen, video) && secondsPlayed(screen, video) > 0.5;
}

} // namespace

/// The portal on the desk box with real playback and real recording, as a user sees it.
class TestPortalOnBox : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theChannelMovesInTheWindow();
    void theChannelMovesOnTheFullScreen();
    void whatTheTimerRecordsIsListedAndPlays();

private:
    QImage screenAfter(const QString &keys, const Check &isExpected);

    QScopedPointer<QTemporaryDir> m_folder;
};

void TestPortalOnBox::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

// The screen of the desk box some time after keys were pressed on the portal. On a busy machine that takes longer.
QImage TestPortalOnBox::screenAfter(const QString &keys, const Check &isExpected)
{
    const QString picture = m_folder->filePath("screen.png");
    QImage screen;
    for (const char *seconds : {"3", "6", "16", "40"}) {
        Program box("bin/kavro-box");
        const int status = box.run({"--headless", "--box", m_folder->filePath("box"), "--screenshot", picture,
                                    "--exit-after", seconds, "--keys", keys});
        if (status != 0)
            qWarning("kavro-box ended with %d: %s", status, box.errors().constData());
        screen = QImage(picture);
        if (isExpected(screen))
            break;
    }
    return screen;
}

void TestPortalOnBox::theChannelMovesInTheWindow()
{
    const QImage screen = screenAfter("", [](const QImage &image) { return playsIn(image, window); });
    QCOMPARE(screen.size(), QSize(1920, 1080));
    QVERIFY(showsBars(screen, window));
    QVERIFY2(secondsPlayed(screen, window) > 0.5, qPrintable(QString::number(secondsPlayed(screen, window))));
    const QColor background(0x0b, 0x12, 0x22);
    for (const QPoint &beside : {QPoint(850, 400), QPoint(1860, 400), QPoint(1400, 170), QPoint(1000, 1060)})
        QCOMPARE(screen.pixelColor(beside), background);
}

void TestPortalOnBox::theChannelMovesOnTheFullScreen()
{
    const QImage screen =
        screenAfter("wait:500 Return", [](const QImage &image) { return playsIn(image, fullScreen); });
    QVERIFY(showsBars(screen, fullScreen));
    QVERIFY2(secondsPlayed(screen, fullScreen) > 0.5, qPrintable(QString::number(secondsPlayed(screen, fullScreen))));
    // The bar darkens the white field behind it.
    QVERIFY(screen.pixelColor(700, 850).lightness() < 90);
}

void TestPortalOnBox::whatTheTimerRecordsIsListedAndPlays()
{
    // Ten seconds of the first channel, now. The border of a finished recording's row is green.
    const QPoint border(100, 345);
    const QColor done(0x37, 0xd3, 0xbd);
    const QImage list = screenAfter("Down*3 Enter Enter Down*3 Left Up*3 Enter",
                                    [&](const QImage &image) { return image.pixelColor(border) == done; });
    QCOMPARE(list.pixelColor(border), done);
    // The boxes that were left too soon have recorded too, in part.
    const QDir folder(m_folder->filePath("box/mnt/stb"));
    const QFileInfoList files = folder.entryInfoList({"Test-card-*.ts"}, QDir::Files, QDir::Size);
    QVERIFY(!files.isEmpty());
    QVERIFY(files.first().size() > 100000);

    const QImage screen =
        screenAfter("Down*3 Enter Down Enter Enter", [](const QImage &image) { return playsIn(image, fullScreen); });
    QVERIFY(showsBars(screen, fullScreen));
    QVERIFY2(secondsPlayed(screen, fullScreen) > 0.5, qPrintable(QString::number(secondsPlayed(screen, fullScreen))));
}

QTEST_GUILESS_MAIN(TestPortalOnBox)
#include "tst_portalonbox.moc"
