// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QObject>

#include <initializer_list>

/// Brings signals of the operating system into the event loop. One object a process; the signals are ignored after it.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    explicit UnixSignals(std::initializer_list<int> signalNumbers);
    ~UnixSignals() override;

signals:
    void received(int signalNumber);

private:
    void read();

    const QList<int> m_signalNumbers;
    int m_ends[2];
};
