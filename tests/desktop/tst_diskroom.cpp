// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/DiskRoom.h"

#include <QStorageInfo>
#include <QTest>

namespace {

constexpr qint64 megabyte = 1024 * 1024;
constexpr qint64 reserve = 256 * megabyte;
constexpr qint64 margin = 64 * megabyte; // what others may use of the disk meanwhile

} // namespace

/// What of a disk downloads may take.
class TestDiskRoom : public QObject
{
    Q_OBJECT

private slots:
    void aDownloadLeavesTheReserve_data();
    void aDownloadLeavesTheReserve();
};

void TestDiskRoom::aDownloadLeavesTheReserve_data()
{
    const qint64 available = QStorageInfo("/tmp").bytesAvailable();
    if (available < 2 * reserve)
        qFatal("This test needs 512 MB of free disk");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<qint64>("largest");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("empty") << 0LL << 10LL << "/tmp" << true;
    QTest::newRow("the largest") << 10LL << 10LL << "/tmp" << true;
    QTest::newRow("larger") << 11LL << 10LL << "/tmp" << false;
    QTest::newRow("beside the reserve") << available - reserve - margin << available << "/tmp" << true;
    QTest::newRow("into the reserve") << available - reserve + margin << available << "/tmp" << false;
    QTest::newRow("into a folder that is not there") << 1LL << 10LL << "/nonexistent" << false;
}

void TestDiskRoom::aDownloadLeavesTheReserve()
{
    QFETCH(qint64, size);
    QFETCH(qint64, largest);
    QFETCH(QString, folder);
    QFETCH(bool, isKept);
    const Desk::Problem problem = Desk::problemOfSize(size, largest, folder.toStdString());
    QCOMPARE(problem.has_value(), !isKept);
    if (problem)
        QCOMPARE(QString::fromStdString(*problem), QString("its %1 bytes are more than this box can keep").arg(size));
}

QTEST_GUILESS_MAIN(TestDiskRoom)

#include "tst_diskroom.moc"
