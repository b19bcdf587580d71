// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <QList>
#include <QString>

#include <thread>

/// Records the events of a player, or of the box, for as long as it lives. One at a time.
class DeskEvents
{
public:
    struct Event
    {
        int type;
        int argument;
        qint64 time; ///< milliseconds since the recording began
        std::thread::id thread;
    };

    explicit DeskEvents(KVR_ID id);
    ~DeskEvents();
    DeskEvents(const DeskEvents &) = delete;
    DeskEvents &operator=(const DeskEvents &) = delete;

    static QList<Event> all();
    static QList<Event> of(int type);
    static int count(int type) { return of(type).size(); }

    /// Forgets all that were sent so far, also those still on their way.
    static void clear();

    /// Has every event handled by a call of this; null for none.
    static void setReaction(void (*reaction)(int type));

private:
    KVR_ID m_id;
};

/// Collects what is written to the standard error of the process, by whatever library, for as long as it lives.
class ErrorOutput
{
public:
    ErrorOutput();
    ~ErrorOutput();
    ErrorOutput(const ErrorOutput &) = delete;
    ErrorOutput &operator=(const ErrorOutput &) = delete;

    QString text() const;

private:
    int m_file;
    int m_previous;
};
