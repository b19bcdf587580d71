// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TestMedia.h"
#include "launcher/PageServer.h"
#include "platform/stbapi.h"

#include <QtTest>

namespace {

constexpr char recordArgument[] = "record";
constexpr int diskSize = 300000;

// What this program does inside.
int record(const char *url)
{
    const KVR_ID id = KVR_AddRecord(url, "full.ts", 0, 60);
    int state = KVR_GetRecordStatus(id);
    while (state == KVR_RECORD_SCHEDULED || state == KVR_RECORD_RUNNING) {
        QTest::qSleep(10);
        state = KVR_GetRecordStatus(id);
    }
    return state;
}

} // namespace

/// A recording that the disk has no room for.
class TestDeskRecordingsFullDisk : public QObject
{
    Q_OBJECT

private slots:
    void aFullDiskEndsTheRecording();
};

void TestDeskRecordingsFullDisk::aFullDiskEndsTheRecording()
{
    const QTemporaryDir folder;
    const QString box = folder.filePath("box");
    const QString disk = box + "/mnt/stb";
    QVERIFY(QDir().mkpath(disk));
    QVERIFY(TestMedia::makeBars(folder.filePath("bars.ts"), 5));
    PageServer server;
    QString error;
    QVERIFY2(server.start(folder.path(), 0, &error), qPrintable(error));

    const QString tree = QDir::cleanPath(QCoreApplication::applicationDirPath() + "/..");
    QProcess child;
    child.start("bwrap",
                {"--dev-bind", "/", "/", "--size", QString::number(diskSize), "--tmpfs", disk,
                 tree + "/libexec/kavro/in-box", "--share", tree, box, "--", QCoreApplication::applicationFilePath(),
                 recordArgument, server.address("bars.ts").toEncoded()});
    QVERIFY(child.waitForFinished());
    const QByteArray log = child.readAllStandardError();
    QVERIFY2(child.exitStatus() == QProcess::NormalExit, log);
    QCOMPARE(child.exitCode(), int(KVR_RECORD_FAILED));
    QVERIFY2(log.contains("into full.ts failed: writing: No space left on device"), log);
}

int main(int argc, char **argv)
{
    if (argc == 3 && QByteArray(argv[1]) == recordArgument)
        return record(argv[2]);
    QCoreApplication application(argc, argv);
    TestDeskRecordingsFullDisk test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_deskrecordingsfulldisk.moc"
