// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BoxDirectory.h"
#include "Channel.h"
#include "CrashNote.h"
#include "Descriptors.h"
#include "DeskRun.h"
#include "Display.h"
#include "ExitStatus.h"
#include "Limits.h"
#include "Manifest.h"
#include "Page.h"
#include "Places.h"
#include "Report.h"
#include "ScreenshotFile.h"
#include "Supervisor.h"
#include "TraceLevel.h"

#include <QApplication>
#include <QFile>

#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

// Of the process inside, once the plugin has gone.
constexpr std::chrono::milliseconds longestEnd{2500};

DeskRun *currentRun = nullptr;

// Chooses how Qt shows windows, for the process inside. Returns what is missing for it, or nothing.
QString choosePlatform(bool headless)
{
    if (!headless && !Display::isReachable()) {
        report("there is no display, so it goes on as with --headless; set DISPLAY to have a window");
        headless = true;
    }
    const QString platform = headless ? "offscreen" : Display::platform();
    qputenv("QT_QPA_PLATFORM", platform.toUtf8());
    if (Display::isInstalled(platform))
        return {};
    return QString(
               "Qt's platform plugin \"%1\" is not installed; install it (apt-get install libqt5gui5 qtwayland5) or "
               "set QT_QPA_PLATFORM to another")
        .arg(platform);
}

// The process that the user starts. Its messages come before the box is touched where they can.
int runOutside(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    Options options = Options::fromCommandLine();
    QString error;
    Page page;
    if (!page.setArgument(options.page, &error)) {
        report(error);
        return ExitStatus::WrongUsage;
    }
    if (!QFile::exists(Places::plugin())) {
        report(QString("the plugin %1 is missing; build or install it").arg(Places::plugin()));
        return ExitStatus::NoPlugin;
    }
    error = choosePlatform(options.headless);
    if (!error.isEmpty()) {
        report(error);
        return ExitStatus::Failed;
    }
    if (!page.isInBox(options.box, options.shared)) {
        report(
            QString("%1 is a file of the PC, which a box does not have; give its path, to have its folder served, or "
                    "share that by --share")
                .arg(options.page));
        return ExitStatus::WrongUsage;
    }
    BoxDirectory box;
    const int opened = box.open(options.box, &error);
    if (opened != ExitStatus::Done) {
        report(error);
        return opened;
    }
    if (!page.serve(box, &error)) {
        report(error);
        return ExitStatus::Failed;
    }

    options.page = page.address();
    options.portal = page.portalAddress();
    ScreenshotFile screenshot;
    if (!options.screenshot.isEmpty()) {
        if (!screenshot.open(options.screenshot, &error)) {
            report(error);
            return ExitStatus::Failed;
        }
        options.screenshotDescriptor = screenshot.descriptor();
    }
    const int filled = box.fill();
    if (filled != ExitStatus::Done)
        return filled;
    if (!Manifest::setHomePage(box.path() + Places::manifest, options.page, options.portal, &error))
        report(error + "; the plugin is started with it as it is");
    const TraceLevel traceLevel(box.path());
    report(QString("%1, box %2")
               .arg(options.page.isEmpty() ? "portal " + options.portal : "page " + options.page, box.path()));
    return Supervisor(box.path(), options).run();
}

// For a plugin that ends the process: the picture is taken all the same, and the status is the plugin's, which it would
// not be if Qt were taken down below a running application.
void endWithRun(int status, void *)
{
    if (!currentRun)
        return;
    currentRun->saveLastScreenshot();
    std::fflush(nullptr);
    _exit(status);
}

[[noreturn]] void startOver(const char *program, const QStringList &arguments)
{
    std::vector<QByteArray> texts = {program};
    for (const QString &argument : arguments)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    Descriptors::setInherited(Descriptors::given(), true);
    execv("/proc/self/exe", pointers.data());
    report(QString("the desk box cannot be started again (%1)").arg(qt_error_string()));
    std::exit(ExitStatus::Failed);
}

// The toolkit and the box's library wait at their ends for what they have begun, such as the look-up of a name, which
// nothing breaks off. All that is to be kept is on the disk soon.
void limitEnd(const char *program, int status, const QStringList &nextArguments)
{
    std::thread([=] {
        std::this_thread::sleep_for(longestEnd);
        std::fflush(nullptr);
        if (status == DeskRun::restart)
            startOver(program, nextArguments);
        _exit(status);
    }).detach();
}

// The process inside the box. On a restart it gives the arguments for the next start.
int runInside(int argc, char **argv, QStringList *nextArguments)
{
    Limits::keepThreadsSmall();
    // A library's line is on its way when it is complete, as on a terminal.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // of which players' libraries take their decimal point
    QApplication::setQuitOnLastWindowClosed(false);
    if (!Places::isInside()) {
        report(QString("%1 is for the process inside a box").arg(insideArgument));
        return ExitStatus::WrongUsage;
    }
    Descriptors::setInherited(Descriptors::given(), false);
    qputenv("KAVRO_BOX_PID", QByteArray::number(getpid())); // for the box's reboot command

    const Options options = Options::fromCommandLine();
    Channel channel(options.channel);
    const CrashNote crashNote(&channel);
    DeskRun run(options, &channel);
    currentRun = &run;
    on_exit(endWithRun, nullptr);
    const int status = run.untilLeft();
    currentRun = nullptr;
    *nextArguments = run.optionsAfterRestart().forInside();
    limitEnd(argv[0], status, *nextArguments);
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond what a file may have is one that fails
    if (argc < 2 || std::strcmp(argv[1], insideArgument) != 0)
        return runOutside(argc, argv);
    QStringList nextArguments;
    const int status = runInside(argc, argv, &nextArguments);
    if (status == DeskRun::restart)
        startOver(argv[0], nextArguments);
    return status;
}
