// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MessageLog.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace {

// A thread may be writing a message while the log comes or goes.
std::mutex mutex;
MessageLog *current = nullptr; // under mutex

} // namespace

MessageLog::MessageLog()
    : m_forwards(qEnvironmentVariableIsSet("KAVRO_TEST_MESSAGES"))
{
    std::unique_lock<std::mutex> lock(mutex);
    const bool second = std::exchange(current, this);
    lock.unlock();
    if (second)
        qFatal("There is a message log already");
    m_previous = qInstallMessageHandler(handle);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(m_previous);
    const std::lock_guard<std::mutex> lock(mutex);
    current = nullptr;
}

QList<MessageLog::Message> MessageLog::messages() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return m_messages;
}

QStringList MessageLog::lines(QtMsgType type) const
{
    QStringList texts;
    const auto all = messages();
    for (const Message &message : all) {
        if (message.type == type)
            texts += message.text;
    }
    return texts;
}

bool MessageLog::contains(const QString &text) const
{
    const QList<Message> all = messages();
    return std::any_of(all.begin(), all.end(), [&text](const Message &message) { return message.text == text; });
}

void MessageLog::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    m_messages.clear();
}

void MessageLog::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    QtMessageHandler forwardTo = nullptr;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (current) {
            current->m_messages += {type, text};
            if (current->m_forwards || type == QtFatalMsg)
                forwardTo = current->m_previous;
        }
    }
    if (forwardTo)
        forwardTo(type, context, text);
}
