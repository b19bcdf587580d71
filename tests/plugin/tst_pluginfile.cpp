// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "shell/CStbApplication.h"

#include <QLibrary>
#include <QPluginLoader>
#include <QtTest>

#include <memory>

namespace {

QString pluginFile()
{
    return QCoreApplication::applicationDirPath() + "/../lib/kavro/libkavrostbbrowser.so";
}

QString output(const QString &program, const QStringList &arguments, const QString &folder = QDir::currentPath())
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qWarning("%s %s failed: %s", qPrintable(program), qPrintable(arguments.join(' ')),
                 process.readAllStandardError().constData());
    return process.readAllStandardOutput();
}

QString git(const QStringList &arguments, const QString &folder)
{
    return output("git", QStringList{"-c", "user.name=Test", "-c", "user.email=test@localhost"} + arguments, folder)
        .trimmed();
}

// The texts in brackets of the lines of the file's dynamic section that are of one kind.
QStringList dynamicEntries(const QString &kind)
{
    QStringList entries;
    const QStringList lines = output("readelf", {"-dW", pluginFile()}).split('\n');
    for (const QString &line : lines) {
        if (line.contains('(' + kind + ')'))
            entries += line.section('[', 1).section(']', 0, 0);
    }
    return entries;
}

} // namespace

// The plugin as a file: what a launcher and a linker see of it.
class TestPluginFile : public QObject
{
    Q_OBJECT

private slots:
    void itExportsItsPublicOperationsAndNothingElse();
    void itNeedsThePlatformLibraryAndNothingElseOfOurs();
    void itHasNoSearchPath();
    void itsVerificationDataIsThatOfTheBoxsToolkit();
    void itNamesTheLaunchersInterface();
    void theEntryPointGivesOneObjectWhileItLives();
    void theRevisionIsThatOfTheSources();
    void theRevisionFollowsEveryCommit();
    void theRevisionOfATreeWithoutGitIsInAFile_data();
    void theRevisionOfATreeWithoutGitIsInAFile();

private:
    QString writtenRevision(const QString &sources);

    QTemporaryDir m_folder;
};

void TestPluginFile::itExportsItsPublicOperationsAndNothingElse()
{
    // What the linker adds to every library, and the toolkit's inline functions, which an unoptimised one has copies
    // of.
    static const QRegularExpression others("^(_edata|_end|__bss_start|_init|_fini|(typeinfo (name )?for )?Q.*)$");
    QStringList symbols;
    const QStringList lines = output("nm", {"-DC", "--defined-only", pluginFile()}).split('\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QString name = line.section(' ', 2);
        if (!others.match(name).hasMatch())
            symbols += name;
    }
    symbols.removeDuplicates(); // a constructor is there once for a whole object and once for a base
    symbols.sort();

    QCOMPARE(symbols,
             QStringList({"DirectfbrcParser::DirectfbrcParser(QString const&)", "DirectfbrcParser::mode() const",
                          "DirectfbrcParser::setMode(QSize)", "DirectfbrcParser::write()",
                          "DirectfbrcParser::~DirectfbrcParser()", "qt_plugin_instance", "qt_plugin_query_metadata",
                          "qt_plugin_query_verification_data"}));
}

void TestPluginFile::itNeedsThePlatformLibraryAndNothingElseOfOurs()
{
    const QStringList needed = dynamicEntries("NEEDED");

    QVERIFY2(needed.contains("libstbapi.so"), qPrintable(needed.join(' ')));
    for (const QString &library : needed)
        QVERIFY2(!library.contains("kavro"), qPrintable(library));
    QCOMPARE(needed.filter("stbapi").size(), 1);
}

void TestPluginFile::itHasNoSearchPath()
{
    QCOMPARE(dynamicEntries("RPATH") + dynamicEntries("RUNPATH"), QStringList());
}

void TestPluginFile::itsVerificationDataIsThatOfTheBoxsToolkit()
{
    QLibrary library(pluginFile());
    const auto data = reinterpret_cast<const char *(*)()>(library.resolve("qt_plugin_query_verification_data"));
    QVERIFY(data);

    QCOMPARE(data(), "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.7.0\ndebug=false\nbuildkey=" PLUGIN_BUILD_KEY);
}

void TestPluginFile::itNamesTheLaunchersInterface()
{
    QCOMPARE(QPluginLoader(pluginFile()).metaData().value("IID").toString(),
             QString("com.Kavro.Plugin.StbInterface/2.0"));
}

void TestPluginFile::theEntryPointGivesOneObjectWhileItLives()
{
    QLibrary library(pluginFile());
    const auto instance = reinterpret_cast<QObject *(*)()>(library.resolve("qt_plugin_instance"));
    QVERIFY(instance);

    QPointer<QObject> first = instance();
    QCOMPARE(first->metaObject()->className(), "PluginWrapper");
    QVERIFY(!first->parent());
    QCOMPARE(instance(), first.data());

    delete first;
    QPointer<QObject> second = instance();
    QVERIFY(second);
    QCOMPARE(instance(), second.data());
    delete second;
}

void TestPluginFile::theRevisionIsThatOfTheSources()
{
    const std::unique_ptr<QObject> plugin(QPluginLoader(pluginFile()).instance());
    auto *interface = qobject_cast<StbInterface *>(plugin.get());
    QVERIFY(interface);

    QCOMPARE(interface->vcsVersion(), writtenRevision(SOURCE_DIR));
}

// The revision that a build of these sources writes for the compiler.
QString TestPluginFile::writtenRevision(const QString &sources)
{
    const QString header = m_folder.filePath("revision.h");
    output(CMAKE_PROGRAM,
           {"-DSOURCE_DIR=" + sources, "-DOUTPUT=" + header, "-P", SOURCE_DIR "/cmake/WriteRevision.cmake"});
    QFile file(header);
    if (!file.open(QIODevice::ReadOnly))
        return "no header";
    return QString(file.readAll()).section('"', 1, 1);
}

void TestPluginFile::theRevisionFollowsEveryCommit()
{
    QTemporaryDir sources;
    git({"init", "-q"}, sources.path());
    QDir(sources.path()).mkdir("cmake");
    QVERIFY(QFile::copy(SOURCE_DIR "/cmake/revision.txt", sources.filePath("cmake/revision.txt")));
    QCOMPARE(writtenRevision(sources.path()), QString(40, '0')); // nothing committed yet
    for (const char *subject : {"First", "Second"}) {
        git({"commit", "-q", "--allow-empty", "-m", subject}, sources.path());
        const QString head = git({"rev-parse", "HEAD"}, sources.path());
        QCOMPARE(head.size(), 40);
        QCOMPARE(writtenRevision(sources.path()), head);
    }
}

void TestPluginFile::theRevisionOfATreeWithoutGitIsInAFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("revision");

    const QByteArray revision = "0123456789abcdef0123456789abcdef01234567";
    const QString none(40, '0');
    QTest::newRow("filled in") << revision + "\n" << QString(revision);
    QTest::newRow("not filled in") << QByteArray("$Format:%H$\n") << none;
    QTest::newRow("too short") << revision.left(39) << none;
    QTest::newRow("empty") << QByteArray() << none;
}

void TestPluginFile::theRevisionOfATreeWithoutGitIsInAFile()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, revision);
    QTemporaryDir sources;
    QDir(sources.path()).mkdir("cmake");
    QFile revisionFile(sources.filePath("cmake/revision.txt"));
    QVERIFY(revisionFile.open(QIODevice::WriteOnly));
    revisionFile.write(file);
    revisionFile.close();

    QCOMPARE(writtenRevision(sources.path()), revision);
}

QTEST_MAIN(TestPluginFile)
#include "tst_pluginfile.moc"
