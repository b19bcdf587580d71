// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Options.h"

#include "ExitStatus.h"
#include "KeyScript.h"
#include "Report.h"
#include "net/AllowedHost.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cstdlib>

namespace {

const char help[] = R"(The desk box: shows a portal on a PC as a set-top box does.

The keys of --keys are names of Qt ("Down", "Return", "F1", "Ctrl+L", "VolumeUp"), single
characters, "text:..." to type a word, and "wait:500" for a pause in milliseconds; "Down*3"
presses a key three times. They start when the first page has loaded or has failed to, or
10 seconds after the start.

Exit status: 0 left by F1, by the page or by --exit-after, or ended by a signal; 1 the
screenshot cannot be written or the screen cannot be shown; 2 wrong usage; 3 the plugin cannot
be loaded; 4 the box directory is in use; 5 the box directory cannot be used, or this PC cannot
run a box; above 128, the box crashed, and it is 128 and the signal's number.)";

const int largestSize = 16384; // pixels; a window that is larger cannot be drawn

[[noreturn]] void refuse(const QString &error)
{
    report(error + "; kavro-box --help lists the options");
    std::exit(ExitStatus::WrongUsage);
}

double readSeconds(const QString &text)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= 1e6))
        refuse(QString("--exit-after \"%1\" is not a number of seconds").arg(text));
    return seconds;
}

QSize readSize(const QString &text)
{
    static const QRegularExpression form("^([1-9]\\d{1,4})x([1-9]\\d{1,4})$");
    const QRegularExpressionMatch match = form.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.width() > largestSize || size.height() > largestSize)
        refuse(QString("--size \"%1\" is not a size such as 1280x720, of %2 pixels a side at most")
                   .arg(text, QString::number(largestSize)));
    return size;
}

bool readEngine(const QString &text)
{
    if (text != "box" && text != "pc")
        refuse(QString("--engine \"%1\" is neither box nor pc").arg(text));
    return text == "box";
}

void readShared(const QCommandLineParser &parser, const QCommandLineOption &option, QStringList *arguments)
{
    const QStringList folders = parser.values(option);
    for (const QString &folder : folders) {
        const QFileInfo info(QDir::current(), folder);
        const QString name = "--" + option.names().constFirst();
        if (folder.isEmpty() || !info.isDir() || !info.isReadable())
            refuse(QString("%1 \"%2\" is not a folder that can be read").arg(name, folder));
        *arguments << name << info.absoluteFilePath();
    }
}

QStringList readAllowedHosts(const QStringList &texts)
{
    for (const QString &text : texts) {
        if (!AllowedHost::parse(text))
            refuse(
                QString("--allow-net \"%1\" is not a host such as 192.168.1.5, nas.local or nas.local:8080").arg(text));
    }
    return texts;
}

QString readScreenshot(const QString &text)
{
    const QFileInfo file(QDir::current(), text);
    const QFileInfo folder(file.absolutePath());
    if (text.isEmpty() || file.isDir())
        refuse(QString("--screenshot \"%1\" is not the name of a file").arg(text));
    if (!folder.isDir() || !folder.isWritable())
        refuse(QString("no screenshot can be written into the folder \"%1\"").arg(folder.filePath()));
    return file.absoluteFilePath();
}

QString readKeys(const QString &text)
{
    QString error;
    if (!KeyScript::parse(text, &error))
        refuse(error);
    return text;
}

} // namespace

Options Options::fromCommandLine()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(help);
    const QCommandLineOption helpOption({"h", "help"}, "Shows this help.");
    const QCommandLineOption boxOption(
        "box", "Directory of the box's files, in your data folder without this option.", "DIR",
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/kavro-box");
    const QCommandLineOption shareOption("share", "The box has this folder of the PC's too, read-only.", "FOLDER");
    const QCommandLineOption shareWritableOption("share-rw", "The same, and pages and scripts may change it.",
                                                 "FOLDER");
    const QCommandLineOption headlessOption("headless", "No window, the same composed picture.");
    const QCommandLineOption screenshotOption("screenshot", "Writes the screen as PNG when it ends.", "FILE");
    const QCommandLineOption exitOption("exit-after", "Ends after this time.", "SECONDS");
    const QCommandLineOption keysOption("keys", "Presses keys.", "KEYS");
    const QCommandLineOption modelOption("model", "The device's model.", "TEXT", "MZ-600 desk");
    const QCommandLineOption traceOption("trace", "Traces script calls on standard error.");
    const QCommandLineOption sizeOption("size", "Size of the window.", "WxH");
    const QCommandLineOption engineOption("engine",
                                          "box: pages find the web engine of a box, and are told what it lacks; "
                                          "pc: they find all that the PC's engine has.",
                                          "box|pc", "box");
    const QCommandLineOption allowNetOption(
        "allow-net", "A host of your network, or this PC, that pages from elsewhere may reach too. Can be repeated.",
        "HOST[:PORT]");
    const QCommandLineOption remoteOption("remote", "Shows a remote control.");
    const QCommandLineOption inspectorOption("inspector", "Shows the web inspector.");
    const QCommandLineOption keepRunningOption("keep-running", "Starts the box again after a crash.");
    QCommandLineOption insideOption(QString(insideArgument).mid(2));
    QCommandLineOption portalOption("portal", {}, "URL");
    QCommandLineOption screenshotDescriptorOption("screenshot-descriptor", {}, "NUMBER", "-1");
    QCommandLineOption channelOption("channel", {}, "NUMBER", "-1");
    for (QCommandLineOption *option : {&insideOption, &portalOption, &screenshotDescriptorOption, &channelOption})
        option->setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({helpOption,
                       boxOption,
                       shareOption,
                       shareWritableOption,
                       headlessOption,
                       screenshotOption,
                       exitOption,
                       keysOption,
                       modelOption,
                       traceOption,
                       sizeOption,
                       engineOption,
                       remoteOption,
                       inspectorOption,
                       keepRunningOption,
                       allowNetOption,
                       insideOption,
                       portalOption,
                       screenshotDescriptorOption,
                       channelOption});
    parser.addPositionalArgument("URL", "The page to open, an address or a file. The demonstration portal without it.",
                                 "[URL]");
    if (!parser.parse(QCoreApplication::arguments()))
        refuse(parser.errorText().chopped(1)); // its full stop
    if (parser.isSet(helpOption))
        parser.showHelp();
    if (parser.positionalArguments().size() > 1)
        refuse(QString("one page at a time; \"%1\" is too much").arg(parser.positionalArguments().at(1)));
    if (parser.value(boxOption).isEmpty())
        refuse("--box needs a directory");

    Options options;
    options.box = QDir::current().absoluteFilePath(parser.value(boxOption));
    options.headless = parser.isSet(headlessOption);
    readShared(parser, shareOption, &options.shared);
    readShared(parser, shareWritableOption, &options.shared);
    options.screenshotDescriptor = parser.value(screenshotDescriptorOption).toInt();
    // The process inside does not see the file.
    if (options.screenshotDescriptor >= 0)
        options.screenshot = parser.value(screenshotOption);
    else if (parser.isSet(screenshotOption))
        options.screenshot = readScreenshot(parser.value(screenshotOption));
    if (parser.isSet(exitOption))
        options.exitAfter = readSeconds(parser.value(exitOption));
    options.keys = readKeys(parser.value(keysOption));
    options.model = parser.value(modelOption);
    options.trace = parser.isSet(traceOption);
    if (parser.isSet(sizeOption))
        options.size = readSize(parser.value(sizeOption));
    options.boxEngine = readEngine(parser.value(engineOption));
    options.allowNet = readAllowedHosts(parser.values(allowNetOption));
    options.remote = parser.isSet(remoteOption);
    options.inspector = parser.isSet(inspectorOption);
    options.keepRunning = parser.isSet(keepRunningOption);
    options.page = parser.positionalArguments().value(0);
    options.portal = parser.value(portalOption);
    options.channel = parser.value(channelOption).toInt();
    return options;
}

QStringList Options::forInside() const
{
    QStringList arguments = {insideArgument,          "--keys", keys, "--model", model, "--portal", portal, "--channel",
                             QString::number(channel)};
    if (!screenshot.isEmpty())
        arguments << "--screenshot" << screenshot << "--screenshot-descriptor" << QString::number(screenshotDescriptor);
    if (exitAfter)
        arguments << "--exit-after" << QString::number(*exitAfter, 'f', 3);
    if (!size.isEmpty())
        arguments << "--size" << QString("%1x%2").arg(size.width()).arg(size.height());
    if (!boxEngine)
        arguments << "--engine"
                  << "pc";
    for (const QString &host : allowNet)
        arguments << "--allow-net" << host;
    if (trace)
        arguments << "--trace";
    if (remote)
        arguments << "--remote";
    if (inspector)
        arguments << "--inspector";
    if (!page.isEmpty())
        arguments << "--" << page;
    return arguments;
}
