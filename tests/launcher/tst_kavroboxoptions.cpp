// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include <QDir>
#include <QImage>
#include <QTest>

namespace {

const char kavroBox[] = "bin/kavro-box";

void verifyOneLine(const QByteArray &errors, const QByteArray &message)
{
    QVERIFY2(errors.startsWith("kavro-box: ") || errors.startsWith("in-box: "), errors.constData());
    QVERIFY2(errors.contains(message), errors.constData());
    QCOMPARE(errors.count('\n'), 1);
}

} // namespace

/// What kavro-box says, and its exit status, when it is started wrongly, on a PC that lacks something, or
/// with another plugin.
class TestKavroBoxOptions : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void helpListsTheOptions();
    void wrongUsageIsRefusedInOneLine_data();
    void wrongUsageIsRefusedInOneLine();
    void aBoxDirectoryThatCannotBeUsedIsRefused_data();
    void aBoxDirectoryThatCannotBeUsedIsRefused();
    void aFileAddressOfThePcNeedsItsFolderShared();
    void aFileInPlaceOfAFolderOfTheBoxIsSaid_data();
    void aFileInPlaceOfAFolderOfTheBoxIsSaid();
    void whatCannotBeSharedIsSaid();
    void aFullDiskIsSaid();
    void aMissingPartOfThePcIsSaid_data();
    void aMissingPartOfThePcIsSaid();
    void thePlatformMayHaveOptionsAndOthersBehindIt();
    void withoutADisplayItGoesOnHeadless();
    void aMissingPluginIsSaid();
    void aPluginThatCannotBeLoadedIsSaid_data();
    void aPluginThatCannotBeLoadedIsSaid();
    void aPluginThatEndsTheProcessLeavesThePicture();
    void theWindowsThatAreAskedForOpen_data();
    void theWindowsThatAreAskedForOpen();
    void aLineOfOursBeginsALine();
    void theProcessInsideRunsInABoxOnly();

private:
    /// A copy of what is installed, without the plugin.
    QString install();

    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<Program> m_program;
    QStringList m_usual;
};

void TestKavroBoxOptions::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    QVERIFY(writeFile(m_folder->filePath("file"), "text"));
    m_program.reset(new Program(kavroBox));
    m_program->setVariable("QT_QPA_PLATFORM", {});
    m_usual = QStringList{"--box", m_folder->filePath("box"), "--headless", "--exit-after", "0"};
}

QString TestKavroBoxOptions::install()
{
    QString target = m_folder->filePath("installed");
    const QString script =
        "mkdir -p \"$2/lib/kavro\" \"$2/libexec\" \"$2/share/kavro\"; cp -r \"$1/bin\" \"$2\"; "
        "cp \"$1/lib/kavro/libstbapi.so\" \"$2/lib/kavro\"; cp -r \"$1/libexec/kavro\" \"$2/libexec\"; "
        "cp -rL \"$1/share/kavro/box\" \"$1/share/kavro/portal\" \"$2/share/kavro\"";
    QProcess copy;
    copy.start("sh", {"-euc", script, "sh", Program::inBuildTree("."), target});
    copy.waitForFinished();
    m_program->setProgram(target + "/bin/kavro-box");
    return target;
}

void TestKavroBoxOptions::helpListsTheOptions()
{
    QCOMPARE(m_program->run({"--help"}), 0);
    for (const char *option :
         {"--box <DIR>", "--share <FOLDER>", "--share-rw <FOLDER>", "--headless", "--screenshot <FILE>",
          "--exit-after <SECONDS>", "--keys <KEYS>", "--model <TEXT>", "--trace", "--size <WxH>", "--engine <box|pc>",
          "--allow-net <HOST[:PORT]>", "--remote", "--inspector", "--keep-running", "[URL]"})
        QVERIFY2(m_program->output().contains(option), option);
    for (const char *option : {"--inside", "--portal", "--screenshot-descriptor", "--channel"})
        QVERIFY2(!m_program->output().contains(option), option);
    QCOMPARE(m_program->errors(), QByteArray());
}

void TestKavroBoxOptions::wrongUsageIsRefusedInOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("unknown option") << QStringList("--fullscreen") << QByteArray("'fullscreen'");
    QTest::newRow("option without its value") << QStringList("--box") << QByteArray("'--box'");
    QTest::newRow("empty box directory") << QStringList{"--box", ""} << QByteArray("--box needs a directory");
    QTest::newRow("two pages") << QStringList{"http://a/", "http://b/"} << QByteArray("\"http://b/\" is too much");
    QTest::newRow("time that is none") << QStringList{"--exit-after", "soon"} << QByteArray("--exit-after \"soon\"");
    QTest::newRow("negative time") << QStringList{"--exit-after", "-1"} << QByteArray("--exit-after \"-1\"");
    QTest::newRow("endless time") << QStringList{"--exit-after", "inf"} << QByteArray("--exit-after \"inf\"");
    QTest::newRow("time beyond all timers") << QStringList{"--exit-after", "1e7"} << QByteArray("--exit-after \"1e7\"");
    QTest::newRow("size that is none") << QStringList{"--size", "large"} << QByteArray("--size \"large\"");
    QTest::newRow("size beyond all windows")
        << QStringList{"--size", "99999x99999"} << QByteArray("16384 pixels a side at most");
    QTest::newRow("size of nothing") << QStringList{"--size", "0x0"} << QByteArray("--size \"0x0\"");
    QTest::newRow("engine of neither") << QStringList{"--engine", "chromium"}
                                       << QByteArray("--engine \"chromium\" is neither box nor pc");
    QTest::newRow("host that is none") << QStringList{"--allow-net", "nas.lan", "--allow-net", "http://nas.lan/"}
                                       << QByteArray("--allow-net \"http://nas.lan/\" is not a host");
    QTest::newRow("host without its port")
        << QStringList{"--allow-net", "nas.lan:"} << QByteArray("--allow-net \"nas.lan:\" is not a host");
    QTest::newRow("unknown key") << QStringList{"--keys", "Up Dwon"} << QByteArray("--keys \"Dwon\"");
    QTest::newRow("shared folder that is none")
        << QStringList{"--share", "/nonexistent"} << QByteArray("--share \"/nonexistent\" is not a folder");
    QTest::newRow("shared file") << QStringList{"--share-rw", "/etc/passwd"}
                                 << QByteArray("--share-rw \"/etc/passwd\" is not a folder");
    QTest::newRow("screenshot nowhere") << QStringList{"--screenshot", "/nonexistent/a.png"}
                                        << QByteArray("the folder \"/nonexistent\"");
    QTest::newRow("screenshot over a folder") << QStringList{"--screenshot", "/tmp"} << QByteArray("\"/tmp\" is not");
    QTest::newRow("bare host") << QStringList("www.example.org") << QByteArray("\"www.example.org\" is neither");
    QTest::newRow("host and port") << QStringList("localhost:8080") << QByteArray("\"localhost:8080\" is neither");
    QTest::newRow("missing file") << QStringList("/nonexistent.html") << QByteArray("\"/nonexistent.html\" is neither");
    QTest::newRow("folder") << QStringList("/tmp") << QByteArray("\"/tmp\" is neither");
    QTest::newRow("address without a host")
        << QStringList("http:///index.html") << QByteArray("\"http:///index.html\" is");
}

void TestKavroBoxOptions::wrongUsageIsRefusedInOneLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    QCOMPARE(m_program->run(m_usual + arguments), 2);
    verifyOneLine(m_program->errors(), message);
    QCOMPARE(m_program->output(), QByteArray());
    QVERIFY(!QFile::exists(m_folder->filePath("box")));
}

void TestKavroBoxOptions::aBoxDirectoryThatCannotBeUsedIsRefused_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("a file") << "file" << QByteArray("file cannot be used (");
    QTest::newRow("below a file") << "file/box" << QByteArray("file/box cannot be used (");
    QTest::newRow("nowhere to create it") << "/proc/box" << QByteArray("/proc/box cannot be used (");
    QTest::newRow("not writable") << "/sys/kernel" << QByteArray("/sys/kernel cannot be used (");
}

void TestKavroBoxOptions::aBoxDirectoryThatCannotBeUsedIsRefused()
{
    QFETCH(QString, box);
    QFETCH(QByteArray, message);
    QCOMPARE(m_program->run({"--headless", "--exit-after", "0", "--box", QDir(m_folder->path()).absoluteFilePath(box)}),
             5);
    verifyOneLine(m_program->errors(), message);
    QVERIFY(m_program->errors().contains("--box"));
}

// It is told before a box is tried that does not have the file.
void TestKavroBoxOptions::aFileAddressOfThePcNeedsItsFolderShared()
{
    const QString page = m_folder->filePath("page.html");
    QVERIFY(writeFile(page, "<body>"));
    const QString address = "file://" + page;
    for (const QStringList &others : {QStringList(), QStringList{"--share", "/usr/share"}}) {
        QCOMPARE(m_program->run(m_usual + others + QStringList{address}), 2);
        verifyOneLine(m_program->errors(), address.toUtf8() + " is a file of the PC, which a box does not have; ");
    }
    QCOMPARE(m_program->run(m_usual + QStringList{"--share", m_folder->path(), address}), 0);
    QVERIFY2(!m_program->errors().contains("a file of the PC"), m_program->errors().constData());
    // Programs, and what lies with them, a box has.
    QCOMPARE(m_program->run(m_usual + QStringList("file:///usr/bin/env")), 0);
}

void TestKavroBoxOptions::aFileInPlaceOfAFolderOfTheBoxIsSaid_data()
{
    QTest::addColumn<QString>("folder");
    for (const char *folder : {"home/user", "mnt/stb", "etc", "sdk"})
        QTest::newRow(folder) << QString(folder);
}

void TestKavroBoxOptions::aFileInPlaceOfAFolderOfTheBoxIsSaid()
{
    QFETCH(QString, folder);
    const QString file = m_folder->filePath("box/") + folder;
    QVERIFY(writeFile(file, "text"));
    QCOMPARE(m_program->run(m_usual + QStringList("about:blank")), 5);
    QVERIFY2(m_program->errors().contains(file.toUtf8() + " is not a directory; move it away"),
             m_program->errors().constData());
}

void TestKavroBoxOptions::whatCannotBeSharedIsSaid()
{
    QCOMPARE(m_program->run(m_usual + QStringList{"--share", "/", "about:blank"}), 5);
    QVERIFY2(m_program->errors().contains("in-box: --share / would hide the box's own /"),
             m_program->errors().constData());
}

void TestKavroBoxOptions::aFullDiskIsSaid()
{
    const QString box = m_folder->filePath("box");
    QVERIFY(QDir().mkpath(box));
    m_program->setProgram("bwrap");
    QCOMPARE(m_program->run(
                 QStringList{"--dev-bind", "/", "/", "--size", "32768", "--tmpfs", box, Program::inBuildTree(kavroBox)}
                 + m_usual),
             5);
    const QList<QByteArray> lines = m_program->errors().trimmed().split('\n');
    QVERIFY(lines.last().contains("(No space left on device); free some space there"));
}

void TestKavroBoxOptions::aMissingPartOfThePcIsSaid_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("bubblewrap") << "PATH"
                                << "/nonexistent" << 5 << QByteArray("bubblewrap is missing; install it: ");
    QTest::newRow("Qt platform") << "QT_QPA_PLATFORM"
                                 << "nonesuch" << 1
                                 << QByteArray("platform plugin \"nonesuch\" is not installed; install it ");
}

void TestKavroBoxOptions::aMissingPartOfThePcIsSaid()
{
    QFETCH(QString, variable);
    QFETCH(QString, value);
    QFETCH(QByteArray, message);
    m_program->setVariable(variable, value);
    m_usual.removeOne("--headless");
    if (variable == "PATH")
        m_usual << "--headless";
    QTEST(m_program->run(m_usual + QStringList("about:blank")), "status");
    QVERIFY2(m_program->errors().contains(message), m_program->errors().constData());
}

void TestKavroBoxOptions::thePlatformMayHaveOptionsAndOthersBehindIt()
{
    m_usual.removeOne("--headless");
    m_program->setVariable("QT_QPA_PLATFORM", "offscreen:fontengine=freetype;minimal");
    QCOMPARE(m_program->run(m_usual + QStringList("about:blank")), 0);
}

void TestKavroBoxOptions::withoutADisplayItGoesOnHeadless()
{
    m_program->setVariable("DISPLAY", {});
    m_program->setVariable("WAYLAND_DISPLAY", {});
    m_usual.removeOne("--headless");
    const QString picture = m_folder->filePath("picture.png");
    QCOMPARE(m_program->run(m_usual + QStringList{"--screenshot", picture, "about:blank"}), 0);
    QCOMPARE(
        m_program->errors().split('\n').first(),
        QByteArray("kavro-box: there is no display, so it goes on as with --headless; set DISPLAY to have a window"));
    QVERIFY(QFile::exists(picture));

    m_program->setVariable("DISPLAY", ":4711");
    QCOMPARE(m_program->run(m_usual + QStringList("about:blank")), 0);
    QVERIFY(m_program->errors().startsWith("kavro-box: there is no display"));
}

void TestKavroBoxOptions::aMissingPluginIsSaid()
{
    const QString target = install();
    QCOMPARE(m_program->run(m_usual), 3);
    verifyOneLine(m_program->errors(), "the plugin " + target.toUtf8() + "/lib/kavro/libkavrostbbrowser.so is missing");
}

void TestKavroBoxOptions::aPluginThatCannotBeLoadedIsSaid_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("no library") << "share/kavro/portal/index.html" << QByteArray("the plugin cannot be loaded (");
    QTest::newRow("a plugin for another launcher")
        << "tests/plugins/libkavro_other_plugin.so"
        << QByteArray("libkavrostbbrowser.so is not a plugin for com.Kavro.Plugin.StbInterface/2.0");
    QTest::newRow("a library that is no plugin")
        << "lib/kavro/libstbapi.so" << QByteArray("the plugin cannot be loaded (");
}

void TestKavroBoxOptions::aPluginThatCannotBeLoadedIsSaid()
{
    QFETCH(QString, source);
    QFETCH(QByteArray, message);
    const QString target = install();
    QVERIFY(QFile::copy(Program::inBuildTree(source), target + "/lib/kavro/libkavrostbbrowser.so"));
    QCOMPARE(m_program->run(m_usual), 3);
    const QList<QByteArray> lines = m_program->errors().trimmed().split('\n');
    QVERIFY2(lines.last().startsWith("kavro-box: ") && lines.last().contains(message), m_program->errors().constData());
}

void TestKavroBoxOptions::aPluginThatEndsTheProcessLeavesThePicture()
{
    const QString target = install();
    QVERIFY(QFile::copy(Program::inBuildTree("tests/plugins/libkavro_exiting_plugin.so"),
                        target + "/lib/kavro/libkavrostbbrowser.so"));
    const QString picture = m_folder->filePath("picture.png");
    m_usual.removeLast(); // the time
    QCOMPARE(m_program->run(m_usual + QStringList{"30", "--screenshot", picture}), 0);
    QCOMPARE(QImage(picture).pixelColor(1000, 500), QColor(Qt::green));
}

void TestKavroBoxOptions::theWindowsThatAreAskedForOpen_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("windows");
    QTest::newRow("usual") << QStringList() << QByteArray("ScreenWindow\n533x299\n"); // of a desktop of 800x800
    QTest::newRow("size") << QStringList{"--size", "640x360"} << QByteArray("ScreenWindow\n640x360\n");
    QTest::newRow("remote control") << QStringList{"--size", "640x360", "--remote"}
                                    << QByteArray("RemoteControl ScreenWindow\n640x360\n");
    QTest::newRow("inspector") << QStringList{"--size", "640x360", "--inspector"}
                               << QByteArray("QWebInspector ScreenWindow\n640x360\n");
}

// And it is left when the screen's window is closed.
void TestKavroBoxOptions::theWindowsThatAreAskedForOpen()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, windows);
    const QString target = install();
    QVERIFY(QFile::copy(Program::inBuildTree("tests/plugins/libkavro_windows_plugin.so"),
                        target + "/lib/kavro/libkavrostbbrowser.so"));
    QCOMPARE(m_program->run(QStringList{"--box", m_folder->filePath("box"), "--headless"} + options), 0);
    QCOMPARE(m_program->output(), windows);
}

void TestKavroBoxOptions::aLineOfOursBeginsALine()
{
    const QString target = install();
    QVERIFY(QFile::copy(Program::inBuildTree("tests/plugins/libkavro_windows_plugin.so"),
                        target + "/lib/kavro/libkavrostbbrowser.so"));
    QCOMPARE(m_program->run({"--box", m_folder->filePath("box"), "--headless"}), 0);
    QVERIFY2(m_program->errors().contains("begun\nkavro-box: console: of the page ("), m_program->errors().constData());
}

void TestKavroBoxOptions::theProcessInsideRunsInABoxOnly()
{
    m_program->setVariable("QT_QPA_PLATFORM", "offscreen");
    QCOMPARE(m_program->run({"--inside"}), 2);
    QVERIFY2(m_program->errors().endsWith("kavro-box: --inside is for the process inside a box\n"),
             m_program->errors().constData());
}

QTEST_GUILESS_MAIN(TestKavroBoxOptions)

#include "tst_kavroboxoptions.moc"
