// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/BoxCommand.h"

#include "jsapi/DeviceIdentity.h"
#include "jsapi/FailureMap.h"

#include <QDebug>
#include <QDir>
#include <QProcess>
#include <QStringList>

#include <cstdlib>

namespace {

QString scriptDirectory()
{
    const bool is600 = DeviceIdentity::model().contains(QLatin1String("600"));
    return QLatin1String(is600 ? "/usr/local/bin/custom/" : "/sdk/custom_scripts/");
}

// The toolkit's own conversion, which ends at a NUL.
QVariantList lines(const QByteArray &output)
{
    const QString text = QString::fromLatin1(output.constData());
    return QVariant(text.split(QLatin1Char('\n'), QString::SkipEmptyParts)).toList();
}

QVariantMap outcome(QProcess &process)
{
    // What a script that could not be started leaves here depends on the toolkit.
    const int exitCode = process.error() == QProcess::FailedToStart ? 0 : process.exitCode();
    qWarning() << exitCode;
    QVariantMap map;
    map[QLatin1String("status")] = QLatin1String("OK");
    map[QLatin1String("exit")] = exitCode;
    map[QLatin1String("stdout")] = lines(process.readAllStandardOutput());
    map[QLatin1String("stderr")] = lines(process.readAllStandardError());
    return map;
}

} // namespace

QVariantMap BoxCommand::runScript(const QString &name, const QString &arguments)
{
    QProcess process;
    const QString directory = scriptDirectory();
    process.setWorkingDirectory(directory);
    const QDir scripts(process.workingDirectory());
    if (!scripts.exists())
        return failureMap(directory + QLatin1String(": No such directory"), QLatin1String("41"));

    bool found = false;
    bool executable = false;
    bool isFile = false;
    const QFileInfoList entries = scripts.entryInfoList();
    for (const QFileInfo &entry : entries) {
        if (entry.fileName() != name)
            continue;
        found = true;
        if (entry.isExecutable()) {
            executable = true;
            isFile = entry.isFile();
            break;
        }
    }
    if (!found)
        return failureMap(name + QLatin1String(": No such file in ") + directory, 40);
    if (!executable)
        return failureMap(name + QLatin1String(": Permission Denied"), 42);
    if (!isFile)
        return failureMap(name + QLatin1String(": Is not a file or symlink to file"), 43);

    process.start(process.workingDirectory() + name + QLatin1Char(' ') + arguments);
    process.waitForFinished(-1);
    return outcome(process);
}

void BoxCommand::reboot()
{
    // Named only for the compiler, which warns of a status that is thrown away.
    [[maybe_unused]] const int ignored = system("reboot");
}
