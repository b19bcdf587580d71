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

bool isRunning(const QByteArray &commandLine)
{
    const QStringList processes = QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs);
    for (const QString &process : processes) {
        if (contentOf("/proc/" + process + "/cmdline") == commandLine)
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
    void ofThePcThereAreItsProgramsAlone();
    void theBoxHasItsOwnUserAndIdentity();
    void aNewBoxHasWorkingDefaults();
    void whatIsThereIsNeverOverwritten();
    void linksToThePcsFilesFollowThePc();
    void linksThatABoxLeavesLeadNowhere_data();
    void linksThatABoxLeavesLeadNowhere();
    void anEditFromOutsideIsSeenAndWakesAFileWatch();
    void aSharedFolderIsAtItsPath_data();
    void aSharedFolderIsAtItsPath();
    void commandsOfASharedFolderRunWhereTheyAreCalled();
    void whatCannotBeSharedIsSaid_data();
    void whatCannotBeSharedIsSaid();
    void aFolderThatTheBoxsOwnHidesCannotBeShared();
    void theEnvironmentIsTheBoxes();
    void descriptorsReachTheCommandIfTheyAreListed();
    void textsAreUtf8WhateverTheCallersLocale();
    void theCommandsExitStatusPassesThrough_data();
    void theCommandsExitStatusPassesThrough();
    void theCommandDiesWithItsParent();
    void commandsThatEndAComputerDoNothing_data();
    void commandsThatEndAComputerDoNothing();
    void noProcessHasPrivileges();
    void rebootTellsTheDeskBox();
    void anOrdinaryUserHasABoxToo();
    void whatIsMissingIsSaidInOneLine_data();
    void whatIsMissingIsSaidInOneLine();
    void aKernelWithoutUserNamespacesIsTold();
    void aFullDiskIsSaid();

private:
    int run(const QStringList &command, const QStringList &options = {});
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

int TestInBox::run(const QStringList &command, const QStringList &options)
{
    return m_inBox->run(options + QStringList{m_box, "--"} + command);
}

int TestInBox::runScript(const QString &script, const QStringList &arguments)
{
    return run(QStringList{"sh", "-euc", script, "sh"} + arguments);
}

void TestInBox::aPlaceOfTheBoxIsAFolderOfItsDirectory_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<bool>("isWritable");
    for (const char *place : {"/etc", "/home/user", "/mnt/stb", "/tmp"})
        QTest::newRow(place) << QString(place) << true;
    for (const char *place : {"/sdk", "/usr/local/bin/custom", "/sdk/qt/STBGUI_PLUGIN/stbbrowser"})
        QTest::newRow(place) << QString(place) << false;
}

void TestInBox::aPlaceOfTheBoxIsAFolderOfItsDirectory()
{
    QFETCH(QString, place);
    QFETCH(bool, isWritable);
    QCOMPARE(run({"true"}), 0);
    QVERIFY(writeFile(m_box + place + "/from-outside", "text\n"));
    // A name that nobody else's file in the PC's own place has.
    const QString probe = place + "/" + QFileInfo(m_folder->path()).fileName() + "-probe";
    QCOMPARE(runScript("cat \"$1/from-outside\"; echo inside > \"$2\" || echo read-only", {place, probe}), 0);
    QCOMPARE(m_inBox->output(), QByteArray(isWritable ? "text\n" : "text\nread-only\n"));
    QCOMPARE(contentOf(m_box + probe), QByteArray(isWritable ? "inside\n" : ""));
    QVERIFY(!QFile::exists(probe));
}

void TestInBox::nothingIsCreatedOnThePc()
{
    const QStringList places = {"/sdk", "/mnt/stb", "/home/user", "/usr/local/bin/custom", "/box"};
    QList<bool> before;
    for (const QString &place : places)
        before << QFile::exists(place);
    QCOMPARE(runScript("ls -d /sdk /mnt/stb /home/user /usr/local/bin/custom /box"), 0);
    for (int i = 0; i < places.size(); ++i)
        QCOMPARE(QFile::exists(places[i]), before[i]);
    // There is nowhere to create it by mistake, either.
    QVERIFY(runScript("echo x > /home/tst_inbox-probe") != 0);
    QVERIFY(!QFile::exists("/home/tst_inbox-probe"));
}

void TestInBox::ofThePcThereAreItsProgramsAlone()
{
    QStringList root = {"box", "dev", "etc", "home", "mnt", "proc", "sdk", "tmp", "usr"};
    for (const char *name : {"bin", "lib", "lib32", "lib64", "libx32", "sbin"}) {
        if (QFile::exists(QString("/") + name))
            root << name;
    }
    root.sort();
    QCOMPARE(runScript("LC_ALL=C ls -A /; echo; ls -A /home /mnt"), 0);
    QCOMPARE(QString(m_inBox->output()), root.join('\n') + "\n\n/home:\nuser\n\n/mnt:\nstb\n");

    for (const char *folder : {"/usr", "/usr/local", "/usr/local/bin"}) {
        QStringList paths;
        const QStringList entries = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        for (const QString &entry : entries)
            paths << QDir(folder).filePath(entry);
        QVERIFY2(runScript("ls -d \"$@\"", paths) == 0, m_inBox->errors().constData());
    }
    QCOMPARE(runScript("for file in /usr/probe /usr/lib/probe /usr/local/probe /usr/local/bin/probe /probe /box/probe; "
                       "do echo x > $file && exit 1; done; exit 0"),
             0);
    // No devices but the ones that all programs need.
    QCOMPARE(runScript("cd /dev; find . ! -type d ! -type l | grep -v '^./snd/\\|^./pts/' | LC_ALL=C sort"), 0);
    QCOMPARE(m_inBox->output(), QByteArray("./full\n./null\n./random\n./tty\n./urandom\n./zero\n"));
}

void TestInBox::theBoxHasItsOwnUserAndIdentity()
{
    QCOMPARE(runScript("id -un; echo ~; cut -d: -f1 /etc/passwd; cat /etc/machine-id; test ! -e /etc/shadow"), 0);
    const QList<QByteArray> lines = m_inBox->output().trimmed().split('\n');
    QCOMPARE(lines.mid(0, 4), QByteArrayList({"user", "/home/user", "user", "nobody"}));
    QCOMPARE(lines.value(4).size(), 32);
    QVERIFY(lines.value(4) != contentOf("/etc/machine-id").trimmed());
    QCOMPARE(run({"cat", "/etc/machine-id"}), 0);
    QCOMPARE(m_inBox->output().trimmed(), lines.value(4));
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
    QCOMPARE(runScript("cat /etc/ssl/certs/00000000.0"), bundle.isEmpty() ? 1 : 0);
    QCOMPARE(m_inBox->output(), bundle);
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
    QVERIFY(QFile::link("/pc/elsewhere", m_box + "/etc/hosts"));
    QVERIFY(QFile::link("/pc/etc/machine-id", m_box + "/etc/machine-id"));
    QVERIFY(QFile::link("/own", m_box + "/etc/own"));
    QCOMPARE(run({"cat", "/etc/hosts"}), 0);
    QCOMPARE(m_inBox->output(), contentOf("/etc/hosts"));
    QCOMPARE(QFileInfo(m_box + "/etc/own").symLinkTarget(), QString("/own"));
    QVERIFY(!QFileInfo(m_box + "/etc/machine-id").isSymLink());
}

void TestInBox::linksThatABoxLeavesLeadNowhere_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<int>("status");
    QTest::newRow("in place of a folder of links") << "/etc/ssl" << 0;
    QTest::newRow("in place of a link") << "/etc/hosts" << 0;
    QTest::newRow("in place of the identity") << "/etc/machine-id" << 0;
    QTest::newRow("in the way of a shared folder") << "/tmp/way" << 125;
}

// What is below the folder is not written at the next start.
void TestInBox::linksThatABoxLeavesLeadNowhere()
{
    QFETCH(QString, link);
    QFETCH(int, status);
    const QTemporaryDir shared("/tmp/way-XXXXXX");
    const QString victim = m_folder->filePath("victim");
    QVERIFY(QDir().mkpath(victim));
    QCOMPARE(run({"true"}), 0);
    if (link == "/tmp/way")
        link = shared.path();
    QProcess::execute("rm", {"-rf", m_box + link});
    QVERIFY(QFile::link(victim, m_box + link));
    QCOMPARE(run({"true"}, {"--share", shared.path()}), status);
    QCOMPARE(QDir(victim).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
    QCOMPARE(QFileInfo(m_box + link).symLinkTarget(), victim);
}

void TestInBox::anEditFromOutsideIsSeenAndWakesAFileWatch()
{
    QCOMPARE(run({"true"}), 0);
    QVERIFY(writeFile(m_box + "/etc/watched", "old"));
    m_inBox->setArguments({"--share", Program::inBuildTree("."), m_box, "--", QCoreApplication::applicationFilePath(),
                           watchArgument, "/etc/watched"});
    m_inBox->start();
    QTRY_COMPARE(m_inBox->output(), QByteArray("watching\n"));
    QVERIFY(writeFile(m_box + "/etc/watched", "new"));
    QCOMPARE(m_inBox->finish(), 0);
    QCOMPARE(m_inBox->output(), QByteArray("watching\nchanged to new\n"));
}

void TestInBox::aSharedFolderIsAtItsPath_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<bool>("isWritable");
    QTest::newRow("to read") << "--share" << false;
    QTest::newRow("to write") << "--share-rw" << true;
}

void TestInBox::aSharedFolderIsAtItsPath()
{
    QFETCH(QString, option);
    QFETCH(bool, isWritable);
    // One below a place of the box's, and one elsewhere.
    const QTemporaryDir elsewhere(QDir::homePath() + "/tst_inbox-XXXXXX");
    for (const QString &folder : {m_folder->filePath("one"), elsewhere.path()}) {
        QVERIFY(writeFile(folder + "/file", "of the PC\n"));
        QVERIFY(writeFile(folder + "/../unshared", "of the PC"));
        const QString script = "cat \"$1/file\"; test ! -e \"$1/../unshared\"; echo new > \"$1/new\" || echo read-only";
        QCOMPARE(run({"sh", "-euc", script, "sh", folder}, {option, folder}), 0);
        QFile::remove(folder + "/../unshared");
        QCOMPARE(m_inBox->output(), QByteArray(isWritable ? "of the PC\n" : "of the PC\nread-only\n"));
        QCOMPARE(contentOf(folder + "/new"), QByteArray(isWritable ? "new\n" : ""));
    }
}

void TestInBox::commandsOfASharedFolderRunWhereTheyAreCalled()
{
    const QStringList share = {"--share", m_folder->path()};
    const QString command = m_folder->filePath("command");
    QVERIFY(writeFile(command, "#!/bin/sh\necho \"$0 $1\"; pwd\n"));
    QVERIFY(QFile::setPermissions(command, QFile::permissions(command) | QFile::ExeOwner));
    m_inBox->setWorkingDirectory(m_folder->path());
    QCOMPARE(run({"./command", "relative"}, share), 0);
    QCOMPARE(m_inBox->output(), QString("./command relative\n%1\n").arg(m_folder->path()).toUtf8());
    m_inBox->setWorkingDirectory("/usr");
    QCOMPARE(run({command, "argument"}, share), 0);
    QCOMPARE(m_inBox->output(), QString("%1 argument\n/home/user\n").arg(command).toUtf8());
    // One that only the box has, and one that nobody has.
    QCOMPARE(run({"/usr/local/bin/custom/hello"}), 0);
    QCOMPARE(run({command}), 127);
    QCOMPARE(m_inBox->errors(), "in-box: " + command.toUtf8() + ": No such file or directory\n");
    // One that is none.
    QCOMPARE(run({"/etc/passwd"}), 126);
    QCOMPARE(m_inBox->errors(), QByteArray("in-box: /etc/passwd: Permission denied\n"));
}

void TestInBox::whatCannotBeSharedIsSaid_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *folder, const QString &message) {
        QTest::newRow(folder) << QString(folder) << message;
    };
    row("/nonexistent", "--share \"/nonexistent\" is not a folder that can be read; name one");
    row("/etc/passwd", "--share \"/etc/passwd\" is not a folder that can be read; name one");
    row("/", "--share / would hide the box's own /etc; name a folder below it");
    row("/usr", "--share /usr would hide the box's own /usr/local/bin/custom; name a folder below it");
    row("/tmp", "--share /tmp would hide the box's own /tmp; name a folder below it");
    row("/proc/self", "lies in the box's own /proc; copy it elsewhere");
    row("/dev/shm", "--share /dev/shm lies in the box's own /dev; copy it elsewhere");
}

void TestInBox::whatCannotBeSharedIsSaid()
{
    QFETCH(QString, folder);
    QFETCH(QString, message);
    QCOMPARE(run({"true"}, {"--share", folder}), 125);
    QVERIFY2(m_inBox->errors().contains(message.toUtf8()), m_inBox->errors().constData());
    QCOMPARE(m_inBox->errors().count('\n'), 1);
}

// A folder that the PC itself need not have, so it has it for this test alone.
void TestInBox::aFolderThatTheBoxsOwnHidesCannotBeShared()
{
    const QString folder = "/usr/local/bin/custom/folder";
    m_inBox->setProgram("bwrap");
    QCOMPARE(m_inBox->run({"--dev-bind", "/", "/", "--tmpfs", "/usr/local/bin", "--dir", folder,
                           Program::inBuildTree(inBox), "--share", folder, m_box, "--", "true"}),
             125);
    QCOMPARE(m_inBox->errors(),
             "in-box: --share " + folder.toUtf8()
                 + " lies in the box's own /usr/local/bin/custom; copy it elsewhere\n");
}

void TestInBox::theEnvironmentIsTheBoxes()
{
    // Of the PC's desktop, which no program of a box reaches.
    for (const char *name : {"QT_IM_MODULE", "QT_ACCESSIBILITY", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"})
        m_inBox->setVariable(name, "1");
    m_inBox->setVariable("SECRET_TOKEN", "of the PC");
    m_inBox->setVariable("XDG_CONFIG_HOME", "/root/.config");
    m_inBox->setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:abstract=/tmp/bus");
    m_inBox->setVariable("QT_LOGGING_RULES", "*=false;a b");
    const QString script =
        "echo $HOME $USER $QT_LOGGING_RULES ${SECRET_TOKEN-} ${XDG_CONFIG_HOME-} ${DBUS_SESSION_BUS_ADDRESS-} "
        "${QT_IM_MODULE-} ${QT_ACCESSIBILITY-} ${QT_LINUX_ACCESSIBILITY_ALWAYS_ON-}; cat /proc/*/environ 2>/dev/null "
        "| tr '\\0' '\\n' | grep -c SECRET; cat /proc/*/cmdline | tr '\\0' '\\n' | grep -c '^--bind'";
    QCOMPARE(run({"sh", "-c", script}), 1);
    QCOMPARE(m_inBox->output(), QByteArray("/home/user user *=false;a b\n0\n0\n"));
}

void TestInBox::descriptorsReachTheCommandIfTheyAreListed()
{
    QVERIFY(writeFile(m_folder->filePath("file"), "open\n"));
    const QString script = "exec 8<\"$1\" 9<\"$1\"; export KAVRO_DESCRIPTORS=9; shift; exec \"$@\"";
    const QString inside = "cat <&9; cat <&8 || echo closed; readlink /proc/1/fd/8 || echo closed there too";
    m_inBox->setProgram("bash");
    QCOMPARE(m_inBox->run({"-c", script, "bash", m_folder->filePath("file"), Program::inBuildTree(inBox), m_box, "--",
                           "bash", "-c", inside}),
             0);
    QCOMPARE(m_inBox->output(), QByteArray("open\nclosed\nclosed there too\n"));
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
    QTRY_VERIFY(isRunning(commandLine)); // itself, and not only what is to start it
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
            paths << folder + name;
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

void TestInBox::noProcessHasPrivileges()
{
    QCOMPARE(runScript("grep -E '^(Cap...|NoNewPrivs|Seccomp):' /proc/self/status; "
                       "for kind in pid user ipc; do readlink /proc/self/ns/$kind; done"),
             0);
    const QList<QByteArray> lines = m_inBox->output().simplified().replace(": ", ":").split(' ');
    const QByteArray none(16, '0');
    QCOMPARE(lines.mid(0, 7),
             QByteArrayList({"CapInh:" + none, "CapPrm:" + none, "CapEff:" + none, "CapBnd:" + none, "CapAmb:" + none,
                             "NoNewPrivs:1", "Seccomp:2"}));
    for (int i = 0; i < 3; ++i) {
        const QString link = QString("/proc/self/ns/") + QStringList{"pid", "user", "ipc"}.at(i);
        QVERIFY(lines.value(7 + i).startsWith(link.section('/', -1).toUtf8()));
        QVERIFY(lines.value(7 + i) != QFileInfo(link).symLinkTarget().section('/', -1).toUtf8());
    }
}

void TestInBox::rebootTellsTheDeskBox()
{
    QCOMPARE(runScript("trap 'echo restarted' HUP; KAVRO_BOX_PID=$$ reboot; echo asked"), 0);
    QCOMPARE(m_inBox->output(), QByteArray("restarted\nasked\n"));
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
        << "bubblewrap gets no namespaces (bwrap: No permissions); if this is a container, start it with "
           "--security-opt seccomp=unconfined ";
    QTest::newRow("a file") << "file"
                            << ""
                            << "file is not a directory; choose another one";
    QTest::newRow("nowhere to create it") << "/proc/box"
                                          << ""
                                          << "there can be no box directory /proc/box";
    QTest::newRow("a file in place of a folder") << "odd"
                                                 << ""
                                                 << "odd/home/user is not a directory; move it away";
    QTest::newRow("a file above a folder") << "odder"
                                           << ""
                                           << "odder cannot be written (";
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
    QVERIFY(writeFile(m_folder->filePath("odd/home/user"), "text"));
    QVERIFY(writeFile(m_folder->filePath("odder/mnt"), "text"));
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

void TestInBox::aKernelWithoutUserNamespacesIsTold()
{
    m_inBox->setProgram("unshare");
    const QString script = "echo 0 > /proc/sys/user/max_user_namespaces && exec \"$@\"";
    QCOMPARE(
        m_inBox->run({"--map-root-user", "sh", "-c", script, "sh", Program::inBuildTree(inBox), m_box, "--", "true"}),
        125);
    QVERIFY2(m_inBox->errors().startsWith("in-box: this kernel gives programs no user namespaces, which a box needs (")
                 && m_inBox->errors().endsWith("; to allow them, as root: sysctl -w user.max_user_namespaces=65536\n"),
             m_inBox->errors().constData());
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
