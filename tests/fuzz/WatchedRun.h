// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "ActionLog.h"

#include <QString>
#include <functional>

/// Runs a body in a process of its own, and sees whether it crashes, hangs, leaves or grows.
namespace WatchedRun {

struct Limits
{
    int longestAction; ///< milliseconds
    qint64 memory;     ///< resident bytes
};

struct Outcome
{
    QString fault; ///< what went wrong, in the words of a sentence's end; empty if nothing did
    quint32 actions;
    QByteArrayList latest; ///< the last actions, see ActionLog
    qint64 memory;         ///< the most that was seen, in bytes
};

/// To be called while the program has a single thread. The body notes its actions; it ends well by returning.
Outcome run(const std::function<void(ActionLog *)> &body, const Limits &limits);

} // namespace WatchedRun
