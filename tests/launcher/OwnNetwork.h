// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QUdpSocket>

/// A network that only this process and its children are in: loopback, and an address that counts as one elsewhere.
namespace OwnNetwork {

const char elsewhere[] = "203.0.113.7";

/// Goes there, before the process has a second thread. Returns why that is impossible, or nothing.
QString enter();
/// Puts one file in the place of another there.
bool replaceFile(const QString &place, const QString &file);

} // namespace OwnNetwork

/// A name server on an address of loopback, as many PCs have one.
class NameServer : public QObject
{
    Q_OBJECT

public:
    static constexpr char address[] = "127.0.0.53";

    /// Answers this name with this address, and that it knows no other, but for those of silent.example, which it does
    /// not answer.
    NameServer(const QByteArray &name, const QHostAddress &found);
    bool isListening() const;
    /// How often it has been asked for what it does not answer.
    int unanswered() const { return m_unanswered; }

private:
    void answer();

    QUdpSocket m_socket;
    QByteArray m_name; // as in a message
    QHostAddress m_found;
    int m_unanswered = 0;
};
