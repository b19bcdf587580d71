// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

/// What may stand in a file's place, and must neither be waited for nor read to its end.
namespace OddFile {

enum Kind { Pipe, Folder, EndlessDevice, Gigabyte };

struct Row
{
    const char *name;
    Kind kind;
    const char *what; ///< as it is told
};

constexpr Row all[] = {{"named pipe", Pipe, "a named pipe and not a file"},
                       {"folder", Folder, "a folder and not a file"},
                       {"endless device", EndlessDevice, "a device and not a file"},
                       {"a gigabyte", Gigabyte, "larger than 4194304 bytes"}};

/// Puts it in the place of what is there, if anything. The gigabyte takes no room.
inline bool put(const QString &path, Kind kind)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile::remove(path);
    QDir().rmdir(path);
    QFile file(path);
    switch (kind) {
    case Pipe:
        return mkfifo(QFile::encodeName(path).constData(), 0666) == 0;
    case Folder:
        return QDir().mkpath(path);
    case EndlessDevice:
        return QFile::link("/dev/zero", path);
    case Gigabyte:
        return file.open(QIODevice::WriteOnly) && file.resize(1 << 30);
    }
    return false;
}

} // namespace OddFile
