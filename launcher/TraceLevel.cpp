// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TraceLevel.h"

#include "Places.h"

#include <QFile>

namespace {

const char callsTraced[] = "1\n";

std::optional<QByteArray> read(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

bool write(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
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
