// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QStringList>
#include <QtGlobal>

/// Collects what is written to Qt's message log, by any thread, for as long as it lives. One at a time. With
/// KAVRO_TEST_MESSAGES set in the environment, messages appear on standard error as well.
class MessageLog
{
public:
    struct Message
    {
        QtMsgType type;
        QString text;
    };

    MessageLog();
    ~MessageLog();
    MessageLog(const MessageLog &) = delete;
    MessageLog &operator=(const MessageLog &) = delete;

    QList<Message> messages() const;
    /// The texts of the messages of one type.
    QStringList lines(QtMsgType type) const;
    QStringList debugLines() const { return lines(QtDebugMsg); }
    QStringList warnings() const { return lines(QtWarningMsg); }
    /// Whether a message of any type has this for its whole text.
    bool contains(const QString &text) const;
    void clear();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QList<Message> m_messages;
    QtMessageHandler m_previous = nullptr;
    bool m_forwards;
};
