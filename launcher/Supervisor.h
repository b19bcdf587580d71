// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "BoxOutput.h"
#include "Options.h"

#include <QElapsedTimer>
#include <QProcess>

class UnixSignals;

/// Runs the desk box's process inside the box, ends it when this process is told to end, and knows how it ended. After
/// a crash it says what happened, and starts the box again if that is wanted.
class Supervisor : public QObject
{
    Q_OBJECT

public:
    /// The options are those for the process inside.
    Supervisor(const QString &boxDirectory, const Options &options);

    /// Returns when the box is off: an ExitStatus, or the status of what went wrong.
    int run();

signals:
    void endAskedFor();

private:
    class Process : public QProcess
    {
    public:
        explicit Process(const BoxOutput *output);

        QVector<int> descriptors;

    protected:
        void setupChildProcess() override;

    private:
        const BoxOutput *m_output;
    };

    int runBox(const Options &options);
    int statusOfEnd();
    void sayCrash() const;
    void pause();
    std::optional<double> timeLeft() const;
    void end();
    void kill();
    void signalBox(int signalNumber) const;

    const QString m_boxDirectory;
    const Options m_options;
    BoxOutput m_output;
    Process m_process;
    QElapsedTimer m_sinceFirstStart;
    int m_crash = 0;      // the signal that ended the box last, unless that was asked for
    int m_shortLives = 0; // of the box, one after the other
    bool m_ending = false;
    bool m_killed = false; // by us
};
