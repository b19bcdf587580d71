// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/support/BoxFile.h"

#include <QElapsedTimer>
#include <QtTest>

#include <memory>

#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QLatin1String root("/mnt/stb");

void emptyStorage()
{
    const QFileInfoList entries =
        QDir(root).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

} // namespace

// Lists of the files and directories on the box's storage, from real trees.
class TestStorageListing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void onlyThePlaceBelowTheRootIsListed_data();
    void onlyThePlaceBelowTheRootIsListed();
    void placesElsewhereAreRefused_data();
    void placesElsewhereAreRefused();
    void aNeighbourThatOnlyBeginsLikeTheRootIsListed();
    void everyKindOfEntryIsWhatItPointsTo();
    void namesAreListedAsTheyAre();
    void namesAreSorted();
    void aDirectoryThatCannotBeReadIsEmpty();
    void aHundredThousandEntriesAreListed();

private:
    QString files(const QString &dir) { return list("ListFiles", dir); }
    QString directories(const QString &dir) { return list("ListDirs", dir); }
    QString list(const QString &method, const QString &dir)
    {
        return m_session->run("StbDisplay." + method + "('" + dir + "')").result;
    }

    std::unique_ptr<ScriptSession> m_session;
};

void TestStorageListing::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestStorageListing::cleanup()
{
    emptyStorage();
}

void TestStorageListing::onlyThePlaceBelowTheRootIsListed_data()
{
    QTest::addColumn<QString>("dir");
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("directories");

    const char *const rootFiles = R"(["top.ts"])";
    const char *const rootDirs = R"([".","..","a","b"])";
    QTest::newRow("empty") << "" << rootFiles << rootDirs;
    QTest::newRow("slash") << "/" << rootFiles << rootDirs;
    QTest::newRow("slashes") << "///" << rootFiles << rootDirs;
    QTest::newRow("dot") << "." << rootFiles << rootDirs;
    QTest::newRow("there and back") << "a/.." << rootFiles << rootDirs;
    QTest::newRow("back into the root") << "../stb" << rootFiles << rootDirs;
    QTest::newRow("all the way back") << "../../mnt/stb" << rootFiles << rootDirs;
    const char *const aFiles = R"(["in a.ts"])";
    const char *const aDirs = R"([".","..","deep"])";
    QTest::newRow("directory") << "a" << aFiles << aDirs;
    QTest::newRow("directory with slashes") << "//a//" << aFiles << aDirs;
    QTest::newRow("beside another") << "a/../b"
                                    << R"(["in b.ts"])"
                                    << R"([".",".."])";
    QTest::newRow("from a directory that does not exist") << "none/../a" << aFiles << aDirs;
    QTest::newRow("deep") << "a/deep"
                          << "[]"
                          << R"([".",".."])";
    QTest::newRow("nothing") << "none"
                             << "[]"
                             << "[]";
    QTest::newRow("file") << "top.ts"
                          << "[]"
                          << "[]";
    QTest::newRow("other case") << "A"
                                << "[]"
                                << "[]";
    QTest::newRow("pattern") << "*"
                             << "[]"
                             << "[]";
    QTest::newRow("variable") << "$HOME"
                              << "[]"
                              << "[]";
}

void TestStorageListing::onlyThePlaceBelowTheRootIsListed()
{
    QFETCH(const QString, dir);
    writeBoxFile(root + "/top.ts", "");
    writeBoxFile(root + "/a/in a.ts", "");
    writeBoxFile(root + "/b/in b.ts", "");
    QVERIFY(QDir().mkpath(root + "/a/deep"));
    QTEST(files(dir), "files");
    QTEST(directories(dir), "directories");
}

void TestStorageListing::placesElsewhereAreRefused_data()
{
    QTest::addColumn<QString>("dir");
    for (const char *dir :
         {"../etc", "..", "../", "../..", "../../etc", "a/../../..", "../STB", "../st", "./../../mnt"})
        QTest::newRow(dir) << QString(dir);
}

void TestStorageListing::placesElsewhereAreRefused()
{
    QFETCH(const QString, dir);
    const QString failure = "{\"code\":\"45\",\"message\":\"" + dir + "No such directory\",\"status\":\"FAIL\"}";
    QCOMPARE(files(dir), failure);
    QCOMPARE(directories(dir), failure);
}

void TestStorageListing::aNeighbourThatOnlyBeginsLikeTheRootIsListed()
{
    // There is none in this box; an existing one could be listed.
    QCOMPARE(files("../stbx"), QString("[]"));
    QCOMPARE(directories("../stb.old/a"), QString("[]"));
}

void TestStorageListing::everyKindOfEntryIsWhatItPointsTo()
{
    writeBoxFile(root + "/file", "");
    writeBoxFile(root + "/.hidden", "");
    QVERIFY(QDir().mkpath(root + "/dir"));
    QVERIFY(QDir().mkpath(root + "/.hiddendir"));
    QVERIFY(QFile::link("file", root + "/to file"));
    QVERIFY(QFile::link("dir", root + "/to dir"));
    QVERIFY(QFile::link("/etc", root + "/to outside"));
    QVERIFY(QFile::link("nothing", root + "/dangling"));
    QVERIFY(QFile::link("loop", root + "/loop"));
    QVERIFY(QFile::link("file", root + "/.to file"));
    QCOMPARE(mkfifo(QFile::encodeName(root + "/pipe"), 0600), 0);
    QCOMPARE(files(""), QString(R"(["file","to file"])"));
    QCOMPARE(directories(""), QString(R"([".","..","dir","to dir","to outside"])"));
    // A link inside leads outside, as its text does not tell.
    writeBoxFile("/etc/known/known.conf", "");
    QCOMPARE(files("to outside/known"), QString(R"(["known.conf"])"));
}

void TestStorageListing::namesAreListedAsTheyAre()
{
    for (const char *name : {"\u043f\u0440.ts", "\u4e2d", "a b", "line\nfeed", "quote\"'\\", "%1", "\U0001f600"})
        writeBoxFile(root + '/' + QString::fromUtf8(name), "");
    QCOMPARE(m_session->run("StbDisplay.ListFiles('').sort()").result,
             QString(R"(["%1","a b","line\nfeed","quote\"'\\",")") + "\u043f\u0440.ts\",\"\u4e2d\",\"\U0001f600\"]");
    QVERIFY(QDir().mkpath(root + "/\u043f\u0430\u043f\u043a\u0430/in"));
    QCOMPARE(directories("\u043f\u0430\u043f\u043a\u0430"), QString(R"([".","..","in"])"));
}

void TestStorageListing::namesAreSorted()
{
    for (const char *name : {"b", "c", "a", "10", "9", "ab"}) {
        writeBoxFile(root + '/' + name, "");
        QVERIFY(QDir().mkpath(root + "/d/" + name));
    }
    QCOMPARE(files(""), QString(R"(["10","9","a","ab","b","c"])"));
    QCOMPARE(directories("d"), QString(R"([".","..","10","9","a","ab","b","c"])"));
}

void TestStorageListing::aDirectoryThatCannotBeReadIsEmpty()
{
    writeBoxFile(root + "/closed/file", "");
    const QByteArray path = QFile::encodeName(root + "/closed");
    QCOMPARE(chmod(path, 0), 0);
    // Root reads everything, so it is somebody else for this.
    const uid_t user = geteuid();
    if (user == 0)
        QCOMPARE(setfsuid(65534), 0);
    const QString listed = files("closed");
    setfsuid(user);
    QCOMPARE(chmod(path, 0700), 0);
    QCOMPARE(listed, QString("[]"));
}

void TestStorageListing::aHundredThousandEntriesAreListed()
{
    QVERIFY(QDir().mkpath(root + "/many"));
    const int directory = open(QFile::encodeName(root + "/many"), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < 100000; ++i)
        close(openat(directory, QByteArray::number(100000 + i), O_CREAT | O_WRONLY, 0600));
    close(directory);
    QElapsedTimer clock;
    clock.start();
    const QString first =
        m_session
            ->run("var names = StbDisplay.ListFiles('many');"
                  "var sorted = true;"
                  "for (var i = 0; i < names.length; ++i) sorted = sorted && names[i] === String(100000 + i);"
                  "[names.length, sorted]")
            .result;
    QCOMPARE(first, QString("[100000,true]"));
    QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(m_session->run("StbDisplay.ListDirs('many')").result, QString(R"([".",".."])"));
}

QTEST_MAIN(TestStorageListing)

#include "tst_storagelisting.moc"
