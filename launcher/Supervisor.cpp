// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Supervisor.h"

#include "Descriptors.h"
#include "ExitStatus.h"
#include "Places.h"
#include "Report.h"
#include "UnixSignals.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace {

const int timeBetweenSignals = 200; // ms
const int longestEnd = 10000;       // ms, of a page whose script does not let the box end
const int inBoxFailed = 125;
const rlim_t stackSize = 256 << 20; // bytes

// The web engine goes down the elements of a page one in the other, and a script can nest any number of them.
void enlargeStack()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur >= stackSize)
        return;
    limit.rlim_cur = std::min(stackSize, limit.rlim_max);
    setrlimit(RLIMIT_STACK, &limit);
}

} // namespace

void Supervisor::Process::setupChildProcess()
{
    // Signals of the terminal reach this process alone, which passes them on. The programs between it and the one
    // inside live until that one has ended, which sets handlers of its own.
    // Programs inside have no business with the terminal.
    setsid();
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signalNumber, SIG_IGN);
    enlargeStack();
    Descriptors::setInherited(descriptors, true);
}

Supervisor::Supervisor()
{
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setStandardInputFile(QProcess::nullDevice());
}

void Supervisor::pass(int descriptor)
{
    m_process.descriptors << descriptor;
}

int Supervisor::run(const QString &boxDirectory, const QStringList &shared, const QStringList &argumentsInside)
{
    UnixSignals signalsHere({SIGINT, SIGTERM, SIGHUP});
    connect(&signalsHere, &UnixSignals::received, this, &Supervisor::end);

    QEventLoop untilFinished;
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &untilFinished, &QEventLoop::quit);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(Descriptors::variable, QString::fromLatin1(Descriptors::list(m_process.descriptors)));
    m_process.setProcessEnvironment(environment);
    m_process.start(Places::inBox(),
                    shared + QStringList{boxDirectory, "--", Places::programInside()} + argumentsInside);
    if (!m_process.waitForStarted()) {
        report(QString("%1 cannot be started (%2); install the desk box again")
                   .arg(Places::inBox(), m_process.errorString()));
        return ExitStatus::NoBox;
    }
    if (m_process.state() != QProcess::NotRunning)
        untilFinished.exec();

    if (m_process.exitStatus() == QProcess::CrashExit)
        return 128 + m_process.exitCode();
    if (m_process.exitCode() == inBoxFailed)
        return ExitStatus::NoBox;
    if (m_process.exitCode() > 128)
        report(QString("the box was ended by signal %1").arg(m_process.exitCode() - 128));
    return m_process.exitCode();
}

void Supervisor::end()
{
    if (m_ending) {
        signalBox(SIGKILL); // asked for twice
        return;
    }
    m_ending = true;
    // Again and again, because a box that is just starting does not take note yet.
    auto *repeat = new QTimer(&m_process);
    connect(repeat, &QTimer::timeout, this, [this] { signalBox(SIGTERM); });
    repeat->start(timeBetweenSignals);
    auto *last = new QTimer(&m_process);
    connect(last, &QTimer::timeout, this, [this] { signalBox(SIGKILL); });
    last->start(longestEnd);
    signalBox(SIGTERM);
}

void Supervisor::signalBox(int signalNumber) const
{
    const qint64 process = m_process.processId();
    if (process > 0)
        kill(-pid_t(process), signalNumber);
}
