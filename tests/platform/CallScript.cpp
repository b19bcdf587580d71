// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "CallScript.h"

#include <dlfcn.h>
#include <utility>

namespace {

// A misspelt name would make a test pass for the wrong reason.
void requireFunction(const char *function)
{
    if (qstrncmp(function, "KVR_", 4) != 0 || !dlsym(RTLD_DEFAULT, function))
        qFatal("The platform has no function %s", function);
}

} // namespace

CallScript &CallScript::instance()
{
    static auto *script = new CallScript;
    return *script;
}

std::optional<CallScript::Answer> CallScript::called(const char *function, const QByteArray &call)
{
    std::optional<Answer> answer;
    Action action;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_calls += call;
        action = m_actions.value(function);
        const auto queue = m_queues.find(function);
        const auto lasting = m_answers.constFind(function);
        if (queue != m_queues.end() && !queue->isEmpty())
            answer = queue->dequeue();
        else if (lasting != m_answers.constEnd())
            answer = *lasting;
    }
    if (action)
        action();
    return answer;
}

QByteArrayList CallScript::calls() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

QByteArrayList CallScript::takeCalls()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_calls, {});
}

void CallScript::answer(const char *function, const Answer &answer)
{
    requireFunction(function);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_answers.insert(function, answer);
}

void CallScript::answerOnce(const char *function, const Answer &answer)
{
    requireFunction(function);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_queues[function].enqueue(answer);
}

void CallScript::onCall(const char *function, const Action &action)
{
    requireFunction(function);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_actions.insert(function, action);
}

int CallScript::nextId(const char *function)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return ++m_lastIds[function];
}

void CallScript::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.clear();
    m_answers.clear();
    m_queues.clear();
    m_actions.clear();
    m_lastIds.clear();
}
