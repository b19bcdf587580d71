// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QFile>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Runs one input. Each target has its own; the fuzzing library calls it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

inline QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), int(size));
}

/// Ends the program, and so reports the input, unless what must hold does.
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "This does not hold: %s\n", what);
    std::abort();
}

inline void writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "the file can be written");
}

/// The messages about wrong input are of no interest.
inline void dropMessages()
{
    static const auto previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    Q_UNUSED(previous)
}
