// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ActionLog.h"

#include <algorithm>
#include <new>
#include <sys/mman.h>

ActionLog *ActionLog::create()
{
    void *memory = mmap(nullptr, sizeof(ActionLog), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        qFatal("There is no memory for the log of actions");
    return new (memory) ActionLog;
}

void ActionLog::begin(const QByteArray &action)
{
    qstrncpy(m_actions[m_count % kept], action.constData(), longest);
    ++m_count;
}

QByteArrayList ActionLog::latest() const
{
    QByteArrayList lines;
    const quint32 end = m_count;
    for (quint32 i = end - std::min(end, kept); i < end; ++i)
        lines += QByteArray::number(i) + ": " + m_actions[i % kept];
    return lines;
}
