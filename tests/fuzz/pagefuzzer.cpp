// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageFuzzer.h"
#include "WatchedRun.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

const char help[] =
    "Fuzzes the plugin with hostile pages. Runs in a box, on the recording platform. A seed reproduces a "
    "run, up to the timing of threads and loads. Exit status: 0 nothing found, 1 something found, 2 "
    "wrong usage.";

// The sanitizers slow scripts down and keep freed memory for a while.
const WatchedRun::Limits limits = {30000, 3LL << 30};

struct Options
{
    quint32 seed;
    int seconds;
};

[[noreturn]] void refuse(const QString &error)
{
    std::fprintf(stderr, "pagefuzzer: %s; --help lists the options\n", qPrintable(error));
    std::exit(2);
}

quint32 readNumber(const QString &name, const QString &text)
{
    bool isNumber = false;
    const quint32 number = text.toUInt(&isNumber);
    if (!isNumber)
        refuse(QString("--%1 \"%2\" is not a whole number").arg(name, text));
    return number;
}

Options readOptions(int argc, char *argv[])
{
    QCommandLineParser parser;
    parser.setApplicationDescription(help);
    const QString randomSeed = QString::number(QRandomGenerator::system()->generate());
    const QCommandLineOption seed("seed", "Number that decides on all actions; a new one by default.", "N", randomSeed);
    const QCommandLineOption seconds("seconds", "How long to go on; 60 by default.", "N", "60");
    const QCommandLineOption helpOption = parser.addHelpOption();
    parser.addOptions({seed, seconds});
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    if (!parser.parse(arguments))
        refuse(parser.errorText());
    if (parser.isSet(helpOption)) {
        std::printf("%s", qPrintable(parser.helpText()));
        std::exit(0);
    }
    return {readNumber("seed", parser.value(seed)), int(readNumber("seconds", parser.value(seconds)))};
}

// The plugin's own messages are as many as the actions.
void handleMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "pagefuzzer: %s\n", qPrintable(text));
}

void fuzz(const Options &options, ActionLog *log)
{
    qInstallMessageHandler(handleMessage);
    // What pages print.
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    int argc = 1;
    char name[] = "pagefuzzer";
    char *argv[] = {name, nullptr};
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false); // which may be a page's dialog
    PageFuzzer(options.seed, log).run(options.seconds * 1000);
}

} // namespace

int main(int argc, char *argv[])
{
    const Options options = readOptions(argc, argv);
    std::fprintf(stderr, "pagefuzzer: seed %u, %d s\n", options.seed, options.seconds);
    const WatchedRun::Outcome outcome = WatchedRun::run([&options](ActionLog *log) { fuzz(options, log); }, limits);
    if (outcome.fault.isEmpty()) {
        std::fprintf(stderr, "pagefuzzer: %u actions, at most %lld MiB, nothing found\n", outcome.actions,
                     outcome.memory >> 20);
        return 0;
    }
    std::fprintf(stderr, "pagefuzzer: with seed %u, after %u actions, the browser %s. The last ones:\n%s\n",
                 options.seed, outcome.actions, qPrintable(outcome.fault), outcome.latest.join('\n').constData());
    return 1;
}
