// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScreenshotFile.h"

#include <QBuffer>
#include <QFile>
#include <QImage>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

ScreenshotFile::~ScreenshotFile()
{
    if (m_descriptor < 0)
        return;
    struct stat status;
    if (m_isCreated && fstat(m_descriptor, &status) == 0 && status.st_size == 0)
        unlink(m_path.constData());
    close(m_descriptor);
}

bool ScreenshotFile::open(const QString &path, QString *error)
{
    m_path = QFile::encodeName(path);
    // Without waiting for a reader, should it be a named pipe.
    const int flags = O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    m_descriptor = ::open(m_path.constData(), flags | O_CREAT | O_EXCL, 0666);
    m_isCreated = m_descriptor >= 0;
    if (!m_isCreated && errno == EEXIST)
        m_descriptor = ::open(m_path.constData(), flags);
    if (m_descriptor >= 0)
        return true;
    *error = QString("the screenshot %1 cannot be written (%2); free some space or choose another file")
                 .arg(path, qt_error_string(errno));
    return false;
}

bool ScreenshotFile::save(const QImage &picture, int descriptor)
{
    QBuffer content;
    if (!picture.save(&content, "PNG"))
        return false;
    // What is no plain file has nothing to be replaced.
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && (ftruncate(descriptor, 0) != 0 || lseek(descriptor, 0, SEEK_SET) != 0))
        return false;
    QFile file;
    return file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered)
        && file.write(content.data()) == content.size();
}
