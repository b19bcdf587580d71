// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

/// Where the platform's callbacks, on whatever thread they run, hand over their events. The browser listens through a
/// queued connection.
class EventNotifier : public QObject
{
    Q_OBJECT

public:
    /// The one notifier, made by the first call and never deleted. The browser makes it on the GUI thread before any
    /// page can start a player.
    static EventNotifier *instance();

    /// argument: a player's or recording's identifier, or what the platform tells of the box. Always 0.
    int notifyEvent(int argument, int code);

signals:
    /// The argument and the code of notifyEvent.
    void eventOccured(int, int);

private:
    static EventNotifier *_inst;
};
