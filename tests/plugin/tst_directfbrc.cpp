// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "config/DirectfbrcParser.h"
#include "tests/support/OddFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include <unistd.h>

namespace {

// What a file held each time the parser had the disks written.
struct Watch
{
    QString path;
    QByteArrayList contentsAtSync;
};

Watch &watch()
{
    static Watch watch;
    return watch;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A user without a name, and without the rights of the superuser.

} // namespace

// In the place of the C library's, for the plugin too.
void sync() noexcept
{
    watch().contentsAtSync += contentOf(watch().path);
}

// The plugin's reader and writer of the display mode file, as a launcher that links the plugin uses it.
class TestDirectfbrc : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theFirstModeLineCounts_data();
    void theFirstModeLineCounts();
    void everyModeLineIsRewritten_data();
    void everyModeLineIsRewritten();
    void bytesOfOtherLinesAreKept_data();
    void bytesOfOtherLinesAreKept();
    void nothingReachesTheDiskBeforeWrite();
    void aSetModeIsTheModeWhateverItIs_data();
    void aSetModeIsTheModeWhateverItIs();
    void writingTwiceGivesTheSame();
    void writingOverwritesWhatOthersWroteMeanwhile();
    void theDisksAreWrittenBeforeTheLastOfTheText();
    void aMissingFileIsCreated();
    void whatCannotBeOpenedIsDoneWithout_data();
    void whatCannotBeOpenedIsDoneWithout();
    void aFileWithoutPermissionIsLeftAlone_data();
    void aFileWithoutPermissionIsLeftAlone();
    void anOddFileIsDoneWithout_data();
    void anOddFileIsDoneWithout();
    void aLargeFileIsKept();

private:
    void writeFile(const QByteArray &content);

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

void TestDirectfbrc::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_path = m_dir->filePath("directfbrc");
    watch() = {m_path, {}};
}

void TestDirectfbrc::writeFile(const QByteArray &content)
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

void TestDirectfbrc::theFirstModeLineCounts_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QSize>("mode");
    const QSize none(-1, -1);

    QTest::newRow("plain") << QByteArray("mode=720x576\n") << QSize(720, 576);
    QTest::newRow("no end of line") << QByteArray("mode=720x576") << QSize(720, 576);
    QTest::newRow("among other lines") << QByteArray("# screen\n  mode=720x576  # as the box's\ndepth=32\n")
                                       << QSize(720, 576);
    QTest::newRow("after a tab") << QByteArray("\t mode=1x2\n") << QSize(1, 2);
    QTest::newRow("text right after") << QByteArray("mode=1280x720p60\n") << QSize(1280, 720);
    QTest::newRow("a third number") << QByteArray("mode=1280x720x32\n") << QSize(1280, 720);
    QTest::newRow("lines of another system") << QByteArray("depth=32\r\nmode=1280x720\r\n") << QSize(1280, 720);
    QTest::newRow("two of them") << QByteArray("mode=1x2\nmode=3x4\n") << QSize(1, 2);
    QTest::newRow("leading zeros") << QByteArray("mode=0720x0576\n") << QSize(720, 576);
    QTest::newRow("zeros") << QByteArray("mode=0x0\n") << QSize(0, 0);
    QTest::newRow("the largest") << QByteArray("mode=2147483647x2147483647\n") << QSize(INT_MAX, INT_MAX);
    QTest::newRow("width too large") << QByteArray("mode=2147483648x576\n") << QSize(0, 576);
    QTest::newRow("height too large") << QByteArray("mode=720x99999999999999999999999\n") << QSize(720, 0);
    QTest::newRow("first of them too large") << QByteArray("mode=9999999999x9999999999\nmode=1x2\n") << QSize(0, 0);
    QTest::newRow("after bytes that are no text") << QByteArray("\xff\xfe\x80\nmode=1x2\n") << QSize(1, 2);
    QTest::newRow("before bytes that are no text") << QByteArray("mode=1x2 \xff\xfe\x80\n") << QSize(1, 2);
    QTest::newRow("after a NUL in another line") << QByteArray("a\0b\nmode=1x2\n", 13) << QSize(1, 2);

    QTest::newRow("empty file") << QByteArray() << none;
    QTest::newRow("no such line") << QByteArray("depth=32\n") << none;
    QTest::newRow("blanks around the sign") << QByteArray("mode = 720x576\n") << none;
    QTest::newRow("blank after the sign") << QByteArray("mode= 720x576\n") << none;
    QTest::newRow("capitals") << QByteArray("MODE=720x576\n") << none;
    QTest::newRow("capital between the numbers") << QByteArray("mode=720X576\n") << none;
    QTest::newRow("comment") << QByteArray("#mode=720x576\n") << none;
    QTest::newRow("no width") << QByteArray("mode=x576\n") << none;
    QTest::newRow("no height") << QByteArray("mode=720x\n") << none;
    QTest::newRow("no numbers") << QByteArray("mode=axb\n") << none;
    QTest::newRow("negative") << QByteArray("mode=-720x576\n") << none;
    QTest::newRow("further letters before") << QByteArray("videomode=720x576\n") << none;
}

void TestDirectfbrc::theFirstModeLineCounts()
{
    QFETCH(const QByteArray, content);
    writeFile(content);
    QTEST(DirectfbrcParser(m_path).mode(), "mode");
    QCOMPARE(contentOf(m_path), content);
}

void TestDirectfbrc::everyModeLineIsRewritten_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("blanks and comment on the line")
        << QByteArray("# screen\n  mode=720x576  # as the box's\ndepth=32\n")
        << QByteArray("# screen\nmode=1280x720\ndepth=32\n");
    QTest::newRow("two of them") << QByteArray("mode=1x2\ndepth=32\n\tmode=3x4p50\n")
                                 << QByteArray("mode=1280x720\ndepth=32\nmode=1280x720\n");
    QTest::newRow("digits that do not fit") << QByteArray("mode=99999999999x1\n") << QByteArray("mode=1280x720\n");
    QTest::newRow("none") << QByteArray("depth=32\n#mode=1x2\n\n") << QByteArray("depth=32\n#mode=1x2\n\n");
    QTest::newRow("no end of line") << QByteArray("mode=1x2\ndepth=32") << QByteArray("mode=1280x720\ndepth=32\n");
    QTest::newRow("lines of another system")
        << QByteArray("depth=32\r\nmode=1x2\r\n\r\n") << QByteArray("depth=32\nmode=1280x720\n\n");
    QTest::newRow("shorter than before") << QByteArray("mode=1x2" + QByteArray(100, ' ') + "\nz\n")
                                         << QByteArray("mode=1280x720\nz\n");
    QTest::newRow("empty lines") << QByteArray("\n\nmode=1x2\n\n") << QByteArray("\n\nmode=1280x720\n\n");
    QTest::newRow("empty file") << QByteArray() << QByteArray();
}

void TestDirectfbrc::everyModeLineIsRewritten()
{
    QFETCH(const QByteArray, before);
    writeFile(before);
    DirectfbrcParser parser(m_path);
    QVERIFY(parser.setMode(QSize(1280, 720)));
    QCOMPARE(parser.mode(), QSize(1280, 720));
    QVERIFY(parser.write());
    QTEST(contentOf(m_path), "after");
}

void TestDirectfbrc::bytesOfOtherLinesAreKept_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("UTF-8") << QByteArray("font=/usr/share/Шрифт.ttf 😀");
    QTest::newRow("no UTF-8") << QByteArray("name=\xe9\xff\xfe\x80\xc3");
    QTest::newRow("the mark of UTF-8") << QByteArray("\xef\xbb\xbf# comment");
    QTest::newRow("the mark of UTF-16") << QByteArray("\xff\xfe#\0", 4);
    QTest::newRow("NUL and other controls") << QByteArray("a\0b\x01\x1a\t\x0b\x0c\x7f", 10);
    QTest::newRow("blanks at the end") << QByteArray("depth=32 \t ");
    QTest::newRow("places of a template") << QByteArray("name=%1x%2 %n");
}

void TestDirectfbrc::bytesOfOtherLinesAreKept()
{
    QFETCH(const QByteArray, line);
    writeFile(line + "\nmode=1x2\n" + line + '\n');
    DirectfbrcParser parser(m_path);
    QCOMPARE(parser.mode(), QSize(1, 2));
    QVERIFY(parser.setMode(QSize(3, 4)));
    QVERIFY(parser.write());
    QCOMPARE(contentOf(m_path), line + "\nmode=3x4\n" + line + '\n');
}

void TestDirectfbrc::nothingReachesTheDiskBeforeWrite()
{
    writeFile("mode=1x2\n");
    {
        DirectfbrcParser parser(m_path);
        QVERIFY(parser.setMode(QSize(3, 4)));
        QCOMPARE(contentOf(m_path), QByteArray("mode=1x2\n"));
    }
    QCOMPARE(contentOf(m_path), QByteArray("mode=1x2\n"));
    QCOMPARE(watch().contentsAtSync.size(), 0);
}

void TestDirectfbrc::aSetModeIsTheModeWhateverItIs_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("zeros") << QSize(0, 0) << QByteArray("mode=0x0\n");
    QTest::newRow("invalid") << QSize() << QByteArray("mode=-1x-1\n");
    QTest::newRow("extremes") << QSize(INT_MAX, INT_MIN) << QByteArray("mode=2147483647x-2147483648\n");
}

void TestDirectfbrc::aSetModeIsTheModeWhateverItIs()
{
    QFETCH(const QSize, size);
    writeFile("mode=1x2\n");
    DirectfbrcParser parser(m_path);
    QVERIFY(parser.setMode(size));
    QCOMPARE(parser.mode(), size);
    QVERIFY(parser.write());
    QTEST(contentOf(m_path), "line");
}

void TestDirectfbrc::writingTwiceGivesTheSame()
{
    writeFile("a\nmode=1000x2000\n");
    DirectfbrcParser parser(m_path);
    QVERIFY(parser.write());
    QVERIFY(parser.setMode(QSize(3, 4)));
    QVERIFY(parser.write());
    QVERIFY(parser.write());
    QCOMPARE(contentOf(m_path), QByteArray("a\nmode=3x4\n"));
}

void TestDirectfbrc::writingOverwritesWhatOthersWroteMeanwhile()
{
    writeFile("mode=1x2\n");
    DirectfbrcParser parser(m_path);
    writeFile("a much longer file of somebody else\nmode=5x6\n");
    QCOMPARE(parser.mode(), QSize(1, 2));
    QVERIFY(parser.write());
    QCOMPARE(contentOf(m_path), QByteArray("mode=1x2\n"));
}

void TestDirectfbrc::theDisksAreWrittenBeforeTheLastOfTheText()
{
    writeFile("mode=1x2\ndepth=32\n");
    DirectfbrcParser parser(m_path);
    QVERIFY(parser.write());
    QCOMPARE(watch().contentsAtSync, QByteArrayList{QByteArray()});
    QCOMPARE(contentOf(m_path), QByteArray("mode=1x2\ndepth=32\n"));
}

void TestDirectfbrc::aMissingFileIsCreated()
{
    DirectfbrcParser parser(m_path);
    QVERIFY(QFile::exists(m_path));
    QCOMPARE(contentOf(m_path), QByteArray());
    QCOMPARE(parser.mode(), QSize(-1, -1));
    QVERIFY(parser.setMode(QSize(1, 2)));
    QVERIFY(parser.write());
    QCOMPARE(contentOf(m_path), QByteArray());
}

void TestDirectfbrc::whatCannotBeOpenedIsDoneWithout_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("directory that does not exist") << "none/directfbrc";
    QTest::newRow("a directory") << ".";
    QTest::newRow("no name") << QString();
}

void TestDirectfbrc::whatCannotBeOpenedIsDoneWithout()
{
    QFETCH(const QString, name);
    const QString path = name.isEmpty() ? name : m_dir->filePath(name);
    DirectfbrcParser parser(path);
    QCOMPARE(parser.mode(), QSize(-1, -1));
    QVERIFY(parser.setMode(QSize(1, 2)));
    QCOMPARE(parser.mode(), QSize(1, 2));
    QVERIFY(parser.write());
    QVERIFY(!QFile::exists(m_dir->filePath("none")));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
}

void TestDirectfbrc::aFileWithoutPermissionIsLeftAlone_data()
{
    QTest::addColumn<int>("permissions");
    QTest::addColumn<bool>("opens");
    const int toRead = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    const int toWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    QTest::newRow("neither to read nor to write") << 0 << false;
    QTest::newRow("to read only") << toRead << false;
    QTest::newRow("to write only") << toWrite << false;
    QTest::newRow("both, for comparison") << (toRead | toWrite) << true;
}

// They hold for the superuser too, who has no privileges in a box.
void TestDirectfbrc::aFileWithoutPermissionIsLeftAlone()
{
    QFETCH(const int, permissions);
    QFETCH(const bool, opens);
    const QByteArray content = "mode=1x2\ndepth=32";
    writeFile(content);
    QVERIFY(QFile::setPermissions(m_path, QFile::Permissions(permissions)));
    {
        DirectfbrcParser parser(m_path);
        QCOMPARE(parser.mode(), opens ? QSize(1, 2) : QSize(-1, -1));
        QVERIFY(parser.setMode(QSize(3, 4)));
        QVERIFY(parser.write());
        QCOMPARE(parser.mode(), QSize(3, 4));
    }
    QVERIFY(QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(contentOf(m_path), opens ? QByteArray("mode=3x4\ndepth=32\n") : content);
}

void TestDirectfbrc::anOddFileIsDoneWithout_data()
{
    QTest::addColumn<int>("kind");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind);
}

void TestDirectfbrc::anOddFileIsDoneWithout()
{
    QFETCH(const int, kind);
    QVERIFY(OddFile::put(m_path, OddFile::Kind(kind)));
    const qint64 size = QFileInfo(m_path).size();
    DirectfbrcParser parser(m_path);
    QCOMPARE(parser.mode(), QSize());
    QVERIFY(parser.setMode(QSize(1280, 720)));
    QVERIFY(parser.write());
    QCOMPARE(QFileInfo(m_path).size(), size);
}

void TestDirectfbrc::aLargeFileIsKept()
{
    const QByteArray lines = QByteArray("# a comment of usual length, and some more\n").repeated(250000);
    QVERIFY(lines.size() > 10 * 1024 * 1024);
    writeFile(lines + "mode=1x2\n" + lines);
    DirectfbrcParser parser(m_path);
    QCOMPARE(parser.mode(), QSize(1, 2));
    QVERIFY(parser.setMode(QSize(3, 4)));
    QVERIFY(parser.write());
    QVERIFY(contentOf(m_path) == lines + "mode=3x4\n" + lines);
}

QTEST_GUILESS_MAIN(TestDirectfbrc)

#include "tst_directfbrc.moc"
