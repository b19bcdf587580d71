// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "common/other/plainfile.h"

#include "common/other/regularfile.h"

#include <QDebug>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

int flagsOf(QIODevice::OpenMode mode)
{
    if (!(mode & QIODevice::WriteOnly))
        return O_RDONLY;
    if (mode & QIODevice::Append)
        return ((mode & QIODevice::ReadOnly) ? O_RDWR : O_WRONLY) | O_CREAT | O_APPEND;
    if (!(mode & QIODevice::ReadOnly))
        return O_WRONLY | O_CREAT | O_TRUNC;
    return O_RDWR | O_CREAT | ((mode & QIODevice::Truncate) ? O_TRUNC : 0);
}

int openAndTell(const QString &path, int flags, long long largest, bool *isOdd)
{
    std::string oddity;
    const int file = Common::openRegular(QFile::encodeName(path).constData(), flags, largest, &oddity);
    const int error = errno;
    *isOdd = !oddity.empty();
    if (*isOdd && Common::isNews(oddity))
        qWarning("%s", oddity.c_str());
    errno = error;
    return file;
}

} // namespace

Common::PlainFile::PlainFile(const QString &path, QObject *parent)
    : QFile(path, parent)
{
}

Common::PlainFile::~PlainFile()
{
    PlainFile::close();
}

bool Common::PlainFile::open(OpenMode mode)
{
    return open(mode, largestText);
}

bool Common::PlainFile::open(OpenMode mode, long long largest)
{
    bool isOdd = false;
    const int file = openAndTell(fileName(), flagsOf(mode), largest, &isOdd);
    if (file < 0)
        setErrorString(QString::fromLocal8Bit(std::strerror(errno)));
    if (file < 0 || QFile::open(file, mode))
        return file >= 0;
    ::close(file);
    return false;
}

void Common::PlainFile::close()
{
    const int file = handle();
    QFile::close();
    // The toolkit leaves open what it has not opened itself.
    if (file >= 0)
        ::close(file);
}

bool Common::isOdd(const QString &path, long long largest)
{
    bool isOdd = false;
    const int file = openAndTell(path, O_RDONLY, largest, &isOdd);
    if (file >= 0)
        ::close(file);
    return isOdd;
}
