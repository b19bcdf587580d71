// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "CallText.h"
#include "RecordingPlatform.h"

#include <QHash>
#include <QQueue>
#include <mutex>
#include <optional>

/// The log of calls, and the answers that the test wants to them.
class CallScript
{
public:
    using Answer = RecordingPlatform::Answer;
    using Action = std::function<void()>;

    /// Lives as long as the process, so that threads may still call at its end.
    static CallScript &instance();

    /// Notes a call and finds the scripted answer to it, if any.
    std::optional<Answer> called(const char *function, const QByteArray &call);

    QByteArrayList calls() const;
    QByteArrayList takeCalls();
    void answer(const char *function, const Answer &answer);
    void answerOnce(const char *function, const Answer &answer);
    void onCall(const char *function, const Action &action);
    /// The next number for a player or a recording.
    int nextId(const char *function);
    void reset();

private:
    mutable std::mutex m_mutex;
    QByteArrayList m_calls;
    QHash<QByteArray, Answer> m_answers;
    QHash<QByteArray, QQueue<Answer>> m_queues;
    QHash<QByteArray, Action> m_actions;
    QHash<QByteArray, int> m_lastIds;
};

/// The scripted answer to a call, or else that one.
template <typename... Args>
RecordingPlatform::Answer recordedOr(const RecordingPlatform::Answer &unscripted, const char *function,
                                     const Args &...args)
{
    return CallScript::instance().called(function, CallText::ofCall(function, args...)).value_or(unscripted);
}
