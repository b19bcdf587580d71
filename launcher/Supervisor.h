// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QProcess>

class UnixSignals;

/// Runs the desk box's process inside the box, ends it when this process is told to end, and knows how it ended.
class Supervisor : public QObject
{
    Q_OBJECT

public:
    Supervisor();

    /// Lets the process inside have a descriptor under its number.
    void pass(int descriptor);
    /// Returns when the box is off: an ExitStatus, or the status of what went wrong.
    int run(const QString &boxDirectory, const QStringList &shared, const QStringList &argumentsInside);

private:
    class Process : public QProcess
    {
    public:
        QVector<int> descriptors;

    protected:
        void setupChildProcess() override;
    };

    void end();
    void signalBox(int signalNumber) const;

    Process m_process;
    bool m_ending = false;
};
