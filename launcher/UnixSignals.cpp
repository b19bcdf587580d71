// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "UnixSignals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

int writingEnd = -1;

void handle(int signalNumber)
{
    const int savedErrno = errno;
    const char byte = static_cast<char>(signalNumber);
    // A full pipe already holds more signals than anybody will look at.
    [[maybe_unused]] const ssize_t written = write(writingEnd, &byte, 1);
    errno = savedErrno;
}

} // namespace

UnixSignals::UnixSignals(std::initializer_list<int> signalNumbers)
    : m_signalNumbers(signalNumbers)
{
    if (pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("no pipe for signals: %s", qPrintable(qt_error_string()));
    writingEnd = m_ends[1];
    auto *notifier = new QSocketNotifier(m_ends[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &UnixSignals::read);

    struct sigaction action = {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : m_signalNumbers)
        sigaction(signalNumber, &action, nullptr);
}

UnixSignals::~UnixSignals()
{
    for (const int signalNumber : m_signalNumbers)
        std::signal(signalNumber, SIG_IGN);
    close(m_ends[0]);
    close(m_ends[1]);
}

void UnixSignals::read()
{
    char byte;
    while (::read(m_ends[0], &byte, 1) == 1)
        emit received(byte);
}
