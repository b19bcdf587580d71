// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

/// Where a test changes a file of its box, as a user does from outside: inside, some are read-only. Ends a program that
/// runs in no such box.
inline QString fromOutside(const QString &path)
{
    static const QString box = qEnvironmentVariable("KAVRO_BOX");
    if (box.isEmpty() || !QDir("/box").exists())
        qFatal("This test works on the files of a box; run it by ctest, or as in-fresh-box PROGRAM");
    return box + path;
}

/// Writes a file of the box, and its folder, or ends the program with a message.
inline void writeBoxFile(const QString &path, const QByteArray &content)
{
    QFile file(fromOutside(path));
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s: %s", qPrintable(path), qPrintable(file.errorString()));
}

/// The content of a file of the box; empty if there is none.
inline QByteArray boxFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
