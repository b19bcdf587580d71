// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "WatchedRun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int pollInterval = 100; // ms

[[noreturn]] void runBody(const std::function<void(ActionLog *)> &body, ActionLog *log)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    body(log);
    log->finish();
    // What the web engine does after the body is of no interest here.
    std::_Exit(EXIT_SUCCESS);
}

qint64 residentBytes(pid_t process)
{
    QFile file(QString("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

QString faultOf(int status, const ActionLog *log)
{
    if (WIFSIGNALED(status))
        return QString("was ended by signal %1, %2").arg(WTERMSIG(status)).arg(strsignal(WTERMSIG(status)));
    if (WEXITSTATUS(status) != EXIT_SUCCESS)
        return QString("ended itself with status %1").arg(WEXITSTATUS(status));
    return log->isFinished() ? QString() : QString("left before the end");
}

// Ends the process at the first limit that it passes.
class Watch
{
public:
    Watch(const ActionLog *log, const WatchedRun::Limits &limits)
        : m_log(log)
        , m_limits(limits)
    {
        m_sinceAction.start();
    }

    QString fault(qint64 memory)
    {
        if (m_log->count() != m_count) {
            m_count = m_log->count();
            m_sinceAction.start();
        }
        if (m_sinceAction.elapsed() > m_limits.longestAction)
            return QString("did not come to an end within %1 s").arg(m_limits.longestAction / 1000.0);
        if (memory > m_limits.memory)
            return QString("took more than %1 MiB").arg(m_limits.memory >> 20);
        return {};
    }

private:
    const ActionLog *m_log;
    const WatchedRun::Limits m_limits;
    QElapsedTimer m_sinceAction;
    quint32 m_count = 0;
};

} // namespace

WatchedRun::Outcome WatchedRun::run(const std::function<void(ActionLog *)> &body, const Limits &limits)
{
    ActionLog *log = ActionLog::create();
    const pid_t process = fork();
    if (process < 0)
        qFatal("There can be no process for the run: %s", std::strerror(errno));
    if (process == 0)
        runBody(body, log);

    Outcome outcome = {};
    Watch watch(log, limits);
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        const qint64 memory = residentBytes(process);
        outcome.memory = std::max(outcome.memory, memory);
        if (outcome.fault.isEmpty()) {
            outcome.fault = watch.fault(memory);
            if (!outcome.fault.isEmpty())
                kill(process, SIGABRT); // leaves a core file where these are kept
        }
        QThread::msleep(pollInterval);
    }
    if (outcome.fault.isEmpty())
        outcome.fault = faultOf(status, log);
    outcome.actions = log->count();
    outcome.latest = log->latest();
    return outcome;
}
