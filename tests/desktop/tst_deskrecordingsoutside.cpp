// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/stbapi.h"

#include <QtTest>

namespace {

constexpr char scheduleArgument[] = "schedule";
constexpr char idleArgument[] = "idle";
constexpr int idleTime = 3000; // milliseconds, longer than a program may take to set itself up

// Keeps the library from being left out of a program that calls nothing of it.
[[maybe_unused]] const auto usedFunction = &KVR_AddRecord;

uint32_t soon()
{
    return static_cast<uint32_t>(QDateTime::currentSecsSinceEpoch()) + 1;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// What the library does before anything is called. Each program is a process of its own, which has the library.
class TestDeskRecordingsOutside : public QObject
{
    Q_OBJECT

private slots:
    void aScheduleIsWorkedOnInABoxOnly();

private:
    /// What a program writes to its standard output.
    static QByteArray output(const QString &program, const QStringList &arguments);
    static QStringList inBox(const QString &box, const QString &argument);
};

QByteArray TestDeskRecordingsOutside::output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        qWarning() << program << arguments << process.errorString() << process.exitCode();
    return process.readAllStandardOutput().trimmed();
}

QStringList TestDeskRecordingsOutside::inBox(const QString &box, const QString &argument)
{
    return {"--share",
            QDir::cleanPath(QCoreApplication::applicationDirPath() + "/.."),
            box,
            "--",
            QCoreApplication::applicationFilePath(),
            argument};
}

void TestDeskRecordingsOutside::aScheduleIsWorkedOnInABoxOnly()
{
    const QTemporaryDir folder;
    const QString box = folder.filePath("box");
    const QString tree = QDir::cleanPath(QCoreApplication::applicationDirPath() + "/..");
    const QString inBoxProgram = tree + "/libexec/kavro/in-box";
    const QString file = box + "/home/user/config/records.sqlite";

    const QByteArray threads = output(inBoxProgram, inBox(box, idleArgument));
    QVERIFY(threads.toInt() >= 1);
    QVERIFY(!QFile::exists(file));

    QCOMPARE(output(inBoxProgram, inBox(box, scheduleArgument)), QByteArray("1"));
    const QByteArray schedule = contentOf(file) + contentOf(file + "-wal");
    QVERIFY(!schedule.isEmpty());
    const QStringList outside = {"--dev-bind",
                                 "/",
                                 "/",
                                 "--tmpfs",
                                 "/home",
                                 "--bind",
                                 box + "/home/user",
                                 "/home/user",
                                 "--tmpfs",
                                 "/mnt",
                                 "--bind",
                                 box + "/mnt/stb",
                                 "/mnt/stb",
                                 QCoreApplication::applicationFilePath(),
                                 idleArgument};
    QCOMPARE(output("bwrap", outside), threads);
    QCOMPARE(contentOf(file) + contentOf(file + "-wal"), schedule);
    QCOMPARE(QDir(box + "/mnt/stb").entryList(QDir::Files), QStringList());

    QVERIFY(output(inBoxProgram, inBox(box, idleArgument)).toInt() > threads.toInt());
    QCOMPARE(QDir(box + "/mnt/stb").entryList(QDir::Files), QStringList("due.ts"));
}

int main(int argc, char **argv)
{
    const QByteArray role = argc == 2 ? argv[1] : "";
    if (role == scheduleArgument) {
        std::printf("%d\n", KVR_AddRecord("udp://127.0.0.1:45457", "due.ts", soon(), 3600));
        return 0;
    }
    if (role == idleArgument) {
        QTest::qSleep(idleTime);
        std::printf("%d\n", QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
        return 0;
    }
    QCoreApplication application(argc, argv);
    TestDeskRecordingsOutside test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_deskrecordingsoutside.moc"
