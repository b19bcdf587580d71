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
const char portFile[] = "/port";

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
    QFile file(m_path + portFile);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return 0;
    return file.read(16).trimmed().toUShort();
}

bool BoxDirectory::keepPort(quint16 port) const
{
    const QString name = m_path + portFile;
    QFile::remove(name); // whatever it is that holds no port
    QFile file(name);
    const QByteArray text = QByteArray::number(port) + '\n';
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly)
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) && file.write(text) == text.size() && file.flush();
}
