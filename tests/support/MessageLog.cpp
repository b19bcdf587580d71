// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MessageLog.h"

#include <atomic>

namespace {

std::atomic<MessageLog *> current{nullptr};

}

MessageLog::MessageLog()
    : m_forwards(qEnvironmentVariableIsSet("KAVRO_TEST_MESSAGES"))
{
    if (current.exchange(this))
        qFatal("There is a message log already");
    m_previous = qInstallMessageHandler(handle);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(m_previous);
    current = nullptr;
}

QList<MessageLog::Message> MessageLog::messages() const
{
    const QMutexLocker lock(&m_mutex);
    return m_messages;
}

QStringList MessageLog::lines(QtMsgType type) const
{
    QStringList texts;
    for (const Message &message : messages()) {
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
    const QMutexLocker lock(&m_mutex);
    m_messages.clear();
}

void MessageLog::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    MessageLog *log = current;
    if (log->m_forwards || type == QtFatalMsg)
        log->m_previous(type, context, text);
    const QMutexLocker lock(&log->m_mutex);
    log->m_messages += {type, text};
}
