// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "InsideProcess.h"

#include <QElapsedTimer>
#include <QImage>
#include <QTest>

#include <csignal>

namespace {

const char kavroBox[] = "bin/kavro-box";

const char tellKeys[] =
    "document.onkeydown = function (event) { tell((event.shiftKey ? 'Shift+' : '') + event.keyCode); };";

} // namespace

/// The desk box's picture, its keys, and how it ends.
class TestKavroBox : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init() { setUp(); }

    void thePictureIsThePageAtTheSizeOfTheScreen();
    void itEndsAfterTheTimeGiven();
    void itIsLeftByF1AndByThePage_data();
    void itIsLeftByF1AndByThePage();
    void aSignalEndsItCleanly_data();
    void aSignalEndsItCleanly();
    void aSignalDuringTheStartEndsItToo();
    void anEndlessScriptDoesNotKeepItFromEnding_data();
    void anEndlessScriptDoesNotKeepItFromEnding();
    void itIsKilledWithTheProcessThatStartedIt();
    void aSecondStartOnTheSameDirectorySaysSoAndLeaves();
    void boxesWithDifferentDirectoriesRunSideBySide();
    void keysReachThePage();
    void keysReachTheAddressDialog();
    void keysReachThePageAfterADialog_data();
    void keysReachThePageAfterADialog();
    void theDialogMayBeOpenAtTheEnd();
    void aRebootStartsOverAndGoesOn();
    void aRebootLeavesItTheTimeThatWasLeft();
    void onceItIsLeftItDoesNotStartOver();
    void aWindowWithAllItsCompanionsOpens();

private:
    /// Asks the process inside, which must be there, to start over, as the box's reboot command does.
    bool startOver();
};

bool TestKavroBox::startOver()
{
    const pid_t process = insideProcess(m_server->url().toString().toUtf8());
    return process > 0 && kill(process, SIGHUP) == 0;
}

void TestKavroBox::thePictureIsThePageAtTheSizeOfTheScreen()
{
    m_server->serve("/",
                    page("onload = function () { tell(innerWidth + 'x' + innerHeight); leave(200); };",
                         "<style>body { margin: 0; background: #00ff00; overflow: hidden }"
                         "div { position: absolute; width: 640px; height: 360px }</style>"
                         "<div style='background: #ff0000'></div>"
                         "<div style='background: #0000ff; left: 640px; top: 360px'></div>"));
    QVERIFY(writeFile(m_picture, QByteArray(10 << 20, 'x'))); // what was there before
    QCOMPARE(run({m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList("1280x720"));
    QVERIFY(contentOf(m_picture).endsWith("IEND\xae\x42\x60\x82"));
    const QImage picture(m_picture);
    QCOMPARE(picture.size(), QSize(1920, 1080));
    QCOMPARE(picture.pixelColor(0, 0), QColor(255, 0, 0));
    QCOMPARE(picture.pixelColor(955, 535), QColor(255, 0, 0));
    QCOMPARE(picture.pixelColor(965, 535), QColor(0, 255, 0));
    QCOMPARE(picture.pixelColor(965, 545), QColor(0, 0, 255));
    QCOMPARE(picture.pixelColor(1919, 1079), QColor(0, 0, 255));
    QCOMPARE(picture.pixelColor(1919, 0), QColor(0, 255, 0));
}

void TestKavroBox::itEndsAfterTheTimeGiven()
{
    m_server->serve("/", page("setInterval(function () { tell('alive'); }, 50);"));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(run({"--exit-after", "4", m_server->url().toString()}), 0);
    QVERIFY(clock.elapsed() >= 4000);
    QVERIFY(told().contains("alive"));
    // The page began after the plugin, from whose start the time counts.
    const qint64 lived = m_server->requests().last().time - m_server->requests().first().time;
    QVERIFY2(lived < 4500, qPrintable(QString::number(lived)));
}

void TestKavroBox::itIsLeftByF1AndByThePage_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("F1") << "F1" << QByteArray();
    QTest::newRow("the page") << "" << QByteArray("leave();");
}

void TestKavroBox::itIsLeftByF1AndByThePage()
{
    QFETCH(QString, keys);
    QFETCH(QByteArray, script);
    m_server->serve("/", page(script));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(run({"--keys", keys, "--exit-after", "20", m_server->url().toString()}), 0);
    QVERIFY(clock.elapsed() < 20000);
    QCOMPARE(QImage(m_picture).size(), QSize(1920, 1080));
}

void TestKavroBox::aSignalEndsItCleanly_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("HUP") << SIGHUP;
}

void TestKavroBox::aSignalEndsItCleanly()
{
    QFETCH(int, signalNumber);
    m_server->serve("/", page("onload = function () { tell('loaded'); };", "<body bgcolor=red>"));
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("loaded"), patience);
    kill(pid_t(m_program->processId()), signalNumber);
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(QImage(m_picture).pixelColor(1000, 500), QColor(Qt::red));
}

void TestKavroBox::aSignalDuringTheStartEndsItToo()
{
    begin({"about:blank"});
    QTRY_VERIFY(m_program->errors().contains("kavro-box: page about:blank")); // the last thing before the box
    kill(pid_t(m_program->processId()), SIGTERM);
    QCOMPARE(m_program->finish(), 0);
}

void TestKavroBox::anEndlessScriptDoesNotKeepItFromEnding_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("time");
    QTest::addColumn<int>("status");
    QTest::newRow("before the picture") << QByteArray("for (;;);") << "5" << 1;
    QTest::newRow("after the picture") << QByteArray("onunload = function () { for (;;); }; leave(0);") << "60" << 0;
}

void TestKavroBox::anEndlessScriptDoesNotKeepItFromEnding()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, time);
    QFETCH(int, status);
    m_server->serve("/", page("setTimeout(function () {" + script + "}, 100);"));
    begin({"--exit-after", time, m_server->url().toString()});
    QCOMPARE(m_program->finish(), status);
    QVERIFY(m_program->errors().contains("what the page has begun does not end"));
}

void TestKavroBox::itIsKilledWithTheProcessThatStartedIt()
{
    m_server->serve("/", page("setInterval(function () { tell('alive'); }, 20);"));
    begin({m_server->url().toString()});
    QTRY_VERIFY_WITH_TIMEOUT(!told().isEmpty(), patience);
    const QByteArray address = m_server->url().toString().toUtf8();
    QVERIFY(insideProcess(address) > 0);
    m_program->kill();
    QCOMPARE(m_program->finish(), -2);
    QTRY_COMPARE(insideProcess(address), 0);
}

void TestKavroBox::aSecondStartOnTheSameDirectorySaysSoAndLeaves()
{
    m_server->serve("/", page("tell('loaded');"));
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("loaded"), patience);
    Program second(kavroBox);
    QCOMPARE(second.run(m_usual + QStringList{"--exit-after", "0", "about:blank"}), 4);
    QCOMPARE(second.errors(),
             QString("kavro-box: the box directory %1 is in use by process %2; leave that desk box first, or "
                     "choose another directory with --box\n")
                 .arg(m_box)
                 .arg(m_program->processId())
                 .toUtf8());
    m_program->terminate();
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(second.run(m_usual + QStringList{"--exit-after", "0", "about:blank"}), 0);
}

void TestKavroBox::boxesWithDifferentDirectoriesRunSideBySide()
{
    m_server->serve("/first", page("setInterval(function () { tell('first'); }, 20);"));
    m_server->serve("/second", page("setInterval(function () { tell('second'); }, 20);"));
    begin({m_server->url("/first").toString()});
    Program second(kavroBox);
    second.setArguments({"--headless", "--box", m_folder->filePath("other"), m_server->url("/second").toString()});
    second.start();
    QTRY_VERIFY_WITH_TIMEOUT(told().contains("first") && told().contains("second"), patience);
    second.terminate();
    QCOMPARE(second.finish(), 0);
    const int count = told().count("first");
    QTRY_VERIFY(told().count("first") > count);
    m_program->terminate();
    QCOMPARE(m_program->finish(), 0);
}

void TestKavroBox::keysReachThePage()
{
    const QByteArray script = "document.onkeyup = function (event) { if (event.keyCode == 27) tell(field.value); };";
    m_server->serve("/", page(tellKeys + script, "<input id=field autofocus>"));
    QCOMPARE(run({"--keys", "Down*2 Return VolumeUp text:aB9 Escape wait:300 F1", m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList({"40", "40", "13", "175", "65", "Shift+66", "57", "27", "aB9"}));
}

void TestKavroBox::keysReachTheAddressDialog()
{
    m_server->serve("/", page(tellKeys));
    m_server->serve("/other", page("tell('other');"));
    const QString address = m_server->url("/other").toString();
    QCOMPARE(
        run({"--keys", "Ctrl+L wait:300 Ctrl+A text:" + address + " Return wait:500 F1", m_server->url().toString()}),
        0);
    QCOMPARE(told(), QStringList("other"));
}

void TestKavroBox::keysReachThePageAfterADialog_data()
{
    QTest::addColumn<QString>("open");
    QTest::addColumn<QString>("close");
    QTest::newRow("alert") << "A"
                           << "Return";
    QTest::newRow("confirm") << "B"
                             << "Escape";
    QTest::newRow("prompt") << "C"
                            << "text:x Return";
    QTest::newRow("address") << "Ctrl+L"
                             << "Escape";
}

void TestKavroBox::keysReachThePageAfterADialog()
{
    QFETCH(const QString, open);
    QFETCH(const QString, close);
    m_server->serve("/",
                    page("document.onkeyup = function (event) { switch (event.keyCode) {"
                         "case 65: alert(1); break; case 66: confirm(2); break; case 67: prompt(3); break;"
                         "case 38: tell('Up'); } };"));
    const QString keys = QString("%1 wait:400 %2 wait:400 Up wait:300 F1").arg(open, close);
    QCOMPARE(run({"--keys", keys, m_server->url().toString()}), 0);
    QCOMPARE(told(), QStringList("Up"));
}

void TestKavroBox::theDialogMayBeOpenAtTheEnd()
{
    m_server->serve("/", page(""));
    for (const QString &end : {QString("Ctrl+L wait:200 F1"), QString("Ctrl+L wait:2000")})
        QCOMPARE(run({"--exit-after", "1.2", "--keys", end, m_server->url().toString()}), 0);
    QVERIFY(QFile::exists(m_picture));
}

void TestKavroBox::aRebootStartsOverAndGoesOn()
{
    m_server->serve("/",
                    page(QByteArray(tellKeys)
                         + "tell('start');"
                           "onload = function () { if (!localStorage.again) { localStorage.again = 1;"
                           "setTimeout(function () { StbDisplay.Reboot(); }, 2500); } };"));
    // localStorage is the box's, and lasts, once a page has asked for it.
    m_server->serve("/first",
                    page("onload = function () { StbDisplay.EnableHtml5LocalStorage(true); location = '/'; };"));
    QElapsedTimer clock;
    clock.start();
    // Keys begin with the first page; each life gives the second one time to come.
    const QString keys = "wait:1000 Down wait:4000 wait:2000 Up F1";
    QCOMPARE(run({"--keys", keys, "--exit-after", "30", m_server->url("/first").toString()}), 0);
    QVERIFY(clock.elapsed() < 30000);
    QCOMPARE(told(), QStringList({"start", "40", "start", "38"}));
    QCOMPARE(QImage(m_picture).size(), QSize(1920, 1080));
}

void TestKavroBox::aRebootLeavesItTheTimeThatWasLeft()
{
    m_server->serve("/", page("tell('start'); setTimeout(function () { tell('late'); }, 5000);"));
    begin({"--exit-after", "8", m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList({"start", "late"}), patience);
    QVERIFY(startOver());
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(told().count("late"), 1);
}

void TestKavroBox::onceItIsLeftItDoesNotStartOver()
{
    m_server->serve("/",
                    page("setTimeout(function () { StbDisplay.Debug(' busy');"
                         "for (var end = Date.now() + 2000; Date.now() < end;); StbDisplay.ExitToMenu(); }, 0);"));
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(m_program->output(), QByteArray("debug busy\n"), patience);
    // Both are there when the script ends, and the page's wish is the first to be taken.
    QVERIFY(startOver());
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(m_program->output(), QByteArray("debug busy\n"));
}

void TestKavroBox::aWindowWithAllItsCompanionsOpens()
{
    m_server->serve("/", page(tellKeys));
    m_usual.removeOne("--headless");
    m_program->setVariable("QT_QPA_PLATFORM", "offscreen");
    QCOMPARE(
        run({"--size", "640x360", "--remote", "--inspector", "--keys", "Left wait:300 F1", m_server->url().toString()}),
        0);
    QCOMPARE(told(), QStringList("37"));
    QCOMPARE(QImage(m_picture).size(), QSize(1920, 1080));
}

QTEST_GUILESS_MAIN(TestKavroBox)

#include "tst_kavrobox.moc"
