// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QProcess>
#include <QStringList>
#include <QVector>

/// A process that a benchmark measures. Its messages are shown if it fails.
class Child
{
public:
    /// Starts a program: a path, or the name of one beside this program.
    Child(const QString &program, const QStringList &arguments);
    /// Kills the process and what it has started.
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    qint64 id() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    /// Waits for the end and gives the numbers that it has printed. Ends this program with a message if there are none.
    QVector<double> values();
    /// Ends this program with a message and the process's own messages.
    [[noreturn]] void fail(const QString &message);

private:
    // Leads a process group, so that it can be ended together with its own children.
    class GroupLeader : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    GroupLeader m_process;
};
