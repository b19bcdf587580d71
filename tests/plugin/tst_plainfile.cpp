// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "common/other/plainfile.h"
#include "common/other/regularfile.h"
#include "tests/support/MessageLog.h"
#include "tests/support/OddFile.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

int openDescriptors()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

// The box's files as the plugin opens them.
class TestPlainFile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void anOddFileIsNotOpened_data();
    void anOddFileIsNotOpened();
    void aSocketIsNotOpened();
    void whatIsOddIsSaidOnce();
    void aFileIsReadAndWritten();
    void aFileBehindALinkIsOpened();
    void theLargestTextIsReadAndNoLarger();
    void aFileIsClosedWithItsDescriptor();
    void whatCannotBeOpenedNamesTheError_data();
    void whatCannotBeOpenedNamesTheError();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

void TestPlainFile::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_path = m_dir->filePath("file");
}

void TestPlainFile::anOddFileIsNotOpened_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("told"); // nothing, if it is opened
    QTest::addColumn<QString>("error");
    const struct
    {
        const char *name;
        QIODevice::OpenMode mode;
        const char *use;
    } modes[] = {{"read", QIODevice::ReadOnly, "read from"},
                 {"written", QIODevice::WriteOnly, "written to"},
                 {"both", QIODevice::ReadWrite, "written to"},
                 {"both, emptied", QIODevice::ReadWrite | QIODevice::Truncate, "written to"}};
    for (const OddFile::Row &row : OddFile::all) {
        const char *error = row.kind == OddFile::Folder ? "Is a directory"
            : row.kind == OddFile::Gigabyte             ? "File too large"
                                                        : "Invalid argument";
        for (const auto &mode : modes) {
            const bool isEmptied = row.kind == OddFile::Gigabyte
                && (mode.mode == QIODevice::WriteOnly || (mode.mode & QIODevice::Truncate));
            const QString told = isEmptied
                ? QString()
                : QString(" is %1, so nothing is %2 it; put a file of the usual kind there or "
                          "remove it")
                      .arg(row.what, mode.use);
            QTest::addRow("%s, %s", row.name, mode.name) << int(row.kind) << int(mode.mode) << told << QString(error);
        }
    }
}

void TestPlainFile::anOddFileIsNotOpened()
{
    QFETCH(const int, kind);
    QFETCH(const int, mode);
    QFETCH(const QString, told);
    QVERIFY(OddFile::put(m_path, OddFile::Kind(kind)));
    const MessageLog log;
    Common::PlainFile file(m_path);
    QCOMPARE(file.open(QIODevice::OpenMode(mode)), told.isEmpty());
    QCOMPARE(file.isOpen(), told.isEmpty());
    if (told.isEmpty()) {
        QCOMPARE(file.size(), 0LL);
        return;
    }
    QTEST(file.errorString(), "error");
    QCOMPARE(log.warnings(), QStringList(m_path + told));
    QCOMPARE(Common::isOdd(m_path, Common::largestText), true);
}

void TestPlainFile::aSocketIsNotOpened()
{
    const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, qPrintable(m_path), sizeof address.sun_path);
    QCOMPARE(bind(listening, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    const MessageLog log;
    QVERIFY(!Common::PlainFile(m_path).open(QIODevice::ReadOnly));
    close(listening);
    QVERIFY(log.warnings().value(0).startsWith(m_path + " is a socket and not a file"));
}

void TestPlainFile::whatIsOddIsSaidOnce()
{
    const MessageLog log;
    QVERIFY(OddFile::put(m_path, OddFile::Pipe));
    for (int i = 0; i < 10; ++i)
        QVERIFY(!Common::PlainFile(m_path).open(QIODevice::ReadOnly));
    QCOMPARE(log.warnings().size(), 1);
    QVERIFY(OddFile::put(m_path, OddFile::Folder));
    QVERIFY(!Common::PlainFile(m_path).open(QIODevice::ReadOnly));
    QCOMPARE(log.warnings().size(), 2);
}

void TestPlainFile::aFileIsReadAndWritten()
{
    {
        Common::PlainFile file(m_path);
        QVERIFY(!Common::isOdd(m_path, 0));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("first\nsecond\n"), 13LL);
    }
    {
        Common::PlainFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QCOMPARE(file.readLine(), QByteArray("first\n"));
        QCOMPARE(file.size(), 13LL);
        QVERIFY(file.seek(0) && file.resize(3));
        QCOMPARE(file.readAll(), QByteArray("fir"));
        QCOMPARE(file.write("e"), 1LL);
    }
    {
        Common::PlainFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(!file.isSequential());
        QCOMPARE(file.readAll(), QByteArray("fire"));
    }
    {
        Common::PlainFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
        QCOMPARE(file.write("fly"), 3LL);
    }
    QCOMPARE(contentOf(m_path), QByteArray("firefly"));
    QVERIFY(Common::PlainFile(m_path).open(QIODevice::WriteOnly));
    QCOMPARE(contentOf(m_path), QByteArray());
}

void TestPlainFile::aFileBehindALinkIsOpened()
{
    QVERIFY(writeFile(m_path, "text"));
    const QString link = m_dir->filePath("link");
    QVERIFY(QFile::link(m_path, link));
    Common::PlainFile file(link);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("text"));
}

void TestPlainFile::theLargestTextIsReadAndNoLarger()
{
    const MessageLog log;
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(Common::largestText));
    QVERIFY(Common::PlainFile(m_path).open(QIODevice::ReadOnly));
    QVERIFY(file.resize(Common::largestText + 1));
    QVERIFY(Common::PlainFile(m_path).open(QIODevice::ReadOnly, Common::largestText + 1));
    QCOMPARE(log.warnings(), QStringList());
    QVERIFY(!Common::PlainFile(m_path).open(QIODevice::ReadOnly));
    QCOMPARE(log.warnings().size(), 1);
}

void TestPlainFile::aFileIsClosedWithItsDescriptor()
{
    QVERIFY(writeFile(m_path, "text"));
    const QString pipe = m_dir->filePath("pipe");
    QVERIFY(OddFile::put(pipe, OddFile::Pipe));
    const int before = openDescriptors();
    for (int i = 0; i < 10; ++i) {
        Common::PlainFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        file.close();
        file.close();
        QVERIFY(Common::PlainFile(m_path).open(QIODevice::ReadWrite));
        QVERIFY(!Common::PlainFile(pipe).open(QIODevice::ReadOnly));
        QVERIFY(!Common::isOdd(m_path, 10));
    }
    QCOMPARE(openDescriptors(), before);
}

void TestPlainFile::whatCannotBeOpenedNamesTheError_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << "/nonexistent"
                             << "No such file or directory";
    QTest::newRow("below a file") << "/proc/self/status/file"
                                  << "Not a directory";
    QTest::newRow("without a name") << QString() << "No such file or directory";
}

void TestPlainFile::whatCannotBeOpenedNamesTheError()
{
    QFETCH(const QString, path);
    const MessageLog log;
    Common::PlainFile file(path);
    QVERIFY(!file.open(QIODevice::ReadOnly));
    QTEST(file.errorString(), "error");
    QCOMPARE(log.messages().size(), 0);
}

QTEST_GUILESS_MAIN(TestPlainFile)

#include "tst_plainfile.moc"
