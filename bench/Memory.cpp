// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Memory.h"

#include <QDir>
#include <QFile>
#include <QList>

namespace {

constexpr double kilobyte = 1024;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The sum of some lines of a process's memory map. A process that has ended has none.
double sum(const QString &process, const QList<QByteArray> &names)
{
    double bytes = 0;
    const QList<QByteArray> lines = contents("/proc/" + process + "/smaps_rollup").split('\n');
    for (const QByteArray &line : lines) {
        const int colon = line.indexOf(':');
        if (names.contains(line.left(colon)))
            bytes += line.mid(colon + 1).trimmed().split(' ').first().toDouble() * kilobyte;
    }
    return bytes;
}

QString parentOf(const QString &process)
{
    const QByteArray status = contents("/proc/" + process + "/stat");
    // The name before may contain anything, but is in parentheses.
    return status.mid(status.lastIndexOf(')') + 2).split(' ').value(1);
}

} // namespace

double Memory::shareOfTree(qint64 process)
{
    const QString name = QString::number(process);
    double bytes = sum(name, {"Pss", "SwapPss"});
    const QStringList entries = QDir("/proc").entryList({"[1-9]*"}, QDir::Dirs);
    for (const QString &entry : entries) {
        if (parentOf(entry) == name)
            bytes += shareOfTree(entry.toLongLong());
    }
    return bytes;
}

double Memory::allocatedHere()
{
    return sum("self", {"Anonymous", "Swap"});
}
