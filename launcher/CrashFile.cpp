// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "CrashFile.h"

#include "common/other/wholewrite.h"

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

const char folder[] = "/tmp/";
const int mostFiles = 20;

QStringList crashFiles(int directory)
{
    static const QRegularExpression form(R"(^crash-\d{8}-\d{6}-\d{3}\.txt$)");
    QStringList names;
    const int copy = openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR *listing = copy < 0 ? nullptr : fdopendir(copy);
    if (!listing) {
        if (copy >= 0)
            close(copy);
        return names;
    }
    while (const dirent *entry = readdir(listing)) {
        const QString name = QFile::decodeName(entry->d_name);
        if (form.match(name).hasMatch())
            names += name;
    }
    closedir(listing);
    names.sort(); // by time
    return names;
}

bool writeNew(int directory, const QString &name, const QByteArray &content)
{
    const QByteArray encoded = QFile::encodeName(name);
    const int file = openat(directory, encoded.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    const bool isWritten = Common::writeWhole(file, content.constData(), size_t(content.size()));
    const int error = errno;
    close(file);
    if (!isWritten)
        unlinkat(directory, encoded.constData(), 0);
    errno = error;
    return isWritten;
}

} // namespace

QString CrashFile::write(const QString &boxDirectory, const QByteArray &content, QString *error)
{
    const QByteArray path = QFile::encodeName(boxDirectory + folder);
    const QString name = "crash-" + QDateTime::currentDateTime().toString("yyyyMMdd-HHmmss-zzz") + ".txt";
    const int directory = open(path.chopped(1).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    const bool isWritten = directory >= 0 && writeNew(directory, name, content);
    if (!isWritten)
        *error = qt_error_string();
    const QStringList names = directory < 0 ? QStringList() : crashFiles(directory);
    for (int i = 0; i < names.size() - mostFiles; ++i)
        unlinkat(directory, QFile::encodeName(names.at(i)).constData(), 0);
    if (directory >= 0)
        close(directory);
    return isWritten ? boxDirectory + folder + name : QString();
}
