// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "InsideProcess.h"

#include "Program.h"

#include <QDir>

pid_t insideProcess(const QByteArray &address)
{
    const QStringList processes = QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs);
    for (const QString &process : processes) {
        const QList<QByteArray> arguments = contentOf("/proc/" + process + "/cmdline").split('\0');
        if (arguments.first().endsWith("kavro-box") && arguments.value(1) == "--inside" && arguments.contains(address))
            return process.toInt();
    }
    return 0;
}
