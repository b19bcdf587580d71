// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

/// Writes a file of the box, and its folder, or ends the program with a message.
inline void writeBoxFile(const QString &path, const QByteArray &content)
{
    if (!QDir("/pc").exists())
        qFatal("This test works on the files of a box; run it by ctest, or as in-fresh-box PROGRAM");
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s: %s", qPrintable(path), qPrintable(file.errorString()));
}

/// The content of a file of the box; empty if there is none.
inline QByteArray boxFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
