// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "tests/desktop/PlayerPicture.h"
#include "tests/desktop/TestMedia.h"

#include <QDir>
#include <QTest>

namespace {

const QColor videoColor(0x20, 0x40, 0xc0);
const QColor bandColor(0x20, 0xc0, 0x40);
const QColor leftColor(0xff, 0x00, 0x00);
const QColor cornerColor(0x00, 0xff, 0x00);

// Two areas of a page of 1280 x 720, which is see-through everywhere else. On the screen they end at x = 480, and begin
// at x = 1440 and y = 540.
constexpr char body[] = "<style>body { margin: 0 } div { position: absolute }</style>"
                        "<div style='left: 0; top: 0; width: 320px; height: 720px; background: #f00'></div>"
                        "<div style='left: 960px; top: 360px; width: 320px; height: 360px; background: #0f0'></div>";

struct Spot
{
    QPoint place; ///< on the screen
    QColor color;
};

QColor mixed(const QColor &upper, const QColor &lower, int alpha)
{
    const auto mix = [alpha](int a, int b) { return (a * alpha + b * (255 - alpha)) / 255; };
    return QColor(mix(upper.red(), lower.red()), mix(upper.green(), lower.green()), mix(upper.blue(), lower.blue()));
}

} // namespace

Q_DECLARE_METATYPE(QVector<Spot>)

/// The picture of video and page together, as the screen shows it.
class TestPicture : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void theScreenShowsVideoAndPage_data();
    void theScreenShowsVideoAndPage();

private:
    QTemporaryDir m_media;
};

void TestPicture::initTestCase()
{
    QVERIFY(TestMedia::makeColor(m_media.filePath("wide.mkv"), videoColor, "640x360", 10));
    // A tenth of its height is a band.
    QVERIFY(TestMedia::ffmpeg(
        {"-f", "lavfi", "-i",
         "color=c=0x" + videoColor.name().mid(1) + ":size=480x360:rate=25:d=10,drawbox=w=480:h=36:t=fill:c=0x"
             + bandColor.name().mid(1),
         "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", m_media.filePath("narrow.mkv")}));
}

void TestPicture::init()
{
    setUp();
    QVERIFY(QDir().mkpath(m_box + "/mnt/stb"));
    for (const char *name : {"/wide.mkv", "/narrow.mkv"})
        QVERIFY(QFile::copy(m_media.path() + name, m_box + "/mnt/stb" + name));
}

void TestPicture::theScreenShowsVideoAndPage_data()
{
    const QColor black(Qt::black);
    constexpr int half = 128;

    QTest::addColumn<QByteArray>("video");
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QVector<Spot>>("spots");
    QTest::newRow("video where the page is transparent, the page scaled up")
        << QByteArray("wide.mkv") << QByteArray()
        << QVector<Spot>{{{2, 500}, leftColor},      {{477, 1077}, leftColor},    {{483, 1077}, videoColor},
                         {{960, 3}, videoColor},     {{1436, 800}, videoColor},   {{1600, 536}, videoColor},
                         {{1444, 544}, cornerColor}, {{1917, 1077}, cornerColor}, {{1917, 3}, videoColor}};
    QTest::newRow("half transparent page, video in a window")
        << QByteArray("wide.mkv")
        << QByteArray("StbDisplay.SetAlphaLevel(128); StbMedia.SetPlayerViewPort(id, 200, 100, 640, 360);")
        << QVector<Spot>{{{100, 300}, mixed(leftColor, black, half)},
                         {{295, 300}, mixed(leftColor, black, half)},
                         {{305, 300}, mixed(leftColor, videoColor, half)},
                         {{600, 155}, videoColor},
                         {{600, 145}, black},
                         {{1255, 685}, videoColor},
                         {{1265, 400}, black},
                         {{900, 695}, black}};
    QTest::newRow("chroma key, letter box")
        << QByteArray("narrow.mkv")
        << QByteArray("StbDisplay.SetChromaKey(0xff0000); StbDisplay.SetChromaKeyEnable(1);")
        << QVector<Spot>{{{235, 500}, black},       {{245, 500}, videoColor},  {{400, 500}, videoColor},
                         {{960, 20}, bandColor},    {{1675, 300}, videoColor}, {{1685, 300}, black},
                         {{1600, 900}, cornerColor}};
    QTest::newRow("viewport smaller than the screen, stretched")
        << QByteArray("narrow.mkv")
        << QByteArray("StbDisplay.SetGraphicsViewport(0, 0, 640, 360); StbMedia.SetPlayerDisplayMode(id, 1);")
        << QVector<Spot>{{{100, 300}, leftColor},   {{100, 535}, leftColor},   {{100, 545}, videoColor},
                         {{1600, 900}, videoColor}, {{1915, 500}, videoColor}, {{960, 60}, bandColor}};
    QTest::newRow("hidden page, cropped")
        << QByteArray("narrow.mkv")
        << QByteArray("StbDisplay.SetGraphicsVisible(0); StbMedia.SetPlayerDisplayMode(id, 2);")
        << QVector<Spot>{
               {{5, 500}, videoColor}, {{960, 5}, videoColor}, {{1600, 900}, videoColor}, {{960, 1075}, videoColor}};
    QTest::newRow("half transparent video")
        << QByteArray("wide.mkv") << QByteArray("StbMedia.SetPlayerAlphaLevel(id, 128);")
        << QVector<Spot>{{{100, 500}, leftColor}, {{960, 300}, mixed(videoColor, black, half)}};
    QTest::newRow("hidden video") << QByteArray("wide.mkv") << QByteArray("StbMedia.SetPlayerVisible(id, 0);")
                                  << QVector<Spot>{
                                         {{100, 500}, leftColor}, {{960, 300}, black}, {{1600, 900}, cornerColor}};
}

void TestPicture::theScreenShowsVideoAndPage()
{
    QFETCH(QByteArray, video);
    QFETCH(QByteArray, script);
    QFETCH(QVector<Spot>, spots);
    m_server->serve("/",
                    page("window.onload = function () {"
                         "var id = StbMedia.CreatePlayer(); StbMedia.PlayFile(id, '/"
                             + video + "', 0, 0, 0, ''); " + script
                             + "var poll = setInterval(function () {"
                               "if (StbMedia.GetPosition(id) < 300) return;"
                               "clearInterval(poll); tell('plays'); leave(300); }, 50); };",
                         body));
    QCOMPARE(run({"--exit-after", "15", m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList("plays"));
    const QImage screen(m_picture);
    QCOMPARE(screen.size(), QSize(1920, 1080));
    for (const Spot &spot : std::as_const(spots)) {
        const QColor color = screen.pixelColor(spot.place);
        const auto message =
            QString("%1,%2 is %3, not %4")
                .arg(QString::number(spot.place.x()), QString::number(spot.place.y()), color.name(), spot.color.name());
        QVERIFY2(isAbout(color, spot.color), qPrintable(message));
    }
}

QTEST_GUILESS_MAIN(TestPicture)

#include "tst_picture.moc"
