// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BoxOutput.h"

#include "Channel.h"
#include "Outlet.h"
#include "Report.h"
#include "TerminalText.h"

#include <QThread>

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const int patience = 2000;          // ms, with an output that nobody reads, before what the box writes is lost
const int patienceAtEnd = 3000;     // ms, with an output that nobody reads
const int retryTime = 10;           // ms
const int bufferSize = 1 << 16;     // bytes
const int longestMessage = 1 << 16; // bytes
const int mostAtOnce = 1 << 20;     // bytes; more than what can lie in a socket
const int longestLine = 1 << 16;    // bytes, on a terminal

void closeEnd(int *end)
{
    if (*end >= 0)
        ::close(*end);
    *end = -1;
}

bool areSameFile(int one, int other)
{
    struct stat first = {};
    struct stat second = {};
    return fstat(one, &first) == 0 && fstat(other, &second) == 0 && first.st_dev == second.st_dev
        && first.st_ino == second.st_ino;
}

const char ownPrefix[] = "kavro-box: ";

// Sockets and not pipes, because a page cannot open /proc/self/fd/1 then.
bool makePair(int type, int *end, int *boxEnd)
{
    int ends[2];
    if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    *end = ends[0];
    *boxEnd = ends[1];
    return true;
}

} // namespace

struct BoxOutput::Stream
{
    explicit Stream(int descriptor)
        : outlet(descriptor)
    {
    }

    Outlet outlet;
    int end = -1;
    int boxEnd = -1;
    std::unique_ptr<QSocketNotifier> notifier;
    QByteArray line;       // in progress, of a terminal
    bool isInLine = false; // the last byte that was passed on does not end a line
    qint64 lost = 0;       // bytes
};

BoxOutput::BoxOutput()
{
    m_streams.push_back(std::make_unique<Stream>(STDOUT_FILENO));
    if (!areSameFile(STDOUT_FILENO, STDERR_FILENO))
        m_streams.push_back(std::make_unique<Stream>(STDERR_FILENO));
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &BoxOutput::pump);
    setReporter([this](const QByteArray &text, bool) { write(text); });
}

BoxOutput::~BoxOutput()
{
    close();
    setReporter(nullptr);
    for (const auto &stream : m_streams)
        stream->outlet.finish(patienceAtEnd);
}

bool BoxOutput::open()
{
    m_page.clear();
    m_memory = 0;
    bool isOpen = makePair(SOCK_SEQPACKET, &m_channel, &m_boxChannel);
    for (const auto &stream : m_streams)
        isOpen = isOpen && makePair(SOCK_STREAM, &stream->end, &stream->boxEnd);
    if (!isOpen)
        return false;
    m_channelNotifier = std::make_unique<QSocketNotifier>(m_channel, QSocketNotifier::Read);
    connect(m_channelNotifier.get(), &QSocketNotifier::activated, this, &BoxOutput::pump);
    for (const auto &stream : m_streams) {
        stream->notifier = std::make_unique<QSocketNotifier>(stream->end, QSocketNotifier::Read);
        connect(stream->notifier.get(), &QSocketNotifier::activated, this, &BoxOutput::pump);
    }
    return true;
}

void BoxOutput::becomeStandardOutput() const
{
    dup2(m_streams.front()->boxEnd, STDOUT_FILENO);
    dup2(m_streams.back()->boxEnd, STDERR_FILENO);
}

void BoxOutput::closeBoxEnds()
{
    closeEnd(&m_boxChannel);
    for (const auto &stream : m_streams)
        closeEnd(&stream->boxEnd);
}

void BoxOutput::close()
{
    closeBoxEnds();
    while (!pump())
        QThread::msleep(retryTime);
    m_retry.stop();
    m_channelNotifier.reset();
    closeEnd(&m_channel);
    for (const auto &stream : m_streams) {
        stream->notifier.reset();
        closeEnd(&stream->end);
        if (!stream->line.isEmpty())
            passOn(stream.get(), "\n");
        sayLost(stream.get());
    }
}

// Whether all is passed on that was there; what is not yet comes later.
bool BoxOutput::pump()
{
    bool isDone = drain();
    // A message comes after what its sender had written before.
    while (isDone && receive()) {
        isDone = drain();
        if (isDone)
            handleMessage();
    }
    if (!isDone)
        m_retry.start(retryTime);
    if (m_channelNotifier)
        m_channelNotifier->setEnabled(isDone && m_channel >= 0);
    return isDone;
}

bool BoxOutput::drain()
{
    bool isDone = true;
    for (const auto &stream : m_streams) {
        const bool isDrained = drain(stream.get());
        if (stream->notifier)
            stream->notifier->setEnabled(isDrained && stream->end >= 0);
        isDone = isDone && isDrained;
    }
    return isDone;
}

bool BoxOutput::drain(Stream *stream)
{
    QByteArray bytes;
    for (qint64 total = 0; stream->end >= 0 && total < mostAtOnce; total += bytes.size()) {
        const bool isFull = stream->outlet.isFull();
        if (isFull && !stream->outlet.isStuck(patience))
            return false;
        bytes.resize(bufferSize);
        const ssize_t count = recv(stream->end, bytes.data(), bufferSize, MSG_DONTWAIT);
        if (count == 0)
            closeEnd(&stream->end);
        if (count <= 0)
            break;
        bytes.resize(int(count));
        m_lastLines.add(indexOf(stream), bytes);
        if (isFull) {
            stream->lost += count;
        } else {
            sayLost(stream);
            passOn(stream, bytes);
        }
    }
    return true;
}

void BoxOutput::passOn(Stream *stream, const QByteArray &bytes)
{
    if (!stream->outlet.isTerminal()) {
        stream->outlet.write(bytes);
        stream->isInLine = !bytes.endsWith('\n');
        return;
    }
    QByteArray text;
    for (const char byte : bytes) {
        const bool isEnd = byte == '\n';
        if (!isEnd)
            stream->line += byte;
        if (isEnd || stream->line.size() >= longestLine) {
            text += TerminalText::harmless(stream->line) + '\n';
            stream->line.clear();
        }
    }
    stream->outlet.write(text);
}

bool BoxOutput::receive()
{
    if (!m_message.isEmpty())
        return true;
    if (m_channel < 0)
        return false;
    m_message.resize(longestMessage);
    const ssize_t count = recv(m_channel, m_message.data(), longestMessage, MSG_DONTWAIT);
    m_message.resize(int(qMax(count, ssize_t(0))));
    if (count == 0) {
        m_channelNotifier->setEnabled(false);
        closeEnd(&m_channel);
    }
    return count > 0;
}

void BoxOutput::handleMessage()
{
    const QByteArray text = m_message.mid(1);
    switch (m_message.at(0)) {
    case Channel::Line:
        write(text);
        send(m_channel, "", 1, MSG_DONTWAIT | MSG_NOSIGNAL);
        break;
    case Channel::LineNow:
        write(text);
        break;
    case Channel::Page:
        m_page = text;
        break;
    case Channel::Memory:
        m_memory = text.toULongLong();
        break;
    default:
        break;
    }
    m_message.clear();
}

// A line of the launcher's own, which may have a page's words in it.
void BoxOutput::write(const QByteArray &text)
{
    Stream *stream = m_streams.back().get();
    const QByteArray harmless = ownPrefix + TerminalText::harmless(text);
    m_lastLines.addOwn(harmless);
    QByteArray line = (stream->outlet.isTerminal() ? harmless : ownPrefix + text) + '\n';
    if (stream->isInLine)
        line.prepend('\n');
    stream->isInLine = false;
    stream->outlet.write(line);
}

void BoxOutput::sayLost(Stream *stream)
{
    if (stream->lost == 0)
        return;
    const qint64 lost = stream->lost;
    stream->lost = 0;
    report(QString("%1 bytes that the box wrote are lost, because nobody has read its output for %2 s")
               .arg(lost)
               .arg(patience / 1000));
}

size_t BoxOutput::indexOf(const Stream *stream) const
{
    return stream == m_streams.front().get() ? 0 : 1;
}
