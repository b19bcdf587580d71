// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Supervisor.h"

#include "CrashFile.h"
#include "Descriptors.h"
#include "ExitStatus.h"
#include "Limits.h"
#include "Places.h"
#include "Report.h"
#include "UnixSignals.h"

#include <QEventLoop>
#include <QTimer>

#include <csignal>
#include <cstring>

#include <unistd.h>

namespace {

const int timeBetweenSignals = 200; // ms
const int longestEnd = 10000;       // ms, of a page whose script does not let the box end
const int inBoxFailed = 125;

// A box that crashes as soon as it is started would otherwise do nothing else.
const qint64 shortLife = 10000; // ms
const int freeStarts = 3;       // after short lives
const double firstPause = 5;    // s; each is twice as long as the one before
const double longestPause = 60; // s

const double memoryShare = 0.75; // of the limit; the piece that was too much is not counted

QString signalText(int signalNumber)
{
    return QString("signal %1, %2").arg(signalNumber).arg(sigdescr_np(signalNumber));
}

} // namespace

Supervisor::Process::Process(const BoxOutput *output)
    : m_output(output)
{
    setProcessChannelMode(ForwardedChannels);
    setStandardInputFile(nullDevice());
}

void Supervisor::Process::setupChildProcess()
{
    // Signals of the terminal reach this process alone, which passes them on. The programs between it and the one
    // inside live until that one has ended, which sets handlers of its own.
    // Programs inside have no business with the terminal.
    setsid();
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signalNumber, SIG_IGN);
    m_output->becomeStandardOutput();
    Descriptors::setInherited(descriptors, true);
    Limits::set();
}

Supervisor::Supervisor(const QString &boxDirectory, const Options &options)
    : m_boxDirectory(boxDirectory)
    , m_options(options)
    , m_process(&m_output)
{
}

int Supervisor::run()
{
    UnixSignals signalsHere({SIGINT, SIGTERM, SIGHUP});
    connect(&signalsHere, &UnixSignals::received, this, &Supervisor::end);

    m_sinceFirstStart.start();
    Options options = m_options;
    while (true) {
        QElapsedTimer life;
        life.start();
        const int status = runBox(options);
        if (m_crash == 0)
            return status;
        sayCrash();
        if (!m_options.keepRunning || m_ending)
            return status;
        m_shortLives = life.elapsed() < shortLife ? m_shortLives + 1 : 0;
        pause();
        if (m_ending)
            return ExitStatus::Done;
        options.keys.clear();
        options.exitAfter = timeLeft();
    }
}

int Supervisor::runBox(const Options &options)
{
    QEventLoop untilFinished;
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &untilFinished, &QEventLoop::quit);
    if (!m_output.open()) {
        report(QString("the box cannot be started (%1); close some programs").arg(qt_error_string()));
        return ExitStatus::NoBox;
    }
    Options optionsInside = options;
    optionsInside.channel = m_output.channel();
    m_process.descriptors = {m_output.channel()};
    if (m_options.screenshotDescriptor >= 0)
        m_process.descriptors << m_options.screenshotDescriptor;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(Descriptors::variable, QString::fromLatin1(Descriptors::list(m_process.descriptors)));
    m_process.setProcessEnvironment(environment);
    m_process.start(Places::inBox(),
                    options.shared + QStringList{m_boxDirectory, "--", Places::programInside()}
                        + optionsInside.forInside());
    m_output.closeBoxEnds();
    if (!m_process.waitForStarted()) {
        report(QString("%1 cannot be started (%2); install the desk box again")
                   .arg(Places::inBox(), m_process.errorString()));
        return ExitStatus::NoBox;
    }
    if (m_process.state() != QProcess::NotRunning)
        untilFinished.exec();
    m_output.close();
    return statusOfEnd();
}

int Supervisor::statusOfEnd()
{
    const bool isCrash = m_process.exitStatus() == QProcess::CrashExit;
    const int status = isCrash ? 128 + m_process.exitCode() : m_process.exitCode();
    m_crash = 0;
    if (status == inBoxFailed)
        return ExitStatus::NoBox;
    if (status <= 128)
        return status;
    if (m_killed) {
        report("the box did not end by itself, so it was ended as it was");
        return m_options.screenshot.isEmpty() ? ExitStatus::Done : ExitStatus::Failed;
    }
    m_crash = status - 128;
    return status;
}

void Supervisor::sayCrash() const
{
    const QString page = m_output.page().isEmpty() ? "its first page" : m_output.page();
    const std::optional<rlim_t> memory = Limits::memory();
    QString text = QString("the box crashed (%1) on %2").arg(signalText(m_crash), page);
    if (memory && double(m_output.memory()) > double(*memory) * memoryShare)
        text = QString("the page took more than the %1 of memory that a box has, and %2")
                   .arg(Limits::memoryText(*memory), text);
    else if (m_crash == SIGKILL)
        text = QString("the box was killed (%1; the system does that for want of memory) on %2")
                   .arg(signalText(m_crash), page);

    QByteArray content = text.toUtf8() + "\nThe last lines that it wrote:\n\n";
    const QList<QByteArray> lines = m_output.lastLines().lines();
    for (const QByteArray &line : lines)
        content += line + '\n';
    QString error;
    const QString file = CrashFile::write(m_boxDirectory, content, &error);
    if (file.isEmpty())
        report(QString("%1; no crash file can be written (%2)").arg(text, error));
    else
        report(QString("%1; what it wrote last is in %2").arg(text, file));
}

// Before the next start.
void Supervisor::pause()
{
    if (m_shortLives <= freeStarts) {
        report("it is started again");
        return;
    }
    double seconds = firstPause;
    for (int i = freeStarts + 1; i < m_shortLives && seconds < longestPause; ++i)
        seconds *= 2;
    seconds = qMin(seconds, longestPause);
    report(QString("it has crashed %1 times within seconds of its start, and is started again in %2 s")
               .arg(m_shortLives)
               .arg(seconds));
    QEventLoop wait;
    connect(this, &Supervisor::endAskedFor, &wait, &QEventLoop::quit);
    QTimer::singleShot(qRound(1000 * qMin(seconds, timeLeft().value_or(seconds))), &wait, &QEventLoop::quit);
    wait.exec();
}

std::optional<double> Supervisor::timeLeft() const
{
    if (!m_options.exitAfter)
        return std::nullopt;
    return qMax(*m_options.exitAfter - double(m_sinceFirstStart.elapsed()) / 1000, 0.0);
}

void Supervisor::end()
{
    if (m_ending) {
        kill(); // asked for twice
        return;
    }
    m_ending = true;
    emit endAskedFor();
    // Again and again, because a box that is just starting does not take note yet.
    auto *repeat = new QTimer(&m_process);
    connect(repeat, &QTimer::timeout, this, [this] { signalBox(SIGTERM); });
    repeat->start(timeBetweenSignals);
    auto *last = new QTimer(&m_process);
    connect(last, &QTimer::timeout, this, &Supervisor::kill);
    last->start(longestEnd);
    signalBox(SIGTERM);
}

void Supervisor::kill()
{
    m_killed = true;
    signalBox(SIGKILL);
}

void Supervisor::signalBox(int signalNumber) const
{
    const qint64 process = m_process.processId();
    if (process > 0)
        ::kill(-pid_t(process), signalNumber);
}
