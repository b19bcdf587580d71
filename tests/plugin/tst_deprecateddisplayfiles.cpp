// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"

#include "shell/CStbApplication.h"

#include <QDir>
#include <QRegularExpression>
#include <QtTest>
#include <memory>

namespace {

const char *const logFile = "/tmp/jsbrowser.log";
const int logLimit = 1048576;

// What an old portal makes of names: nothing is escaped.
QString listOf(const QStringList &names)
{
    QString list = "[\n";
    for (const QString &name : names)
        list += '"' + name + "\",\n";
    return list + ']';
}

// Without the times, or something else if a line has none.
QByteArray logText()
{
    QString text = QString::fromUtf8(boxFile(logFile));
    static const QRegularExpression time("^\\d\\d:\\d\\d:\\d\\d ", QRegularExpression::MultilineOption);
    const int lines = text.count('\n');
    const int times = text.count(time);
    return lines == times ? text.remove(time).toUtf8() : "times missing: " + text.toUtf8();
}

} // namespace

// What stb_display does with the box's files: listings and the page's log.
class TestDeprecatedDisplayFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listingsAreTextsOfNames_data();
    void listingsAreTextsOfNames();
    void listingsMayLeaveTheStorageRoot();
    void theLogIsEmptiedAtTheStart();
    void linesGetTheTimeBeforeThem();
    void aLogAboveItsLimitBeginsAnew_data();
    void aLogAboveItsLimitBeginsAnew();
    void aLogThatCannotBeOpenedIsDoneWithout();

private:
    QString text(const QString &script) { return m_plugin->evaluate("stb_display." + script).toString(); }

    std::unique_ptr<HostedPlugin> m_plugin;
};

void TestDeprecatedDisplayFiles::init()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml("<!DOCTYPE html><title>Files</title>"));
}

void TestDeprecatedDisplayFiles::cleanup()
{
    m_plugin.reset();
}

void TestDeprecatedDisplayFiles::listingsAreTextsOfNames_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("names");

    writeBoxFile("/mnt/stb/root.ts", "");
    writeBoxFile("/mnt/stb/.hidden.ts", "");
    writeBoxFile("/mnt/stb/names/\"quoted\" \\ %1.ts", "");
    writeBoxFile("/mnt/stb/names/привіт.ts", "");
    writeBoxFile("/mnt/stb/names/B.ts", "");
    writeBoxFile("/mnt/stb/names/a.ts", "");
    writeBoxFile("/mnt/stb/names/.hidden/file", "");
    writeBoxFile("/mnt/stb/names/inner/file", "");
    QFile::link("inner", "/mnt/stb/names/link to a directory");
    QFile::link("a.ts", "/mnt/stb/names/link to a file");
    QFile::link("nowhere", "/mnt/stb/names/link to nothing");
    QVERIFY(QDir().mkpath("/mnt/stb/empty"));

    QTest::newRow("files of the root") << "ListFiles('')" << QStringList{"root.ts"};
    QTest::newRow("files of the root with a slash") << "ListFiles('/')" << QStringList{"root.ts"};
    QTest::newRow("directories of the root") << "ListDirs('/')" << QStringList{".", "..", "empty", "names"};
    QTest::newRow("files with all sorts of names")
        << "ListFiles('/names')" << QStringList{"\"quoted\" \\ %1.ts", "B.ts", "a.ts", "link to a file", "привіт.ts"};
    QTest::newRow("directories and links to them")
        << "ListDirs('/names/')" << QStringList{".", "..", "inner", "link to a directory"};
    QTest::newRow("files of no directory's") << "ListFiles('/empty')" << QStringList{};
    QTest::newRow("directories of an empty one") << "ListDirs('/empty')" << QStringList{".", ".."};
    QTest::newRow("no such directory") << "ListDirs('/none')" << QStringList{};
    QTest::newRow("a file") << "ListFiles('/root.ts')" << QStringList{};
    // /mnt/stbnames
    QTest::newRow("no separator") << "ListFiles('names')" << QStringList{};
    QTest::newRow("upwards inside") << "ListFiles('/names/../empty/..')" << QStringList{"root.ts"};
}

void TestDeprecatedDisplayFiles::listingsAreTextsOfNames()
{
    QFETCH(const QString, script);
    QFETCH(const QStringList, names);
    QCOMPARE(text(script), listOf(names));
}

void TestDeprecatedDisplayFiles::listingsMayLeaveTheStorageRoot()
{
    writeBoxFile("/etc/portal/a.conf", "");
    QCOMPARE(text("ListFiles('/../../etc/portal')"), listOf({"a.conf"}));
    QVERIFY(text("ListDirs('/..')").contains("\n\"stb\",\n"));
}

void TestDeprecatedDisplayFiles::theLogIsEmptiedAtTheStart()
{
    text("log('old')");
    QCOMPARE(logText(), QByteArray("old\n"));
    cleanup();
    QCOMPARE(logText(), QByteArray("old\n"));
    init();
    QCOMPARE(boxFile(logFile), QByteArray());
}

void TestDeprecatedDisplayFiles::linesGetTheTimeBeforeThem()
{
    const QTime before = QTime::currentTime();
    text("log('one')");
    const QTime time = QTime::fromString(QString::fromUtf8(boxFile(logFile).left(9)), "hh:mm:ss ");
    QVERIFY(time.isValid());
    // Midnight may have come meanwhile.
    QVERIFY(time.addMSecs(999) >= before || time < QTime(0, 1));
    text("log('два %1 \"')");
    text("log('')");
    QCOMPARE(logText(), QByteArray("one\nдва %1 \"\n\n"));
}

void TestDeprecatedDisplayFiles::aLogAboveItsLimitBeginsAnew_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isEmptied");
    QTest::newRow("at its limit") << logLimit << false;
    QTest::newRow("above its limit") << logLimit + 1 << true;
}

void TestDeprecatedDisplayFiles::aLogAboveItsLimitBeginsAnew()
{
    QFETCH(const int, size);
    QFETCH(const bool, isEmptied);
    const QString first(size - int(qstrlen("hh:mm:ss \n")), 'x');
    text("log('" + first + "')");
    QCOMPARE(QFileInfo(logFile).size(), qint64(size));
    text("log('next')");
    QCOMPARE(logText(), (isEmptied ? QByteArray() : first.toUtf8() + '\n') + "next\n");
}

void TestDeprecatedDisplayFiles::aLogThatCannotBeOpenedIsDoneWithout()
{
    cleanup();
    QVERIFY(QFile::remove(logFile));
    QVERIFY(QDir().mkdir(logFile));
    init();
    QCOMPARE(m_plugin->evaluateToJson("stb_display.log('lost')"), QString("0"));
    cleanup();
    QVERIFY(QDir().rmdir(logFile));
}

QTEST_MAIN(TestDeprecatedDisplayFiles)

#include "tst_deprecateddisplayfiles.moc"
