// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <csignal>
#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace {

const char watchArgument[] = "--watch";
const char inBox[] = "libexec/kavro/in-box";

// Run inside a box: says on standard output when a file changes, once, and what it holds then.
int watch(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QString file = application.arguments().at(2);
    QFileSystemWatcher watcher({file});
    QObject::connect(&watcher, &QFileSystemWatcher::fileChanged, [&file] {
        const QByteArray content = contentOf(file);
        if (content.isEmpty()) // truncated, and not written yet
            return;
        std::printf("changed to %s\n", content.constData());
        QCoreApplication::quit();
    });
    std::puts("watching");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

bool isRunning(const QByteArray &argument)
{
    const QStringList processes = QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs);
    for (const QString &process : processes) {
        if (contentOf("/proc/" + process + "/cmdline").contains(argument))
            return true;
    }
    return false;
}

} // namespace

/// The script that gives a command the box's file tree.
class TestInBox : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aPlaceOfTheBoxIsAFolderOfItsDirectory_data();
    void aPlaceOfTheBoxIsAFolderOfItsDirectory();
    void nothingIsCreatedOnThePc();
    void theRestIsThePcs();
    void aNewBoxHasWorkingDefaults();
    void whatIsThereIsNeverOverwritten();
    void linksToThePcsFilesFollowThePc();
    void anEditFromOutsideIsSeenAndWakesAFileWatch();
    void commandAndFolderBehindAPlaceAreFoundBelowPc();
    void environmentPathsBehindAPlaceAreFoundBelowPc();
    void textsAreUtf8WhateverTheCallersLocale();
    void theCommandsExitStatusPassesThrough_data();
    void theCommandsExitStatusPassesThrough();
    void theCommandDiesWithItsParent();
    void commandsThatEndAComputerDoNothing_data();
    void commandsThatEndAComputerDoNothing();
    void noProcessMayRebootThePc();
    void rebootTellsTheDeskBox();
    void oneBoxRunsInsideAnother();
    void anOrdinaryUserHasABoxToo();
    void whatIsMissingIsSaidInOneLine_data();
    void whatIsMissingIsSaidInOneLine();
    void aFullDiskIsSaid();

private:
    int run(const QStringList &command);
    int runScript(const QString &script, const QStringList &arguments = {});

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_box;
    QScopedPointer<Program> m_inBox;
};

void TestInBox::init()
{
    // In one of the box's own places, the hardest case.
    m_folder.reset(new QTemporaryDir("/tmp/tst_inbox-XXXXXX"));
    QVERIFY(m_folder->isValid());
    m_box = m_folder->filePath("box");
    m_inBox.reset(new Program(inBox));
}

int TestInBox::run(const QStringList &command)
{
    return m_inBox->run(QStringList{m_box, "--"} + command);
}

int TestInBox::runScript(const QString &script, const QStringList &arguments)
{
    return run(QStringList{"sh", "-euc", script, "sh"} + arguments);
}

void TestInBox::aPlaceOfTheBoxIsAFolderOfItsDirectory_data()
{
    QTest::addColumn<QString>("place");
    for (const char *place : {"/etc", "/home/user", "/mnt/stb", "/sdk", "/usr/local/bin/custom", "/tmp"})
        QTest::newRow(place) << QString(place);
}

void TestInBox::aPlaceOfTheBoxIsAFolderOfItsDirectory()
{
    QFETCH(QString, place);
    const QString file = place + "/tst_inbox-probe";
    QCOMPARE(runScript("echo text > \"$1\"; cat \"$1\"", {file}), 0);
    QCOMPARE(m_inBox->output(), QByteArray("text\n"));
    QCOMPARE(contentOf(m_box + file), QByteArray("text\n"));
    QVERIFY(!QFile::exists(file));
}

void TestInBox::nothingIsCreatedOnThePc()
{
    const QStringList places = {"/sdk", "/mnt/stb", "/home/user", "/usr/local/bin/custom", "/pc", "/box"};
    QList<bool> before;
    for (const QString &place : places)
        before << QFile::exists(place);
    QCOMPARE(runScript("ls -d /sdk /mnt/stb /home/user /usr/local/bin/custom /pc /box"), 0);
    for (int i = 0; i < places.size(); ++i)
        QCOMPARE(QFile::exists(places[i]), before[i]);
    // There is nowhere to create it by mistake, either.
    QVERIFY(runScript("echo x > /home/tst_inbox-probe") != 0);
    QVERIFY(!QFile::exists("/home/tst_inbox-probe"));
}

void TestInBox::theRestIsThePcs()
{
    QVERIFY(writeFile(m_folder->filePath("file"), "of the PC"));
    QCOMPARE(runScript("cat \"/pc$1\"", {m_folder->filePath("file")}), 0);
    QCOMPARE(m_inBox->output(), QByteArray("of the PC"));

    for (const char *folder : {"/", "/usr", "/usr/local", "/usr/local/bin", "/home", "/mnt"}) {
        QStringList paths;
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        const QStringList entries = QDir(folder).entryList(all);
        for (const QString &entry : entries)
            paths << QDir(folder).filePath(entry);
        QVERIFY2(runScript("ls -d \"$@\"", paths) == 0, m_inBox->errors().constData());
    }
    QCOMPARE(run({"id", "-un"}), 0);
    QCOMPARE(runScript("getent passwd \"$(id -u)\" > /dev/null; test -r /etc/ld.so.cache"), 0);
}

void TestInBox::aNewBoxHasWorkingDefaults()
{
    QCOMPARE(runScript("hello=$(/usr/local/bin/custom/hello a b); echo \"$hello\"; ls -d /home/user/config "
                       "/mnt/stb /sdk/custom_scripts; test -w /tmp"),
             0);
    QVERIFY(m_inBox->output().startsWith("Hello from the box. Arguments: a b\n"));

    QXmlStreamReader settings(contentOf(m_box + "/etc/settings.xml"));
    QVERIFY(settings.readNextStartElement());
    QCOMPARE(settings.name().toString(), QString("settings"));
    QCOMPARE(settings.attributes().value("version").toString(), QString("0.1"));

    const QString plugin = m_box + "/sdk/qt/STBGUI_PLUGIN/stbbrowser/";
    QMap<QString, QXmlStreamAttributes> elements;
    QXmlStreamReader manifest(contentOf(plugin + "PluginManifest.xml"));
    while (!manifest.atEnd()) {
        if (manifest.readNext() == QXmlStreamReader::StartElement)
            elements[manifest.attributes().value("type").toString()] = manifest.attributes();
    }
    QVERIFY(!manifest.hasError());
    QCOMPARE(elements["homepage"].value("desk-page").toString(), QString("portal"));
    QCOMPARE(elements["resolution"].value("width").toString(), QString("1280"));
    QCOMPARE(elements["supports_sd"].value("val").toString(), QString("true"));
    const QString errorPage = QUrl(elements["errorpage"].value("src").toString()).toLocalFile();
    QVERIFY(contentOf(m_box + errorPage).contains("<html"));

    const QByteArray bundle = contentOf("/etc/ssl/certs/ca-certificates.crt");
    QCOMPARE(runScript("cat /etc/ssl/certs/ca-bundle.crt"), bundle.isEmpty() ? 1 : 0);
    QCOMPARE(m_inBox->output(), bundle);
}

void TestInBox::whatIsThereIsNeverOverwritten()
{
    QVERIFY(writeFile(m_box + "/etc/hosts", "127.0.0.1 of-the-box\n"));
    QVERIFY(writeFile(m_box + "/etc/ssl/certs/ca-bundle.crt", "own certificates\n"));
    QCOMPARE(run({"true"}), 0);
    // The box has an "etc", so it has no need for the settings of a new one.
    QVERIFY(!QFile::exists(m_box + "/etc/settings.xml"));

    const QString manifest = m_box + "/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
    QVERIFY(writeFile(manifest, "own manifest\n"));
    QVERIFY(QFile::remove(m_box + "/usr/local/bin/custom/hello"));
    QCOMPARE(runScript("cat /etc/hosts /etc/ssl/certs/ca-bundle.crt"), 0);
    QCOMPARE(m_inBox->output(), QByteArray("127.0.0.1 of-the-box\nown certificates\n"));
    QCOMPARE(contentOf(manifest), QByteArray("own manifest\n"));
    QVERIFY(!QFile::exists(m_box + "/usr/local/bin/custom/hello"));
}

void TestInBox::linksToThePcsFilesFollowThePc()
{
    QVERIFY(QDir().mkpath(m_box + "/etc"));
    QVERIFY(QFile::link("/pc/elsewhere", m_box + "/etc/passwd"));
    QVERIFY(QFile::link("/pc/etc/own", m_box + "/etc/own"));
    QCOMPARE(run({"cat", "/etc/passwd"}), 0);
    QCOMPARE(m_inBox->output(), contentOf("/etc/passwd"));
    QCOMPARE(QFileInfo(m_box + "/etc/own").symLinkTarget(), QString("/pc/etc/own"));
}

void TestInBox::anEditFromOutsideIsSeenAndWakesAFileWatch()
{
    QCOMPARE(run({"true"}), 0);
    QVERIFY(writeFile(m_box + "/etc/watched", "old"));
    m_inBox->setArguments({m_box, "--", QCoreApplication::applicationFilePath(), watchArgument, "/etc/watched"});
    m_inBox->start();
    QTRY_COMPARE(m_inBox->output(), QByteArray("watching\n"));
    QVERIFY(writeFile(m_box + "/etc/watched", "new"));
    QCOMPARE(m_inBox->finish(), 0);
    QCOMPARE(m_inBox->output(), QByteArray("watching\nchanged to new\n"));
}

void TestInBox::commandAndFolderBehindAPlaceAreFoundBelowPc()
{
    const QString command = m_folder->filePath("command");
    QVERIFY(writeFile(command, "#!/bin/sh\necho \"$0 $1\"; pwd\n"));
    QVERIFY(QFile::setPermissions(command, QFile::permissions(command) | QFile::ExeOwner));
    m_inBox->setWorkingDirectory(m_folder->path());
    QCOMPARE(run({command, "argument"}), 0);
    QCOMPARE(m_inBox->output(), QString("/pc%1 argument\n/pc%2\n").arg(command, m_folder->path()).toUtf8());
    QCOMPARE(run({"./command", "relative"}), 0);
    QCOMPARE(m_inBox->output(), QString("./command relative\n/pc%1\n").arg(m_folder->path()).toUtf8());
    // One that only the box has.
    QCOMPARE(run({"/usr/local/bin/custom/hello"}), 0);
}

void TestInBox::environmentPathsBehindAPlaceAreFoundBelowPc()
{
    m_inBox->setVariable("XAUTHORITY", "/tmp/authority");
    m_inBox->setVariable("LD_LIBRARY_PATH", "/tmp/one:/opt/two");
    m_inBox->setVariable("XDG_CONFIG_HOME", "/root/.config");
    QCOMPARE(runScript("echo $HOME $XAUTHORITY $LD_LIBRARY_PATH ${XDG_CONFIG_HOME-unset}"), 0);
    QCOMPARE(m_inBox->output(), QByteArray("/home/user /pc/tmp/authority /pc/tmp/one:/opt/two unset\n"));
}

void TestInBox::textsAreUtf8WhateverTheCallersLocale()
{
    m_inBox->setVariable("LC_ALL", "POSIX");
    QCOMPARE(run({"locale", "charmap"}), 0);
    QCOMPARE(m_inBox->output(), QByteArray("UTF-8\n"));
}

void TestInBox::theCommandsExitStatusPassesThrough_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("status");
    QTest::newRow("done") << "exit 0" << 0;
    QTest::newRow("failed") << "exit 7" << 7;
    QTest::newRow("largest") << "exit 255" << 255;
    QTest::newRow("killed") << "kill -KILL $$" << 128 + SIGKILL;
}

void TestInBox::theCommandsExitStatusPassesThrough()
{
    QFETCH(QString, script);
    QTEST(runScript(script), "status");
}

void TestInBox::theCommandDiesWithItsParent()
{
    const QString seconds = QString("86400.%1").arg(getpid()); // nobody else sleeps that long
    m_inBox->setArguments({m_box, "--", "sleep", seconds});
    m_inBox->start();
    const QByteArray commandLine = QString("sleep\n%1\n").arg(seconds).replace('\n', QChar('\0')).toLatin1();
    QTRY_VERIFY(isRunning(commandLine));
    m_inBox->kill();
    QTRY_VERIFY(!isRunning(commandLine));
}

void TestInBox::commandsThatEndAComputerDoNothing_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"reboot", "halt", "poweroff", "shutdown", "systemctl", "telinit", "init"})
        QTest::newRow(name) << QString(name);
}

void TestInBox::commandsThatEndAComputerDoNothing()
{
    QFETCH(QString, name);
    QStringList paths = {"/box/bin/" + name};
    for (const char *folder : {"/bin/", "/sbin/", "/usr/bin/", "/usr/sbin/"}) {
        if (QFile::exists(folder + name))
            paths << folder + name << "/pc" + QString(folder) + name;
    }
    // Never to be run unless it is ours.
    const QString script = "for path; do cmp \"$path\" /box/bin/reboot || exit 99; done\n"
                           "for path; do \"$path\" now && exit 98; done\n"
                           "command -v \"${1##*/}\"";
    QVERIFY2(runScript(script, paths) == 0, m_inBox->errors().constData());
    const char *reason = name == "reboot" ? "no desk box is running here" : "a box has no such command";
    QCOMPARE(m_inBox->errors(), QString("%1: %2\n").arg(name, reason).repeated(paths.size()).toUtf8());
    QCOMPARE(m_inBox->output(), paths.first().toUtf8() + '\n');
}

void TestInBox::noProcessMayRebootThePc()
{
    QCOMPARE(runScript("grep -E '^(CapPrm|CapEff|NoNewPrivs):' /proc/self/status; readlink /proc/self/ns/pid"), 0);
    const QList<QByteArray> lines = m_inBox->output().trimmed().split('\n');
    QCOMPARE(lines.size(), 4);
    const quint64 mayReboot = 1 << 22;
    for (int i = 0; i < 2; ++i)
        QCOMPARE(lines[i].mid(8).trimmed().toULongLong(nullptr, 16) & mayReboot, quint64(0));
    QCOMPARE(lines[2].simplified(), QByteArray("NoNewPrivs: 1"));
    QVERIFY(lines[3] != QFileInfo("/proc/self/ns/pid").symLinkTarget().section('/', -1).toUtf8());
}

void TestInBox::rebootTellsTheDeskBox()
{
    QCOMPARE(runScript("trap 'echo restarted' HUP; KAVRO_BOX_PID=$$ reboot; echo asked"), 0);
    QCOMPARE(m_inBox->output(), QByteArray("restarted\nasked\n"));
}

void TestInBox::oneBoxRunsInsideAnother()
{
    const QString script = "pwd; cat /etc/hosts; echo x > /etc/inner-probe";
    m_inBox->setWorkingDirectory(m_folder->path());
    QCOMPARE(run({"/pc" + Program::inBuildTree(inBox), "/home/user/inner", "--", "sh", "-c", script}), 0);
    QCOMPARE(m_inBox->output(), QByteArray("/pc/pc") + m_folder->path().toUtf8() + '\n' + contentOf("/etc/hosts"));
    QVERIFY(QFile::exists(m_box + "/home/user/inner/etc/inner-probe"));
}

void TestInBox::anOrdinaryUserHasABoxToo()
{
    // Installed where everybody can read it.
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    const QString copy = m_folder->filePath("installed");
    const QString script = "mkdir -p \"$2/libexec\" \"$2/share/kavro\"; cp -r \"$1/libexec/kavro\" \"$2/libexec\"; "
                           "cp -rL \"$1/share/kavro/box\" \"$2/share/kavro\"; chmod -R a+rX \"$2\"";
    QProcess install;
    install.start("sh", {"-euc", script, "sh", Program::inBuildTree("."), copy});
    QVERIFY(install.waitForFinished());
    QCOMPARE(install.exitCode(), 0);

    QStringList command = {copy + "/libexec/kavro/in-box", m_box, "--", "sh", "-c", "id -u; cat /etc/settings.xml"};
    const QString nobody = "65534";
    const bool isRoot = geteuid() == 0;
    if (isRoot)
        command = QStringList{"setpriv", "--reuid", nobody, "--regid", nobody, "--clear-groups"} + command;
    Program program(".");
    program.setProgram(command.takeFirst());
    QCOMPARE(program.run(command), 0);
    const QByteArray user = isRoot ? nobody.toLatin1() : QByteArray::number(geteuid());
    QVERIFY(program.output().startsWith(user + "\n<?xml"));
}

void TestInBox::whatIsMissingIsSaidInOneLine_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("no bubblewrap") << "box"
                                   << "/nonexistent"
                                   << "bubblewrap is missing; install it: apt-get install bubblewrap";
    QTest::newRow("no namespaces")
        << "box"
        << "refusing"
        << "bubblewrap gets no namespaces from this kernel (bwrap: No permissions); to allow "
           "them, as root: sysctl -w ";
    QTest::newRow("a file") << "file"
                            << ""
                            << "file is not a directory; choose another one";
    QTest::newRow("nowhere to create it") << "/proc/box"
                                          << ""
                                          << "there can be no box directory /proc/box";
    QTest::newRow("not writable") << "/sys/kernel"
                                  << ""
                                  << "the box directory /sys/kernel cannot be written (";
}

void TestInBox::whatIsMissingIsSaidInOneLine()
{
    QFETCH(QString, box);
    QFETCH(QString, path);
    QFETCH(QString, message);
    QVERIFY(writeFile(m_folder->filePath("file"), "text"));
    const QString refusing = m_folder->filePath("refusing/bwrap");
    QVERIFY(writeFile(refusing, "#!/bin/sh\necho 'bwrap: No permissions' >&2\necho 'and more' >&2\nexit 1\n"));
    QVERIFY(QFile::setPermissions(refusing, QFile::permissions(refusing) | QFile::ExeOwner));

    if (!path.isEmpty())
        m_inBox->setVariable("PATH", QDir(m_folder->path()).absoluteFilePath(path));
    m_box = QDir(m_folder->path()).absoluteFilePath(box);
    QCOMPARE(run({"true"}), 125);
    QVERIFY2(m_inBox->errors().contains(message.toUtf8()), m_inBox->errors().constData());
    QCOMPARE(m_inBox->errors().count('\n'), 1);
}

void TestInBox::aFullDiskIsSaid()
{
    QVERIFY(QDir().mkpath(m_box));
    QProcess program;
    program.start("bwrap",
                  {"--dev-bind", "/", "/", "--size", "32768", "--tmpfs", m_box, Program::inBuildTree(inBox), m_box,
                   "--", "true"});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 125);
    QCOMPARE(
        program.readAllStandardError(),
        QString("in-box: the box directory %1 cannot be written (No space left on device); free some space there or "
                "choose another directory\n")
            .arg(m_box)
            .toUtf8());
}

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], watchArgument) == 0)
        return watch(argc, argv);
    QCoreApplication application(argc, argv);
    TestInBox test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_inbox.moc"
