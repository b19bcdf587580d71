// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MarkdownFile.h"
#include "tests/launcher/Program.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <iterator>

namespace {

// Commands that are not run here, each with the reason.
const char *const notRun[] = {
    "./test",                 // it runs this test
    "./test -R '^stbmedia$'", // it builds
};

QString source(const QString &path)
{
    return QDir(SOURCE_DIR).filePath(path);
}

QStringList documentsIn(const QString &folder)
{
    QStringList files = QDir(source(folder)).entryList({"*.md"}, QDir::Files, QDir::Name);
    for (QString &file : files)
        file.prepend(folder + '/');
    return files;
}

// All but the reference of the script objects, which the plugin's tests look through.
QStringList guides()
{
    return QStringList{"README.md", "CONTRIBUTING.md"} + documentsIn("docs");
}

QStringList allDocuments()
{
    return guides() + documentsIn("docs/api");
}

MarkdownFile read(const QString &document)
{
    return MarkdownFile(source(document));
}

bool writeProgram(const QString &fileName, const QByteArray &script)
{
    return writeFile(fileName, "#!/bin/sh\n" + script + '\n')
        && QFile::setPermissions(fileName, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// A row for each of the pieces, named after its place.
void addRows(const QString &document, const QVector<MarkdownFile::Piece> &pieces)
{
    for (const MarkdownFile::Piece &piece : pieces) {
        QTest::newRow(qPrintable(QString("%1:%2 %3").arg(document).arg(piece.line).arg(piece.text)))
            << document << piece.text;
    }
}

QSet<QString> optionsIn(const QString &text)
{
    static const QRegularExpression option("(?<![\\w-])--[a-z][a-z-]*");
    QSet<QString> options;
    QRegularExpressionMatchIterator match = option.globalMatch(text);
    while (match.hasNext())
        options += match.next().captured();
    return options;
}

} // namespace

/// Holds what the documents say against what there is: their links, the files and options that they name, and their
/// commands, which are run as they stand.
class TestDocuments : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyLinkLeadsSomewhere_data();
    void everyLinkLeadsSomewhere();
    void everyNamedFileExists_data();
    void everyNamedFileExists();
    void everyOptionIsDescribed_data();
    void everyOptionIsDescribed();
    void everyNamedOptionExists_data();
    void everyNamedOptionExists();
    void whatHasNoEffectIsInTheReference_data();
    void whatHasNoEffectIsInTheReference();
    void everyCommandRuns_data();
    void everyCommandRuns();
    void theFirstPageDoesWhatItIsSaidToDo();

private:
    // A folder that is home and source tree for the commands of the documents, and has a box.
    bool setUpDesk();
    bool useTheBox();

    QTemporaryDir m_desk;
    QString m_box;
    QString m_help;
};

void TestDocuments::initTestCase()
{
    QVERIFY(m_desk.isValid());
    QVERIFY(setUpDesk());
    QVERIFY(useTheBox());
    Program help("bin/kavro-box");
    QCOMPARE(help.run({"--help"}), 0);
    m_help = help.output();
}

bool TestDocuments::setUpDesk()
{
    m_box = m_desk.filePath("box");
    const QByteArray box = Program::inBuildTree("bin/kavro-box").toUtf8();
    const QByteArray usual = " --headless --exit-after 1 --box '" + m_box.toUtf8() + "' \"$@\"";
    const QByteArray page = "<!DOCTYPE html><title>A portal</title>";
    QStringList firstPage;
    const QVector<MarkdownFile::Piece> lines = read("docs/portals.md").codeLines("html");
    for (const MarkdownFile::Piece &line : lines)
        firstPage += line.text;
    return QDir(m_desk.path()).mkpath("build")
        && QFile::link(Program::inBuildTree(QString()), m_desk.filePath("build/release"))
        && writeProgram(m_desk.filePath("run"), "exec '" + box + '\'' + usual)
        && writeProgram(m_desk.filePath("bin/cmake"), "exec '" CMAKE_PROGRAM "' -S '" SOURCE_DIR "' -B tree \"$@\"")
        && writeFile(m_desk.filePath("portal/index.html"), page)
        && writeFile(m_desk.filePath("first.html"), firstPage.join('\n').toUtf8());
}

// So that it has all the files that a box gets in use.
bool TestDocuments::useTheBox()
{
    const QString page = m_desk.filePath("use.html");
    if (!writeFile(page,
                   "<script>StbDisplay.Log('text'); StbMedia.ClosePlayer(StbMedia.CreatePlayer());"
                   "StbDisplay.ExitToMenu();</script>"))
        return false;
    Program inBox("libexec/kavro/in-box");
    if (inBox.run({m_box, "--", "true"}) != 0 || !writeFile(m_box + "/etc/stbjsapi_debug", "1\n"))
        return false;
    Program box("bin/kavro-box");
    return box.run({"--headless", "--box", m_box, page}) == 0;
}

void TestDocuments::everyLinkLeadsSomewhere_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("link");
    const QStringList documents = allDocuments();
    for (const QString &document : documents)
        addRows(document, read(document).links());
}

void TestDocuments::everyLinkLeadsSomewhere()
{
    QFETCH(QString, document);
    QFETCH(QString, link);
    const QString path = link.section('#', 0, 0);
    const QString anchor = link.section('#', 1);
    const QFileInfo file(source(document));
    const QFileInfo target(path.isEmpty() ? file : QFileInfo(file.dir(), path));
    QVERIFY2(target.exists(), "there is no such file");
    if (!anchor.isEmpty())
        QVERIFY2(MarkdownFile(target.filePath()).anchors().contains(anchor), "there is no such heading");
}

void TestDocuments::everyNamedFileExists_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("path");
    static const QRegularExpression path(R"(^[\w.-]*(/[\w.-]+)+/?$|^[\w.-]+/$)");
    const QStringList documents = guides();
    for (const QString &document : documents) {
        QVector<MarkdownFile::Piece> pieces = read(document).codeSpans();
        const auto isNoPath = [](const MarkdownFile::Piece &piece) { return !path.match(piece.text).hasMatch(); };
        pieces.erase(std::remove_if(pieces.begin(), pieces.end(), isNoPath), pieces.end());
        addRows(document, pieces);
    }
}

void TestDocuments::everyNamedFileExists()
{
    QFETCH(QString, path);
    if (path.startsWith('/')) {
        Program inBox("libexec/kavro/in-box");
        QCOMPARE(inBox.run({m_box, "--", "test", "-e", path}), 0);
    } else {
        QVERIFY2(QFileInfo::exists(source(path)) || QDir(m_box).exists(path),
                 "neither in the source tree nor in a box's folder");
    }
}

void TestDocuments::everyOptionIsDescribed_data()
{
    QTest::addColumn<QString>("option");
    QSet<QString> options = optionsIn(m_help);
    QVERIFY(options.contains("--box"));
    // It describes the others.
    options.remove("--help");
    const QSet<QString> found = options;
    for (const QString &option : found)
        QTest::newRow(qPrintable(option)) << option;
}

void TestDocuments::everyOptionIsDescribed()
{
    QFETCH(QString, option);
    const QString document = contentOf(source("docs/desk-box.md"));
    const QRegularExpression row("^\\| `" + option + "[ `]", QRegularExpression::MultilineOption);
    QVERIFY2(row.match(document).hasMatch(), "it has no row in docs/desk-box.md");
}

void TestDocuments::everyNamedOptionExists_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("text");
    const QStringList documents = guides();
    for (const QString &document : documents) {
        QVector<MarkdownFile::Piece> pieces = read(document).codeSpans();
        const auto isOther = [](const MarkdownFile::Piece &piece) {
            return !piece.text.startsWith("--") && !piece.text.startsWith("./run ");
        };
        pieces.erase(std::remove_if(pieces.begin(), pieces.end(), isOther), pieces.end());
        addRows(document, pieces);
    }
}

void TestDocuments::everyNamedOptionExists()
{
    QFETCH(QString, text);
    const QSet<QString> unknown = optionsIn(text) - optionsIn(m_help);
    QVERIFY2(unknown.isEmpty(), qPrintable("of these one is not known: " + text));
}

void TestDocuments::whatHasNoEffectIsInTheReference_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("name");
    const QString document = "docs/desk-box.md";
    const QVector<MarkdownFile::Piece> names = read(document).codeSpansBelow("what-has-no-effect");
    QVERIFY(names.size() > 8);
    addRows(document, names);
}

// Methods stand there with their arguments, and what is said of an argument or key by its name.
void TestDocuments::whatHasNoEffectIsInTheReference()
{
    QFETCH(QString, name);
    QSet<QString> known;
    for (const char *object : {"StbDisplay", "StbMedia"}) {
        const QVector<MarkdownFile::Piece> spans = read(QString("docs/api/%1.md").arg(object)).codeSpans();
        for (const MarkdownFile::Piece &span : spans) {
            known += span.text;
            known += QString(object) + '.' + span.text;
        }
    }
    QVERIFY2(known.contains(name), "neither a method of the reference with these arguments, nor a name there");
}

void TestDocuments::everyCommandRuns_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("command");
    const QStringList documents = allDocuments();
    for (const QString &document : documents)
        addRows(document, read(document).codeLines("sh"));
}

void TestDocuments::everyCommandRuns()
{
    QFETCH(QString, command);
    const QString plain = command.section('#', 0, 0).trimmed();
    if (std::find(std::begin(notRun), std::end(notRun), plain) != std::end(notRun))
        return;
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", m_desk.path());
    environment.insert("PATH", m_desk.filePath("bin") + ':' + environment.value("PATH"));
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(m_desk.path());
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("bash", {"-c", command});
    QVERIFY(shell.waitForFinished(60000));
    QVERIFY2(shell.exitStatus() == QProcess::NormalExit && shell.exitCode() == 0, shell.readAll());

    static const QRegularExpression screenshot("--screenshot (\\S+)");
    const QRegularExpressionMatch match = screenshot.match(command);
    if (match.hasMatch())
        QCOMPARE(QImage(m_desk.filePath(match.captured(1))).size(), QSize(1920, 1080));
}

// The page of docs/portals.md plays the film that its reader has put into the box's folder, and hears of it.
void TestDocuments::theFirstPageDoesWhatItIsSaidToDo()
{
    const QString film = m_box + "/mnt/stb/film.mp4";
    QVERIFY(QFile::copy(Program::inBuildTree("share/kavro/portal/media/testcard.mkv"), film));
    Program box("bin/kavro-box");
    box.setArguments({"--headless", "--box", m_box, "--trace", "--keys", "Enter", m_desk.filePath("first.html")});
    box.start();
    QTRY_VERIFY_WITH_TIMEOUT(box.errors().contains("StbMedia.PlayFile(1, /mnt/stb/film.mp4, 0, 0, 0, "), 60000);
    QTRY_VERIFY_WITH_TIMEOUT(box.errors().contains("StbMedia.GetPlayerState(1)"), 60000);
}

QTEST_GUILESS_MAIN(TestDocuments)

#include "tst_documents.moc"
