// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"

#include <QTest>
#include <QWebFrame>
#include <QWebView>

using namespace RecordingPlatform;

namespace {

KVR_Track track(int id, const char *description)
{
    KVR_Track track = {};
    track.id = id;
    track.supported = 1;
    qstrncpy(track.descr, description, sizeof track.descr);
    return track;
}

// The first pixel outside `hole` that lets anything show through, or (-1, -1).
QPoint firstTransparent(const QImage &image, const QRect &hole)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(line[x]) != 255 && !hole.contains(x, y))
                return {x, y};
        }
    }
    return {-1, -1};
}

// The call that places the player.
QByteArray window(const QRect &place)
{
    return QString("KVR_SetPlayerViewPort(1, {%1, %2, %3, %4})")
        .arg(place.x())
        .arg(place.y())
        .arg(place.width())
        .arg(place.height())
        .toLatin1();
}

} // namespace

/// How the portal's screens look at both of a box's page sizes, and how the focus moves on them.
class TestPortalLayout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void init();
    void cleanup();

    void everythingLiesInTheSafeAreaAndNothingScrolls_data();
    void everythingLiesInTheSafeAreaAndNothingScrolls();
    void theVideoShowsThroughThePictureOnly_data();
    void theVideoShowsThroughThePictureOnly();
    void theVideoShowsThroughTheFullScreenAboveTheBar();
    void noVideoShowsBehindTheMembers();
    void thePlayerIsWhereThePictureIs();
    void thePlayerIsThereHoweverTheEngineMeasures();
    void thePageFollowsTheWindow();
    void arrowKeysMoveTheFocus_data();
    void arrowKeysMoveTheFocus();
    void okOnThePictureShowsItOnTheFullScreen();
    void backReturnsToWhereOneCameFrom_data();
    void backReturnsToWhereOneCameFrom();
    void aLongListFollowsTheFocus();
    void theHeaderNamesTheModelAndTheSize();

private:
    PortalPage m_portal;
};

void TestPortalLayout::initTestCase_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("1280x720") << QSize(1280, 720);
    QTest::newRow("1920x1080") << QSize(1920, 1080);
}

// A box with more of everything than has room, and long names.
void TestPortalLayout::init()
{
    QFETCH_GLOBAL(QSize, size);
    reset();
    PortalPage::playerIs(KVR_PLAYER_PLAYING);
    answer("KVR_GetAudioTrackList", Answer::array(QVector<KVR_Track>{track(1, "eng, aac, 2 ch"), track(2, "rus")}));
    QVector<KVR_Track> subtitles;
    QVector<KVR_Record> records;
    for (int i = 0; i < 20; ++i) {
        subtitles += track(100 + i, "a description that is far too long for its row, and has no end");
        KVR_Record record = {i, 0, "http://127.0.0.1/a-very-long-address-of-a-stream", 3600, {}, 1000000, i % 5};
        qstrcpy(record.file, "a-very-long-name-of-a-recorded-file-that-has-no-end-and-no-blanks.ts");
        records += record;
    }
    answer("KVR_GetSubtitleTrackList", Answer::array(subtitles));
    answer("KVR_GetRecordsList", Answer::array(records));
    QVERIFY(m_portal.open(size));
}

void TestPortalLayout::cleanup()
{
    QCOMPARE(m_portal.errors(), QStringList());
    m_portal.close();
}

void TestPortalLayout::everythingLiesInTheSafeAreaAndNothingScrolls_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("expectedScreen");
    QTest::newRow("home") << ""
                          << "home";
    QTest::newRow("full screen") << "Return"
                                 << "video";
    QTest::newRow("tracks") << "Return Return"
                            << "tracks";
    QTest::newRow("last track") << "Return Return Down*30"
                                << "tracks";
    QTest::newRow("recordings") << "Down*3 Return"
                                << "recordings";
    QTest::newRow("last recording") << "Down*3 Return Down*30"
                                    << "recordings";
    QTest::newRow("recording") << "Down*3 Return Down Return"
                               << "recording";
    QTest::newRow("timer") << "Down*3 Return Return Down*2 Left"
                           << "timer";
    QTest::newRow("settings") << "Down*4 Return"
                              << "settings";
    QTest::newRow("about") << "Down*5 Return"
                           << "about";
    QTest::newRow("long key names") << "Down*5 Return MediaPrevious VolumeDown PageDown Insert"
                                    << "about";
    QTest::newRow("members") << "Down*5 Return Return"
                             << "members";
}

void TestPortalLayout::everythingLiesInTheSafeAreaAndNothingScrolls()
{
    QFETCH_GLOBAL(QSize, size);
    QFETCH(QString, keys);
    QFETCH(QString, expectedScreen);
    m_portal.press(keys);
    QCOMPARE(m_portal.screen(), expectedScreen);

    QCOMPARE(m_portal.plugin().browser()->page()->mainFrame()->contentsSize(), size);
    QCOMPARE(m_portal.evaluate("document.body.scrollTop + document.body.scrollLeft").toInt(), 0);
    // Rows may stick out of their list, which cuts them off.
    const QString outside =
        "var list = document.getElementById('rows');"
        "var area = list.getBoundingClientRect();"
        "var body = document.body.getBoundingClientRect();"
        "[].filter.call(document.querySelectorAll('h1, h2, p, li, kbd, #rows, .row span'), function (e) {"
        "  var box = e.getBoundingClientRect();"
        "  var top = list.contains(e) ? Math.max(box.top, area.top) : box.top;"
        "  var bottom = list.contains(e) ? Math.min(box.bottom, area.bottom) : box.bottom;"
        "  return box.width && top < bottom && (box.left < body.width * 0.05 - 1 || box.right > body.width * 0.95 + 1"
        "    || top < body.height * 0.05 - 1 || bottom > body.height * 0.95 + 1);"
        "}).map(function (e) { return e.outerHTML; }).join('\\n')";
    QCOMPARE(m_portal.evaluate(outside).toString(), QString());
}

void TestPortalLayout::theVideoShowsThroughThePictureOnly_data()
{
    QTest::addColumn<QString>("keys");
    QTest::newRow("home") << "";
    QTest::newRow("picture focused") << "Right";
    QTest::newRow("recordings") << "Down*3 Return";
    QTest::newRow("settings") << "Down*4 Return";
    QTest::newRow("about") << "Down*5 Return";
}

void TestPortalLayout::theVideoShowsThroughThePictureOnly()
{
    QFETCH(QString, keys);
    m_portal.press(keys);
    const QRect picture = m_portal.place("#picture");
    const QImage image = m_portal.painted();
    QCOMPARE(firstTransparent(image, picture), QPoint(-1, -1));
    for (const QPoint &point : {picture.topLeft(), picture.bottomRight(), picture.center()})
        QCOMPARE(qAlpha(image.pixel(point)), 0);
}

void TestPortalLayout::theVideoShowsThroughTheFullScreenAboveTheBar()
{
    m_portal.press("Return");
    const QImage image = m_portal.painted();
    const QRect bar = m_portal.place("#playing");
    QCOMPARE(bar.bottomLeft(), image.rect().bottomLeft());
    QCOMPARE(bar.width(), image.width());
    for (const QPoint &point : {image.rect().topLeft(), image.rect().center(), bar.topRight() - QPoint(0, 1)})
        QCOMPARE(qAlpha(image.pixel(point)), 0);
    QVERIFY(qAlpha(image.pixel(bar.topLeft())) > 128);
}

void TestPortalLayout::noVideoShowsBehindTheMembers()
{
    m_portal.press("Down*5 Return Return");
    QCOMPARE(m_portal.screen(), QString("members"));
    QCOMPARE(firstTransparent(m_portal.painted(), QRect()), QPoint(-1, -1));
}

void TestPortalLayout::thePlayerIsWhereThePictureIs()
{
    QFETCH_GLOBAL(QSize, size);
    const QByteArray small = window(m_portal.place("#picture"));
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPlayerViewPort"), small);
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPlayerViewPort"), window(QRect(QPoint(0, 0), size)));
    m_portal.press("Backspace");
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPlayerViewPort"), small);
}

// Some engines tell where an element is in pixels of the style sheets, this one among them, and others in those of the
// screen.
void TestPortalLayout::thePlayerIsThereHoweverTheEngineMeasures()
{
    QFETCH_GLOBAL(QSize, size);
    m_portal.evaluate("var measure = Element.prototype.getBoundingClientRect;"
                      "Element.prototype.getBoundingClientRect = function () {"
                      "  var box = measure.call(this), zoom = document.documentElement.style.zoom;"
                      "  return { left: box.left * zoom, top: box.top * zoom, right: box.right * zoom,"
                      "    bottom: box.bottom * zoom, width: box.width * zoom, height: box.height * zoom };"
                      "};");
    m_portal.press("Return");
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPlayerViewPort"), window(QRect(QPoint(0, 0), size)));
    m_portal.press("Backspace");
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPlayerViewPort"), window(m_portal.place("#picture")));
}

void TestPortalLayout::thePageFollowsTheWindow()
{
    QFETCH_GLOBAL(QSize, size);
    const bool isSmall = size.width() == 1280;
    const QSize other = isSmall ? QSize(1920, 1080) : QSize(1280, 720);
    const QRect picture = isSmall ? QRect(864, 189, 960, 540) : QRect(576, 126, 640, 360);
    QVERIFY(m_portal.place("#picture") != picture);
    takeCalls();
    m_portal.plugin().browser()->setFixedSize(other);
    QTRY_COMPARE(m_portal.place("#picture"), picture);
    QCOMPARE(PortalPage::takeLastCall("KVR_SetPlayerViewPort"), window(picture));
    QVERIFY(m_portal.text("#box").endsWith(QString::fromUtf8("%1 × %2").arg(other.width()).arg(other.height())));
    QCOMPARE(m_portal.plugin().browser()->page()->mainFrame()->contentsSize(), other);
}

void TestPortalLayout::arrowKeysMoveTheFocus_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("expected");
    QTest::newRow("at the start") << ""
                                  << "channel-1";
    QTest::newRow("down") << "Down"
                          << "channel-2";
    QTest::newRow("down to the last") << "Down*5"
                                      << "about";
    QTest::newRow("not below the last") << "Down*6"
                                        << "about";
    QTest::newRow("not above the first") << "Up"
                                         << "channel-1";
    QTest::newRow("up again") << "Down*2 Up"
                              << "channel-2";
    QTest::newRow("not beyond the left") << "Left"
                                         << "channel-1";
    QTest::newRow("right from the first") << "Right"
                                          << "picture";
    QTest::newRow("right from the last") << "Down*5 Right"
                                         << "picture";
    QTest::newRow("not below the picture") << "Right Down"
                                           << "picture";
    QTest::newRow("back to the row beside the picture") << "Right Left"
                                                        << "channel-3";
    QTest::newRow("past what is only to be read") << "Down*3 Return Down Return Down*3"
                                                  << "delete";
    QTest::newRow("to the last of a long list") << "Down*3 Return Down*30"
                                                << "recording-0";
}

void TestPortalLayout::arrowKeysMoveTheFocus()
{
    QFETCH(QString, keys);
    m_portal.press(keys);
    QTEST(m_portal.focused(), "expected");
}

void TestPortalLayout::okOnThePictureShowsItOnTheFullScreen()
{
    m_portal.press("Right Return");
    QCOMPARE(m_portal.screen(), QString("video"));
    m_portal.press("Backspace Left Down Return Right Return");
    QCOMPARE(m_portal.screen(), QString("video"));
}

void TestPortalLayout::backReturnsToWhereOneCameFrom_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("expectedScreen");
    QTest::addColumn<QString>("expectedFocus");
    QTest::newRow("from the full screen") << "Return Backspace"
                                          << "home"
                                          << "channel-1";
    QTest::newRow("with Escape") << "Return Escape"
                                 << "home"
                                 << "channel-1";
    QTest::newRow("from the picture's full screen") << "Right Return Backspace"
                                                    << "home"
                                                    << "picture";
    QTest::newRow("from the tracks by an arrow") << "Return Return Down Left"
                                                 << "video"
                                                 << "picture";
    QTest::newRow("from the tracks") << "Return Return Backspace"
                                     << "video"
                                     << "picture";
    QTest::newRow("from the timer") << "Down*3 Return Return Down Backspace"
                                    << "recordings"
                                    << "add";
    QTest::newRow("from a recording") << "Down*3 Return Down*2 Return Backspace"
                                      << "recordings"
                                      << "recording-18";
    QTest::newRow("from the settings") << "Down*4 Return Down Backspace"
                                       << "home"
                                       << "settings";
    QTest::newRow("from the members") << "Down*5 Return Down*2 Return Backspace"
                                      << "about"
                                      << "StbPVR";
    QTest::newRow("twice") << "Down*5 Return Return Backspace*2"
                           << "home"
                           << "about";
    QTest::newRow("not from home") << "Down Backspace"
                                   << "home"
                                   << "channel-2";
}

void TestPortalLayout::backReturnsToWhereOneCameFrom()
{
    QFETCH(QString, keys);
    m_portal.press(keys);
    QTEST(m_portal.screen(), "expectedScreen");
    QTEST(m_portal.focused(), "expectedFocus");
}

void TestPortalLayout::aLongListFollowsTheFocus()
{
    m_portal.press("Down*3 Return Down*30");
    QVERIFY(m_portal.place("#rows").contains(m_portal.place(".focused")));
    QVERIFY(!m_portal.place("#rows").intersects(m_portal.place("#row-add")));
    m_portal.press("Up*30");
    QCOMPARE(m_portal.focused(), QString("add"));
    QVERIFY(m_portal.place("#rows").contains(m_portal.place(".focused")));
}

void TestPortalLayout::theHeaderNamesTheModelAndTheSize()
{
    QFETCH_GLOBAL(QSize, size);
    QCOMPARE(m_portal.text("#box"), QString::fromUtf8("MZ-600 test · %1 × %2").arg(size.width()).arg(size.height()));
}

QTEST_MAIN(TestPortalLayout)
#include "tst_portallayout.moc"
