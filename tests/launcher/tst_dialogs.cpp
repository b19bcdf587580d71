// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"

#include <QImage>
#include <QTest>

/// What of the desktop's a page can open: nothing that keys cannot leave.
class TestDialogs : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init() { setUp(); }

    void noDialogOfTheDesktopIsOpened_data();
    void noDialogOfTheDesktopIsOpened();
    void aListIsLeftByF1();
    void noProgramIsStartedForAnAddress();
};

void TestDialogs::noDialogOfTheDesktopIsOpened_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("isSaid");
    QTest::newRow("a file") << QByteArray("file.click();") << true;
    QTest::newRow("files") << QByteArray("files.click();") << true;
    QTest::newRow("a colour") << QByteArray("colour.click();") << true;
    QTest::newRow("a date") << QByteArray("date.click();") << false;
    QTest::newRow("a window") << QByteArray("open('about:blank', 'name', 'width=200,height=200');") << false;
    QTest::newRow("a printer") << QByteArray("print();") << false;
    QTest::newRow("a notification") << QByteArray("if (window.Notification) new Notification('text');") << false;
    QTest::newRow("a whole screen") << QByteArray(
        "document.documentElement.webkitRequestFullScreen(); moveTo(9, 9); resizeTo(99, 99);")
                                    << false;
}

void TestDialogs::noDialogOfTheDesktopIsOpened()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, isSaid);
    // By a key, as an act of the user's, whom the engine lets do more.
    m_server->serve(
        "/",
        page("document.onkeydown = function (event) {"
             "if (event.keyCode == 65) { "
                 + script + " } else tell(event.keyCode); };",
             "<style>body { margin: 0; background: #00ff00 } input { position: absolute; left: -999px }"
             "</style><input id=file type=file><input id=files type=file multiple><input id=colour type=color>"
             "<input id=date type=date>"));
    QCOMPARE(run({"--engine", "pc", "--keys", "A wait:500 Left F1", "--exit-after", "20", m_server->url().toString()}),
             0);
    QCOMPARE(told(), QStringList("37"));
    QCOMPARE(m_program->errors().count("\nkavro-box: the page asks for a file or a colour to be chosen"), isSaid);
    // Nothing is left over the page, either.
    const QImage picture(m_picture);
    for (int x = 5; x < picture.width(); x += 10) {
        for (int y = 5; y < picture.height(); y += 10)
            QCOMPARE(picture.pixelColor(x, y), QColor(0, 255, 0));
    }
}

void TestDialogs::aListIsLeftByF1()
{
    m_server->serve("/",
                    page("onload = function () { var event = document.createEvent('MouseEvents'); list.focus();"
                         "event.initMouseEvent('mousedown', true, true, window, 1, 0, 0, 9, 9, 0, 0, 0, 0, 0, null);"
                         "setTimeout(function () { list.dispatchEvent(event); tell('open'); }, 0); };",
                         "<select id=list><option>one<option>two</select>"));
    QCOMPARE(run({"--keys", "wait:1000 F1", m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList("open"));
}

void TestDialogs::noProgramIsStartedForAnAddress()
{
    m_server->serve("/",
                    page("var schemes = ['mailto:a@example.org', 'tel:1', 'other:x', 'ftp://127.0.0.1/'];"
                         "onload = function () { schemes.forEach(function (scheme) {"
                         "var frame = document.createElement('iframe'); frame.src = scheme;"
                         "document.body.appendChild(frame); });"
                         "setTimeout(function () { tell('alive'); location = schemes[0]; }, 500); };"));
    QCOMPARE(run({"--exit-after", "3", m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList("alive"));
    // The platform without windows cannot, and says so.
    QVERIFY(!m_program->errors().contains("openUrl"));
}

QTEST_GUILESS_MAIN(TestDialogs)

#include "tst_dialogs.moc"
