// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "OwnNetwork.h"

#include <QFile>
#include <QNetworkDatagram>
#include <QtEndian>

#include <cstring>

#include <arpa/inet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

bool writeText(const char *fileName, const QByteArray &text)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size();
}

// Users keep their number: a box is not to take them for root.
bool mapUser(uid_t user, gid_t group)
{
    const auto same = [](unsigned number) {
        return QByteArray::number(number) + ' ' + QByteArray::number(number) + " 1";
    };
    return writeText("/proc/self/setgroups", "deny") && writeText("/proc/self/uid_map", same(user))
        && writeText("/proc/self/gid_map", same(group));
}

bool leaveNetwork()
{
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) == 0)
        return true;
    const uid_t user = geteuid();
    const gid_t group = getegid();
    return unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) == 0 && mapUser(user, group);
}

ifreq requestFor(const char *interface)
{
    ifreq request = {};
    std::strncpy(request.ifr_name, interface, sizeof request.ifr_name - 1);
    return request;
}

bool setAddress(int socket, unsigned long what, const char *address)
{
    ifreq request = requestFor("lo:1");
    sockaddr_in text = {};
    text.sin_family = AF_INET;
    inet_pton(AF_INET, address, &text.sin_addr);
    std::memcpy(&request.ifr_addr, &text, sizeof text);
    return ioctl(socket, what, &request) == 0;
}

bool setUpLoopback()
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request = requestFor("lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING | IFF_LOOPBACK;
    const bool done = ioctl(socket, SIOCSIFFLAGS, &request) == 0
        && setAddress(socket, SIOCSIFADDR, OwnNetwork::elsewhere)
        && setAddress(socket, SIOCSIFNETMASK, "255.255.255.255");
    close(socket);
    return done;
}

} // namespace

QString OwnNetwork::enter()
{
    if (leaveNetwork() && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 && setUpLoopback())
        return {};
    return QString("this kernel gives the test no network of its own (%1)").arg(qt_error_string());
}

bool OwnNetwork::replaceFile(const QString &place, const QString &file)
{
    return mount(qPrintable(file), qPrintable(place), nullptr, MS_BIND, nullptr) == 0;
}

NameServer::NameServer(const QByteArray &name, const QHostAddress &found)
    : m_found(found)
{
    const QList<QByteArray> labels = name.split('.');
    for (const QByteArray &label : labels)
        m_name += char(label.size()) + label;
    m_name += '\0';
    m_socket.bind(QHostAddress(address), 53);
    connect(&m_socket, &QUdpSocket::readyRead, this, &NameServer::answer);
}

bool NameServer::isListening() const
{
    return m_socket.state() == QAbstractSocket::BoundState;
}

void NameServer::answer()
{
    const int headSize = 12;
    const int nameError = 3;
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram asked = m_socket.receiveDatagram();
        const QByteArray question = asked.data().mid(headSize, asked.data().indexOf('\0', headSize) + 5 - headSize);
        if (question.toLower().contains("\6silent\7example")) {
            ++m_unanswered;
            continue;
        }
        const bool isKnown = question.toLower().startsWith(m_name);
        const bool isFound = isKnown && qFromBigEndian<quint16>(question.constData() + m_name.size()) == 1;
        const auto word = [](quint16 value) { return QByteArray(1, char(value >> 8)) + char(value & 0xff); };

        QByteArray reply = asked.data().left(2) + word(quint16(0x8180 | (isKnown ? 0 : nameError))) + word(1)
            + word(isFound ? 1 : 0) + word(0) + word(0) + question;
        if (isFound) {
            const quint32 found = m_found.toIPv4Address();
            // The name above, an address of the internet, without a life time.
            reply += word(0xc000 | headSize) + word(1) + word(1) + word(0) + word(0) + word(4)
                + word(quint16(found >> 16)) + word(quint16(found & 0xffff));
        }
        m_socket.writeDatagram(reply, asked.senderAddress(), quint16(asked.senderPort()));
    }
}
