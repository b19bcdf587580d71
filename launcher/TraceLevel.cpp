// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TraceLevel.h"

#include "Places.h"
#include "common/other/regularfile.h"

#include <QFile>

#include <fcntl.h>

namespace {

const char callsTraced[] = "1\n";

// Not through a link, which scripts of the box could have lead to a file of the PC. The plugin says what is odd.
bool open(QFile *file, const QString &name, int flags, QIODevice::OpenMode mode)
{
    std::string oddity;
    const int descriptor =
        Common::openRegular(QFile::encodeName(name).toStdString(), flags | O_NOFOLLOW, Common::largestText, &oddity);
    return descriptor >= 0 && file->open(descriptor, mode, QFile::AutoCloseHandle);
}

std::optional<QByteArray> read(const QString &name)
{
    QFile file;
    if (!open(&file, name, O_RDONLY, QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

bool write(const QString &name, const QByteArray &content)
{
    QFile file;
    return open(&file, name, O_WRONLY | O_CREAT, QIODevice::WriteOnly) && file.resize(0)
        && file.write(content) == content.size() && file.flush();
}

} // namespace

TraceLevel::TraceLevel(const QString &boxDirectory)
    : m_file(boxDirectory + Places::traceLevel)
    , m_before(read(m_file))
{
}

TraceLevel::~TraceLevel()
{
    // A level that somebody else has set meanwhile stays.
    if (read(m_file) != QByteArray(callsTraced))
        return;
    if (m_before)
        write(m_file, *m_before);
    else
        QFile::remove(m_file);
}

bool TraceLevel::switchOn()
{
    return write(Places::traceLevel, callsTraced);
}
