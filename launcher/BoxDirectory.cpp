// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BoxDirectory.h"

#include "ExitStatus.h"
#include "Places.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

const char lockFile[] = "/lock";
const char manifests[] = "/sdk";
const quint16 firstPort = 20000; // below those that the system gives away itself
const quint16 ports = 10000;

QString advice(int error)
{
    const bool full = error == ENOSPC || error == EDQUOT;
    return full ? "free some space there or choose another directory with --box"
                : "make it a writable directory or choose another one with --box";
}

QByteArray owner(int lock)
{
    char text[16] = {};
    return pread(lock, text, sizeof text - 1, 0) > 0 ? QByteArray(text).trimmed() : QByteArray("?");
}

// Tells a second start who has the box.
bool writeOwner(int lock)
{
    const QByteArray text = QByteArray::number(getpid()) + '\n';
    return ftruncate(lock, 0) == 0 && pwrite(lock, text.constData(), text.size(), 0) == text.size();
}

} // namespace

BoxDirectory::~BoxDirectory()
{
    if (m_lock >= 0)
        close(m_lock);
}

int BoxDirectory::open(const QString &path, QString *error)
{
    errno = 0;
    const bool exists = QDir().mkpath(path) && QFileInfo(path).isDir();
    if (exists)
        m_lock = ::open(QFile::encodeName(path + lockFile).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_lock >= 0 && flock(m_lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        *error = QString("the box directory %1 is in use by process %2; leave that desk box first, or choose another "
                         "directory with --box")
                     .arg(path, QString::fromLatin1(owner(m_lock)));
        return ExitStatus::BoxInUse;
    }
    if (m_lock < 0 || !writeOwner(m_lock)) {
        const int number = exists || errno ? errno : ENOTDIR;
        *error =
            QString("the box directory %1 cannot be used (%2); %3").arg(path, qt_error_string(number), advice(number));
        return ExitStatus::NoBox;
    }
    m_path = QFileInfo(path).canonicalFilePath();
    return ExitStatus::Done;
}

int BoxDirectory::fill() const
{
    if (QFileInfo::exists(m_path + manifests))
        return ExitStatus::Done;
    return QProcess::execute(Places::inBox(), {m_path}) == 0 ? ExitStatus::Done : ExitStatus::NoBox;
}

quint16 BoxDirectory::port() const
{
    const QByteArray name = QFile::encodeName(m_path);
    return firstPort + qChecksum(name.constData(), uint(name.size())) % ports;
}
