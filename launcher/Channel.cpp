// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Channel.h"

#include "Report.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>

Channel::Channel(int descriptor)
    : m_descriptor(fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0 ? descriptor : -1)
{
    if (m_descriptor < 0)
        return;
    setReporter([this](const QByteArray &text, bool mayWait) {
        if (mayWait)
            send(Line, text);
        else
            sendNow(text);
    });
}

Channel::~Channel()
{
    if (m_descriptor >= 0)
        setReporter(nullptr);
}

void Channel::tellPage(const QByteArray &address)
{
    if (m_descriptor >= 0)
        send(Page, address);
}

void Channel::tellMemory(const char *text, size_t size) const
{
    char message[32] = {Memory};
    if (m_descriptor < 0 || size >= sizeof message)
        return;
    for (size_t i = 0; i < size; ++i)
        message[i + 1] = text[i];
    ::send(m_descriptor, message, size + 1, MSG_DONTWAIT | MSG_NOSIGNAL);
}

// Takes no memory, for there may be none.
void Channel::sendNow(const QByteArray &text) const
{
    char kind = LineNow;
    iovec parts[] = {{&kind, 1}, {const_cast<char *>(text.constData()), size_t(text.size())}};
    msghdr message = {};
    message.msg_iov = parts;
    message.msg_iovlen = 2;
    sendmsg(m_descriptor, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void Channel::send(Kind kind, const QByteArray &text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const QByteArray message = char(kind) + text;
    ssize_t count;
    do
        count = ::send(m_descriptor, message.constData(), size_t(message.size()), MSG_NOSIGNAL);
    while (count < 0 && errno == EINTR);
    char answer;
    while (kind == Line && count > 0 && recv(m_descriptor, &answer, 1, 0) < 0 && errno == EINTR) { }
}
