// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <memory>

#include <sys/stat.h>

using RecordingPlatform::Answer;

namespace {

const QLatin1String customDirectory("/usr/local/bin/custom/");
const QLatin1String sdkDirectory("/sdk/custom_scripts/");

void writeScript(const QString &name, const QByteArray &text, const QString &directory = customDirectory)
{
    writeBoxFile(directory + name, text);
    chmod(QFile::encodeName(fromOutside(directory + name)), 0755);
}

// The folder itself stays, of which the box would see no other.
void emptyDirectory(const QString &path)
{
    const QDir directory(fromOutside(path));
    directory.mkpath(".");
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QFileInfoList entries = directory.entryInfoList(all);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

QString asJson(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QString failure(const QString &message, const QJsonValue &code)
{
    return asJson({{"status", "FAIL"}, {"message", message}, {"code", code}});
}

QString success(int exitCode, const QStringList &output, const QStringList &errors = QStringList())
{
    return asJson({{"status", "OK"},
                   {"exit", exitCode},
                   {"stdout", QJsonArray::fromStringList(output)},
                   {"stderr", QJsonArray::fromStringList(errors)}});
}

} // namespace

// Scripts of the operator's that pages run, with real scripts in the box's directories.
class TestCustomScripts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void outputComesInLines_data();
    void outputComesInLines();
    void argumentsAreSplitAtBlanks_data();
    void argumentsAreSplitAtBlanks();
    void theScriptsRunsInItsDirectory();
    void namesAreThoseOfEntries_data();
    void namesAreThoseOfEntries();
    void entriesThatAreNoScripts_data();
    void entriesThatAreNoScripts();
    void theModelChoosesTheDirectory_data();
    void theModelChoosesTheDirectory();
    void aMissingDirectoryIsTold();
    void aScriptThatCannotBeStartedSaysNothing_data();
    void aScriptThatCannotBeStartedSaysNothing();
    void muchOutputOnBothStreams();
    void theScriptIsWaitedForAndNothingElseRuns();
    void theExitCodeIsLogged();

private:
    QString exec(const QString &name, const QString &arguments = QString());

    std::unique_ptr<ScriptSession> m_session;
};

QString TestCustomScripts::exec(const QString &name, const QString &arguments)
{
    const QString json = QJsonDocument(QJsonArray{name, arguments}).toJson(QJsonDocument::Compact);
    return m_session->run("StbDisplay.ExecBlocking.apply(StbDisplay, " + json + ")").result;
}

void TestCustomScripts::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestCustomScripts::init()
{
    emptyDirectory(customDirectory);
    emptyDirectory(sdkDirectory);
    RecordingPlatform::reset();
}

void TestCustomScripts::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestCustomScripts::outputComesInLines_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("json");

    const auto row = [](const char *name, const QByteArray &script, const QString &json) {
        QTest::newRow(name) << QByteArray("#!/bin/sh\n" + script + '\n') << json;
    };
    row("nothing", "", success(0, {}));
    row("an empty line between", "printf 'a\\n\\nb\\n'; exit 3", success(3, {"a", "b"}));
    row("no line feed at the end", "printf 'a\\nb'", success(0, {"a", "b"}));
    row("empty lines only", "printf '\\n\\n\\n'", success(0, {}));
    row("carriage returns", "printf 'a\\r\\n\\r\\nb\\r'", success(0, {"a\r", "\r", "b\r"}));
    row("blanks", "printf '  a \\n \\n\\tb'", success(0, {"  a ", " ", "\tb"}));
    row("a NUL", "printf 'a\\nb\\000c\\nd\\n'", success(0, {"a", "b"}));
    row("a NUL at the beginning", "printf '\\000a\\n'", success(0, {}));
    row("bytes beyond ASCII", "printf '\\351\\377 \\320\\277\\n'", success(0, {"\u00e9\u00ff \u00d0\u00bf"}));
    row("quotes and percent signs", "echo '\"%1\"'", success(0, {"\"%1\""}));
    row("both streams", "echo out; echo error >&2; echo out2; printf 'error2\\000x' >&2",
        success(0, {"out", "out2"}, {"error", "error2"}));
    row("standard error alone", "echo error >&2; exit 1", success(1, {}, {"error"}));
    row("largest exit code", "exit 255", success(255, {}));
    row("killed", "kill -KILL $$", success(9, {}));
    row("killed after some output", "echo a; kill -TERM $$", success(15, {"a"}));
    row("a process that stays behind", "sleep 60 & echo a", success(0, {"a"}));
    row("crashed", "kill -SEGV $$", success(11, {}));
}

void TestCustomScripts::outputComesInLines()
{
    QFETCH(const QByteArray, script);
    writeScript("x", script);
    QTEST(exec("x"), "json");
}

void TestCustomScripts::argumentsAreSplitAtBlanks_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("arrived");
    QTest::newRow("none") << "" << QStringList();
    QTest::newRow("one") << "a" << QStringList{"a"};
    QTest::newRow("several blanks") << "  a   b " << QStringList{"a", "b"};
    QTest::newRow("quoted blank") << "\"a b\" c" << QStringList{"a b", "c"};
    QTest::newRow("quotes inside") << "a\" \"b" << QStringList{"a b"};
    QTest::newRow("three quotes for one") << "\"\"\"a\"\"\"" << QStringList{"\"a\""};
    QTest::newRow("unclosed quote") << "\"a b" << QStringList{"a b"};
    QTest::newRow("single quotes mean nothing") << "'a b'" << QStringList{"'a", "b'"};
    QTest::newRow("no shell") << "$HOME *;>x `id` | cat && a\\ b"
                              << QStringList{"$HOME", "*;>x", "`id`", "|", "cat", "&&", "a\\", "b"};
    QTest::newRow("Latin-1 letter") << "\u00e9" << QStringList{"\u00c3\u00a9"}; // UTF-8, read back byte for byte
    QTest::newRow("tab and line feed part too") << "a\tb\nc" << QStringList{"a", "b", "c"};
    QTest::newRow("percent signs") << "%1 %2" << QStringList{"%1", "%2"};
    QTest::newRow("many") << QString("a ").repeated(5000) << QStringList(QVector<QString>(5000, "a").toList());
}

void TestCustomScripts::argumentsAreSplitAtBlanks()
{
    QFETCH(const QString, arguments);
    QFETCH(const QStringList, arrived);
    writeScript("x", "#!/bin/sh\nfor i in \"$@\"; do printf '%s\\n' \"$i\"; done\n");
    QCOMPARE(exec("x", arguments), success(0, arrived));
}

void TestCustomScripts::theScriptsRunsInItsDirectory()
{
    writeScript("x", "#!/bin/sh\npwd\necho \"$0\"\n");
    QCOMPARE(exec("x"), success(0, {"/usr/local/bin/custom", "/usr/local/bin/custom/x"}));
}

void TestCustomScripts::namesAreThoseOfEntries_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"", "y", "X", "x ", " x", "./x", "../custom/x", "dir/x", "/usr/local/bin/custom/x",
                             "/bin/sh", "dir/", "/", "*", "x -a", ".hidden", "dangling", "\u043f"})
        QTest::newRow(*name ? name : "empty") << QString(name);
}

void TestCustomScripts::namesAreThoseOfEntries()
{
    QFETCH(const QString, name);
    const QByteArray script = "#!/bin/sh\necho run\n";
    writeScript("x", script);
    writeScript("dir/x", script);
    writeScript(".hidden", script);
    QVERIFY(QFile::link("nothing", fromOutside(customDirectory + "dangling")));
    QCOMPARE(exec(name), failure(name + ": No such file in /usr/local/bin/custom/", 40));
}

void TestCustomScripts::entriesThatAreNoScripts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("json");
    const auto row = [](const char *name, const QString &json) { QTest::newRow(name) << QString(name) << json; };
    const QString notFile = ": Is not a file or symlink to file";
    row("data", failure("data: Permission Denied", 42));
    row("to data", failure("to data: Permission Denied", 42));
    row("dir", failure("dir" + notFile, 43));
    row("to dir", failure("to dir" + notFile, 43));
    row(".", failure("." + notFile, 43));
    row("..", failure(".." + notFile, 43));
    row("to_script", success(0, {"run"}));
    row("to_script_elsewhere", success(0, {"run elsewhere"}));
    row("script\u043f", success(0, {"run"}));
}

void TestCustomScripts::entriesThatAreNoScripts()
{
    QFETCH(const QString, name);
    const QByteArray script = "#!/bin/sh\necho run\n";
    writeScript("script", script);
    writeScript("script\u043f", script);
    writeScript("elsewhere", "#!/bin/sh\necho run elsewhere\n", "/tmp/");
    writeBoxFile(customDirectory + "data", script);
    QVERIFY(QDir().mkpath(fromOutside(customDirectory + "dir")));
    QVERIFY(QFile::link("data", fromOutside(customDirectory + "to data")));
    QVERIFY(QFile::link("dir", fromOutside(customDirectory + "to dir")));
    QVERIFY(QFile::link("script", fromOutside(customDirectory + "to_script")));
    QVERIFY(QFile::link("/tmp/elsewhere", fromOutside(customDirectory + "to_script_elsewhere")));
    QTEST(exec(name), "json");
}

void TestCustomScripts::theModelChoosesTheDirectory_data()
{
    QTest::addColumn<Answer>("model");
    QTest::addColumn<QString>("output");
    QTest::newRow("600") << Answer::text("600") << "custom";
    QTest::newRow("600 inside") << Answer::text("MZ-16002 desk") << "custom";
    QTest::newRow("no 600") << Answer::text("MZ-412") << "sdk";
    QTest::newRow("60 0") << Answer::text("MZ-60 0") << "sdk";
    QTest::newRow("empty") << Answer::text("") << "sdk";
    QTest::newRow("failure") << Answer(-1) << "sdk";
    QTest::newRow("600 with a positive result") << Answer::text("600", 1) << "custom";
    QTest::newRow("600 with a failure") << Answer::text("600", -127) << "custom";
    QTest::newRow("no 600 with a positive result") << Answer::text("MZ-412", 1) << "sdk";
    QTest::newRow("a result of 1 without a text") << Answer(1) << "sdk";
}

void TestCustomScripts::theModelChoosesTheDirectory()
{
    QFETCH(const Answer, model);
    QFETCH(const QString, output);
    RecordingPlatform::answer("KVR_GetDeviceModel", model);
    writeScript("x", "#!/bin/sh\necho custom\n");
    writeScript("x", "#!/bin/sh\necho sdk\n", sdkDirectory);
    QCOMPARE(exec("x"), success(0, {output}));
    QFile::remove(fromOutside(sdkDirectory + "x"));
    QFile::remove(fromOutside(customDirectory + "x"));
    const QString directory = output == "sdk" ? sdkDirectory : customDirectory;
    QCOMPARE(exec("x"), failure("x: No such file in " + directory, 40));
}

void TestCustomScripts::aMissingDirectoryIsTold()
{
    RecordingPlatform::answer("KVR_GetDeviceModel", Answer::text("MZ-412"));
    QVERIFY(QDir(fromOutside(sdkDirectory)).removeRecursively());
    QCOMPARE(exec("x"), failure("/sdk/custom_scripts/: No such directory", "41"));
    writeBoxFile("/sdk/custom_scripts", "a file");
    QCOMPARE(exec("x"), failure("/sdk/custom_scripts/: No such directory", "41"));
    QVERIFY(QFile::remove(fromOutside("/sdk/custom_scripts")));
}

void TestCustomScripts::aScriptThatCannotBeStartedSaysNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("missing interpreter") << "x" << QByteArray("#!/no/such/shell\n");
    // The name is split like the arguments are.
    QTest::newRow("a blank in the name") << "a b" << QByteArray("#!/bin/sh\necho run\n");
    QTest::newRow("a quote in the name") << "a\"b" << QByteArray("#!/bin/sh\necho run\n");
}

void TestCustomScripts::aScriptThatCannotBeStartedSaysNothing()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, text);
    writeScript(name, text);
    QCOMPARE(exec(name), success(0, {}));
}

void TestCustomScripts::muchOutputOnBothStreams()
{
    // Each stream alone fills the pipe; whoever reads one to its end first waits for ever.
    writeScript("x",
                "#!/bin/sh\n"
                "yes 'a line of output' | head -c 52428800 &\n"
                "yes 'a line of errors' | head -c 52428800 >&2\n"
                "wait\n");
    QElapsedTimer clock;
    clock.start();
    const QString result =
        m_session
            ->run("var map = StbDisplay.ExecBlocking('x', '');"
                  "var bytes = function (lines) { return lines.join('\\n').length; };"
                  "[map.exit, bytes(map.stdout), bytes(map.stderr), map.stdout[1000], map.stderr[9]]")
            .result;
    QCOMPARE(result, QString(R"([0,52428800,52428800,"a line of output","a line of errors"])"));
    QVERIFY2(clock.elapsed() < 60000, qPrintable(QString::number(clock.elapsed())));
}

void TestCustomScripts::theScriptIsWaitedForAndNothingElseRuns()
{
    writeScript("x", "#!/bin/sh\nsleep 0.5\necho \"$$\"\n");
    m_session->run("var log = []; setTimeout(function () { log.push('timer'); }, 0);"
                   "StbMedia.SetEventCallback(function () { log.push('event'); })");
    RecordingPlatform::onCall("KVR_GetDeviceModel", [] { RecordingPlatform::fire(KVR_BOX, KVR_EVENT_HDMI, 1); });
    QCOMPARE(m_session->run("StbDisplay.ExecBlocking('x', ''); log.push('script'); log").result,
             QString(R"(["script"])"));
    QTRY_COMPARE(m_session->run("log.length").result, QString("3"));
}

void TestCustomScripts::theExitCodeIsLogged()
{
    writeScript("x", "#!/bin/sh\nexit 3\n");
    QCOMPARE(m_session->run("StbDisplay.ExecBlocking('x', '')").warnings, QStringList("3"));
    QCOMPARE(m_session->run("StbDisplay.ExecBlocking('none', '')").warnings, QStringList());
    writeScript("x", "#!/no/such/shell\n");
    QCOMPARE(m_session->run("StbDisplay.ExecBlocking('x', '')").warnings, QStringList("0"));
}

QTEST_MAIN(TestCustomScripts)

#include "tst_customscripts.moc"
