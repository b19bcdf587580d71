// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArrayList>
#include <atomic>

/// The latest actions of a process, in memory that it shares with the one that watches it: they can still be read when
/// it is gone.
class ActionLog
{
public:
    /// Made before the process is split. It is never freed.
    static ActionLog *create();

    /// Only the watched process does. Noted before the action is begun.
    void begin(const QByteArray &action);
    /// The watched process has come to its end as it should.
    void finish() { m_finished = true; }

    /// The number of actions so far; the last one may not be over.
    quint32 count() const { return m_count; }
    bool isFinished() const { return m_finished; }
    /// The latest actions with their numbers, which count from 0, the last one at the end.
    QByteArrayList latest() const;

private:
    static constexpr quint32 kept = 8;
    static constexpr int longest = 8192; // bytes of an action

    ActionLog() = default;

    std::atomic<quint32> m_count = 0;
    std::atomic<bool> m_finished = false;
    char m_actions[kept][longest] = {};
};
