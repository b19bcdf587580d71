// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "tests/desktop/TestMedia.h"

#include <QImage>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>

#include <linux/landlock.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/personality.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const char inBox[] = "libexec/kavro/in-box";
const char callArgument[] = "--call";
const char secret[] = "a secret of the PC";
const char nobody[] = "65534";
const char socketName[] = "kavro-closedbox-%1";
const long landlockWithScopes = 6;

#ifdef __x86_64__
// As a program of 32 bits asks for it.
int otherWordLengthsProcessId()
{
    int result = 20; // getpid there
    asm volatile("int $0x80" : "+a"(result) : : "memory", "r8", "r9", "r10", "r11");
    return result;
}
#endif

long cloneWith(unsigned long flags)
{
    const long process = syscall(SYS_clone, flags | SIGCHLD, nullptr, nullptr, nullptr, nullptr);
    if (process == 0)
        _exit(0);
    return process;
}

// System calls that a box has no use for, as "--call NAME" makes them. Each returns 0 or an errno.
int call(const QString &name)
{
    const auto errorOf = [](long result) { return result < 0 ? errno : 0; };
    const std::map<QString, std::function<int()>> calls = {
        {"unshare", [&] { return errorOf(unshare(CLONE_NEWUSER)); }},
        {"setns", [&] { return errorOf(syscall(SYS_setns, 0, 0)); }},
        {"mount", [&] { return errorOf(mount("none", "/mnt/stb", "tmpfs", 0, nullptr)); }},
        {"chroot", [&] { return errorOf(chroot("/mnt/stb")); }},
        {"clone", [&] { return errorOf(cloneWith(CLONE_NEWUSER)); }},
        {"clone3", [&] { return errorOf(syscall(SYS_clone3, nullptr, 0)); }},
        {"personality", [&] { return errorOf(syscall(SYS_personality, ADDR_NO_RANDOMIZE)); }},
        {"TIOCSTI", [&] { return errorOf(syscall(SYS_ioctl, STDIN_FILENO, TIOCSTI, "x")); }},
        {"TIOCSTI in a larger number",
         [&] { return errorOf(syscall(SYS_ioctl, STDIN_FILENO, 1L << 32 | TIOCSTI, "x")); }},
        {"TIOCLINUX", [&] { return errorOf(syscall(SYS_ioctl, STDIN_FILENO, TIOCLINUX, "x")); }},
        {"ptrace", [&] { return errorOf(ptrace(PTRACE_TRACEME, 0, 0, 0)); }},
        {"add_key", [&] { return errorOf(syscall(SYS_add_key, "user", "name", "x", 1, -3)); }},
        {"keyctl", [&] { return errorOf(syscall(SYS_keyctl, 0, -3, 0)); }},
        {"bpf", [&] { return errorOf(syscall(SYS_bpf, 0, nullptr, 0)); }},
        {"perf_event_open", [&] { return errorOf(syscall(SYS_perf_event_open, nullptr, 0, -1, -1, 0)); }},
        {"userfaultfd", [&] { return errorOf(syscall(SYS_userfaultfd, 0)); }},
        {"io_uring_setup", [&] { return errorOf(syscall(SYS_io_uring_setup, 1, nullptr)); }},
#ifdef __x86_64__
        {"other word length", [] { return int(otherWordLengthsProcessId() != getpid()); }},
#endif
        {"AF_PACKET", [&] { return errorOf(socket(AF_PACKET, SOCK_RAW, 0)); }},
        {"AF_VSOCK", [&] { return errorOf(socket(AF_VSOCK, SOCK_STREAM, 0)); }},
        {"AF_ALG", [&] { return errorOf(socket(AF_ALG, SOCK_SEQPACKET, 0)); }},
        {"AF_BLUETOOTH", [&] { return errorOf(socket(AF_BLUETOOTH, SOCK_RAW, 1)); }},
    };
    return calls.at(name)();
}

bool hasLandlockWithScopes()
{
    return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= landlockWithScopes;
}

sockaddr_un abstractAddress(const QByteArray &name, socklen_t *length)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, name.constData(), size_t(name.size()));
    *length = socklen_t(offsetof(sockaddr_un, sun_path) + 1 + size_t(name.size()));
    return address;
}

int connectTo(const QByteArray &name)
{
    socklen_t length = 0;
    const sockaddr_un address = abstractAddress(name, &length);
    const int end = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return connect(end, reinterpret_cast<const sockaddr *>(&address), length) == 0 ? 0 : errno;
}

} // namespace

/// What pages, and programs that they start, may not reach of the PC, tried as an attacker would.
class TestClosedBox : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void aPageReadsFilesOfTheBoxAlone_data();
    void aPageReadsFilesOfTheBoxAlone();
    void aPageWritesNoFiles_data();
    void aPageWritesNoFiles();
    void aScriptOfTheBoxSeesTheBoxAlone_data();
    void aScriptOfTheBoxSeesTheBoxAlone();
    void noProgramReachesThePc_data();
    void noProgramReachesThePc();
    void systemCallsThatABoxDoesNotNeedFail_data();
    void systemCallsThatABoxDoesNotNeedFail();
    void programsOfTheOtherWordLengthRun();
    void abstractSocketsAreOutOfReach();
    void signalsReachNoProgramOutsideOfIt();
    void ofTheSessionsSocketsThereAreDisplayAndSound_data();
    void ofTheSessionsSocketsThereAreDisplayAndSound();

private:
    void addUsers() const;
    void install();
    void writeSecrets(const QString &folder, const QByteArray &name) const;
    int runAs(const QString &user, const QString &program, const QStringList &arguments);
    QMap<QString, QByteArray> outside() const;

    QTemporaryDir m_installed;
    QScopedPointer<QTemporaryDir> m_pc; // a folder outside all places of the box
    QByteArray m_film;
};

// The superuser runs the tests as an ordinary user as well.
void TestClosedBox::addUsers() const
{
    QTest::addColumn<QString>("user");
    QTest::newRow("as the caller") << QString();
    if (geteuid() == 0)
        QTest::newRow("as an ordinary user") << QString(nobody);
}

// Where everybody can read it.
void TestClosedBox::install()
{
    const QString script =
        "mkdir -p \"$2/bin\" \"$2/lib\" \"$2/libexec\" \"$2/share/kavro\"; cp \"$1\"/bin/kavro-* "
        "\"$2/bin\"; cp -r \"$1/lib/kavro\" \"$2/lib\"; cp -r \"$1/libexec/kavro\" \"$2/libexec\"; "
        "cp -rL \"$1/share/kavro/box\" \"$2/share/kavro\"; cp \"$3\" \"$2/bin\"; chmod -R a+rX \"$2\"";
    QProcess process;
    process.start(
        "sh",
        {"-euc", script, "sh", Program::inBuildTree("."), m_installed.path(), QCoreApplication::applicationFilePath()});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
}

void TestClosedBox::initTestCase()
{
    install();
    const QTemporaryDir folder;
    QVERIFY(TestMedia::makeBars(folder.filePath("bars.ts"), 2));
    m_film = contentOf(folder.filePath("bars.ts"));
}

void TestClosedBox::init()
{
    setUp();
    m_pc.reset(new QTemporaryDir("/var/tmp/tst_closedbox-XXXXXX"));
    QVERIFY(m_pc->isValid());
    for (const QString &folder : {m_folder->path(), m_pc->path()})
        QVERIFY(QFile::setPermissions(folder, QFile::Permissions(0x7777)));
    writeSecrets(m_pc->path(), "file");
}

void TestClosedBox::writeSecrets(const QString &folder, const QByteArray &name) const
{
    const QString file = folder + '/' + name;
    const QByteArray text = secret;
    QVERIFY(writeFile(file + ".txt", text));
    QVERIFY(writeFile(file + ".html", "<body>" + text + "</body>"));
    QVERIFY(writeFile(file + ".xml", "<r>" + text + "</r>"));
    QVERIFY(writeFile(file + ".js", "/* " + text + " */"));
    QVERIFY(writeFile(file + ".css", "p { content: '" + text + "' }"));
    QVERIFY(writeFile(file + ".ts", m_film));
    QVERIFY(writeFile(file + ".srt", "1\n00:00:00,000 --> 00:00:09,000\n" + text + "\n"));
    QImage picture(2, 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(file + ".png"));
}

int TestClosedBox::runAs(const QString &user, const QString &program, const QStringList &arguments)
{
    QStringList command = {m_installed.filePath(program)};
    if (!user.isEmpty())
        command = QStringList{"setpriv", "--reuid", user, "--regid", user, "--clear-groups"} + command;
    m_program->setProgram(command.takeFirst());
    return m_program->run(command + arguments);
}

// Each file outside the box, with what it holds.
QMap<QString, QByteArray> TestClosedBox::outside() const
{
    QMap<QString, QByteArray> files;
    for (const QString &folder : {m_pc->path(), m_folder->path(), m_installed.path()}) {
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        QDirIterator entries(folder, all, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString entry = entries.next();
            if (!entry.startsWith(m_box))
                files[entry] = entries.fileInfo().isFile() ? contentOf(entry) : QByteArray();
        }
    }
    return files;
}

void TestClosedBox::aPageReadsFilesOfTheBoxAlone_data()
{
    addUsers();
}

// The box's own files are read to see that the reading works.
void TestClosedBox::aPageReadsFilesOfTheBoxAlone()
{
    QFETCH(QString, user);
    const QMap<QString, QByteArray> before = outside();
    const QString own = "/mnt/stb/own/file";
    const QString pc = m_pc->filePath("file");
    const QByteArray readers = contentOf(QCoreApplication::applicationDirPath() + "/readers.js");
    QCOMPARE(runAs(user, inBox, {m_box}), 0);
    writeSecrets(m_box + "/mnt/stb/own", "file");
    QVERIFY(QFile::link(m_pc->path(), m_box + "/mnt/stb/link"));
    const QStringList ways = {
        "/pc" + pc, pc, "/mnt/stb/link/file", "/proc/self/root" + pc, "/proc/1/root" + pc, "/proc/self/cwd/../.." + pc};
    QStringList redirected = ways + QStringList{own};
    for (const QString &file : qAsConst(redirected)) {
        m_server->redirect("/to?file://" + file.toUtf8() + ".txt", QUrl("file://" + file + ".txt"));
        m_server->serve("/list?file://" + file.toUtf8() + ".m3u8",
                        HttpServer::Page{"#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:2,\nfile://" + file.toUtf8()
                                             + ".ts\n#EXT-X-ENDLIST\n",
                                         "application/vnd.apple.mpegurl"});
    }
    const QByteArray files = "['" + redirected.join("', '").toUtf8() + "']";
    m_server->serve("/", page(readers + "onload = function () { readAll(" + files + "); };"));
    QCOMPARE(runAs(user, "bin/kavro-box", {"--headless", "--engine", "pc", "--box", m_box, m_server->url().toString()}),
             0);

    QStringList got = told();
    got.sort();
    QStringList wanted;
    // What no page may do even with files of the box is no proof here.
    const QStringList refused = {"redirect", "playlist", "stream of an address", "listing"};
    for (const char *reader :
         {"film", "frame", "image", "listing", "object", "older listing", "playlist", "redirect", "request", "script",
          "stream", "stream of an address", "style", "subtitles", "transform"}) {
        for (const QString &file : qAsConst(redirected)) {
            const bool isRead = file == own && !refused.contains(reader);
            wanted << QString("%1 %2 %3").arg(reader, file, isRead ? "read" : "nothing");
        }
    }
    wanted.sort();
    QCOMPARE(got, wanted);
    QCOMPARE(outside(), before);
}

void TestClosedBox::aPageWritesNoFiles_data()
{
    addUsers();
}

void TestClosedBox::aPageWritesNoFiles()
{
    QFETCH(QString, user);
    QCOMPARE(runAs(user, inBox, {m_box}), 0);
    QVERIFY(writeFile(m_box + "/mnt/stb/own.txt", "kept"));
    const QString script = m_box + "/usr/local/bin/custom/hello";
    const QString manifest = m_box + "/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
    const QByteArray scriptBefore = contentOf(script);
    QVERIFY(QFile::link(m_pc->path(), m_box + "/mnt/stb/link"));
    const QMap<QString, QByteArray> before = outside();
    const QString pc = m_pc->path();
    const QStringList targets = {"/mnt/stb/own.txt",
                                 "/mnt/stb/new.txt",
                                 "/usr/local/bin/custom/hello",
                                 "/etc/passwd",
                                 "/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml",
                                 pc + "/file.txt",
                                 pc + "/new.txt",
                                 "/pc" + pc + "/file.txt",
                                 "/proc/1/root" + pc + "/file.txt"};
    for (const QString &target : targets) {
        for (const int status : {301, 302, 303, 307, 308})
            m_server->redirect('/' + QByteArray::number(status) + target.toUtf8(), QUrl("file://" + target), status);
    }
    m_server->serve("/",
                    page(R"(
function write(method, address) {
    var request = new XMLHttpRequest();
    try { request.open(method, address, false); request.send('#!/bin/sh\necho written'); } catch (error) { }
}
onload = function () {
    var targets = ['%1'], statuses = [301, 302, 303, 307, 308];
    for (var i = 0; i < targets.length; i++) {
        write('PUT', 'file://' + targets[i]);
        write('POST', 'file://' + targets[i]);
        write('DELETE', 'file://' + targets[i]);
        for (var j = 0; j < statuses.length; j++) write('PUT', '/' + statuses[j] + targets[i]);
    }
    var names = ['link/record.ts', '../..%2/record.ts', '%2/record.ts', 'link/file.ts'];
    for (i = 0; i < names.length; i++) StbPVR.AddRecord(location.href, names[i], 0, 5);
    tell(StbDisplay.ExecBlocking('hello', '').stdout.join());
    leave(1000);
};)")
                        .replace("%1", targets.join("', '").toUtf8())
                        .replace("%2", pc.toUtf8()));
    QCOMPARE(runAs(user, "bin/kavro-box", {"--headless", "--box", m_box, m_server->url().toString()}), 0);
    QCOMPARE(told().size(), 1);
    QVERIFY2(told().constFirst().startsWith("Hello from the box."), qPrintable(told().constFirst()));
    QCOMPARE(contentOf(script), scriptBefore);
    QVERIFY(contentOf(manifest).contains("homepage"));
    QCOMPARE(contentOf(m_box + "/mnt/stb/own.txt"), QByteArray("kept"));
    QVERIFY(!QFile::exists(m_box + "/mnt/stb/new.txt"));
    QCOMPARE(outside(), before);
}

void TestClosedBox::aScriptOfTheBoxSeesTheBoxAlone_data()
{
    addUsers();
}

void TestClosedBox::aScriptOfTheBoxSeesTheBoxAlone()
{
    QFETCH(QString, user);
    QCOMPARE(runAs(user, inBox, {m_box}), 0);
    const QString script = m_box + "/usr/local/bin/custom/look";
    QVERIFY(writeFile(script, R"(#!/bin/sh
cat /proc/*/environ 2> /dev/null | tr '\0' '\n' | grep -c SECRET
cat /proc/*/cmdline | tr '\0' '\n' | grep -c -e "^--.*$1"
ls -l /proc/self/fd | grep -c "$1"
for process in /proc/[0-9]*; do cat "$process/root$1/file.txt" "$process/cwd/../..$1/file.txt"; done 2> /dev/null
echo changed > /usr/local/bin/custom/hello || echo read-only
echo changed > /sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml || echo read-only
kill -0 "$2" 2> /dev/null || echo nobody
)"));
    QVERIFY(QFile::setPermissions(script, QFile::Permissions(0x7755)));
    m_server->serve("/",
                    page(QString("onload = function () { tell(StbDisplay.ExecBlocking('look', '%1 %2').stdout.join()); "
                                 "leave(); };")
                             .arg(m_pc->path(), QString::number(getpid()))
                             .toUtf8()));
    m_program->setVariable("SECRET_TOKEN", secret);
    const QString picture = m_folder->filePath("picture.png");
    const QStringList arguments = {"--headless", "--box", m_box, "--screenshot", picture, m_server->url().toString()};
    QCOMPARE(runAs(user, "bin/kavro-box", arguments), 0);
    QCOMPARE(told(), QStringList("0,0,0,read-only,read-only,nobody"));
    QVERIFY(!QImage(picture).isNull());
}

void TestClosedBox::noProgramReachesThePc_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("script");
    QStringList users = {QString()};
    if (geteuid() == 0)
        users << nobody;
    for (const QString &user : qAsConst(users)) {
        const auto row = [&](const char *name, const QString &script) {
            QTest::addRow("%s%s", name, user.isEmpty() ? "" : ", as an ordinary user") << user << script;
        };
        row("a file", "cat \"$1/file.txt\" || cat \"/pc$1/file.txt\"");
        row("folders", "ls -d /pc /home/*/../../root /run /var /srv /opt /media /boot 2>/dev/null | grep .");
        row("processes' roots", "cat /proc/[0-9]*/root\"$1/file.txt\"");
        row("processes' folders", "cat /proc/[0-9]*/cwd/../../../\"$1/file.txt\"");
        row("processes' files", "ls -l /proc/[0-9]*/fd | grep -F \"$1\"");
        row("processes", "kill -0 \"$2\"");
        row("disks", "ls /dev/sd* /dev/vd* /dev/nvme* /dev/mem /dev/dm-*; mknod /tmp/disk b 254 0 && cat /tmp/disk");
        row("block devices by number", "mknod /tmp/disk b 254 0");
        row("the kernel's memory", "head -c 1 /dev/core || head -c 1 /proc/kcore || head -c 1 /proc/kmsg");
        row("the kernel's settings",
            "test -w /proc/sys/kernel/core_pattern || test -w /proc/sysrq-trigger || test -w "
            "/proc/sys/kernel/modprobe");
        row("new namespaces", "unshare --user true || unshare --mount true");
        row("mounts", "mount -t tmpfs none /mnt/stb || mount --bind / /mnt/stb");
        row("another user", "chown 1 /tmp || setpriv --reuid 1 true");
        row("programs", "touch /usr/bin/probe /usr/local/bin/custom/probe /usr/local/lib/probe /box/bin/probe");
        row("passwords and keys", "cat /etc/shadow || cat /etc/ssh/ssh_host_rsa_key || ls /etc/ssl/private");
        row("hardware", "ls /sys/class || ls /sys/devices");
    }
}

void TestClosedBox::noProgramReachesThePc()
{
    QFETCH(QString, user);
    QFETCH(QString, script);
    const QMap<QString, QByteArray> before = outside();
    const QString all = "{ " + script + "; } 2>/dev/null && exit 1; exit 0";
    QVERIFY2(runAs(user, inBox, {m_box, "--", "sh", "-c", all, "sh", m_pc->path(), QString::number(getpid())}) == 0,
             m_program->output() + m_program->errors());
    QCOMPARE(outside(), before);
}

void TestClosedBox::systemCallsThatABoxDoesNotNeedFail_data()
{
    QTest::addColumn<int>("error");
    for (const char *name :
         {"unshare", "setns", "mount", "chroot", "clone", "personality", "ptrace", "add_key", "keyctl", "bpf",
          "TIOCSTI", "TIOCSTI in a larger number", "TIOCLINUX", "perf_event_open", "userfaultfd", "io_uring_setup"})
        QTest::newRow(name) << EPERM;
    QTest::newRow("clone3") << ENOSYS;
    for (const char *name : {"AF_PACKET", "AF_VSOCK", "AF_ALG", "AF_BLUETOOTH"})
        QTest::newRow(name) << EAFNOSUPPORT;
}

void TestClosedBox::systemCallsThatABoxDoesNotNeedFail()
{
    QFETCH(int, error);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    if (QByteArrayList{"personality", "ptrace"}.contains(QTest::currentDataTag()))
        QSKIP("The sanitizers need it, and have it.");
#endif
    const QString program = m_installed.filePath("bin/tst_closedbox");
    QCOMPARE(
        runAs({}, inBox, {"--share", m_installed.path(), m_box, "--", program, callArgument, QTest::currentDataTag()}),
        error);
}

// Where the PC runs them.
void TestClosedBox::programsOfTheOtherWordLengthRun()
{
#ifdef __x86_64__
    const int onThePc = QProcess::execute(QCoreApplication::applicationFilePath(), {callArgument, "other word length"});
    const QString program = m_installed.filePath("bin/tst_closedbox");
    QCOMPARE(runAs({}, inBox, {"--share", m_installed.path(), m_box, "--", program, callArgument, "other word length"}),
             onThePc);
#else
    QSKIP("Only x86-64 has instructions for calls of the other word length.");
#endif
}

// Of those outside, the one that has set up the box is in sight.
void TestClosedBox::signalsReachNoProgramOutsideOfIt()
{
    if (!hasLandlockWithScopes())
        QSKIP("This kernel is older than 6.12 or has no Landlock; nothing else keeps a box from that program.");
    QCOMPARE(runAs({}, inBox, {m_box, "--", "sh", "-c", "test -d /proc/1 && kill -0 1"}), 1);
    QVERIFY2(m_program->errors().contains("not permitted"), m_program->errors().constData());
}

void TestClosedBox::abstractSocketsAreOutOfReach()
{
    if (!hasLandlockWithScopes())
        QSKIP("This kernel is older than 6.12 or has no Landlock; nothing else keeps a box from abstract sockets.");
    const QByteArray name = QString(socketName).arg(getpid()).toLatin1();
    socklen_t length = 0;
    const sockaddr_un address = abstractAddress(name, &length);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    QCOMPARE(bind(listener, reinterpret_cast<const sockaddr *>(&address), length), 0);
    QCOMPARE(listen(listener, 1), 0);
    QCOMPARE(connectTo(name), 0);
    const QString program = m_installed.filePath("bin/tst_closedbox");
    QCOMPARE(runAs({}, inBox, {"--share", m_installed.path(), m_box, "--", program, callArgument, '@' + name}), EPERM);
    close(listener);
}

void TestClosedBox::ofTheSessionsSocketsThereAreDisplayAndSound_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QByteArray>("sockets");
    const QByteArray sound = "./pipewire-0\n./pulse/native\n";
    QTest::newRow("any") << QString() << sound + "./wayland-0\n";
    QTest::newRow("wayland") << "wayland" << sound + "./wayland-0\n";
    QTest::newRow("xcb") << "xcb" << sound;
    QTest::newRow("offscreen") << "offscreen" << sound;
}

void TestClosedBox::ofTheSessionsSocketsThereAreDisplayAndSound()
{
    QFETCH(QString, platform);
    QFETCH(QByteArray, sockets);
    const QString session = m_folder->filePath("session");
    std::vector<int> ends;
    for (const char *name : {"bus", "pulse/native", "pipewire-0", "wayland-7", "keyring/control"}) {
        const QByteArray path = QFile::encodeName(session + '/' + name);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        QVERIFY(path.size() < int(sizeof address.sun_path));
        std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
        ends.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        QCOMPARE(bind(ends.back(), reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    }
    m_program->setVariable("XDG_RUNTIME_DIR", session);
    m_program->setVariable("WAYLAND_DISPLAY", "wayland-7");
    m_program->setVariable("QT_QPA_PLATFORM", platform);
    const QString script = "cd $XDG_RUNTIME_DIR && find . ! -type d | LC_ALL=C sort";
    QCOMPARE(runAs({}, inBox, {m_box, "--", "sh", "-c", script}), 0);
    QCOMPARE(m_program->output(), sockets);
    for (const int end : ends)
        close(end);
}

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], callArgument) == 0)
        return argv[2][0] == '@' ? connectTo(argv[2] + 1) : call(argv[2]);
    QGuiApplication application(argc, argv);
    TestClosedBox test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_closedbox.moc"
