// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/Report.h"
#include "launcher/closed/KernelScope.h"
#include "launcher/net/NetGate.h"

#include <QNetworkDatagram>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <functional>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

sockaddr_in addressOf(const char *host, quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, host, &address.sin_addr);
    return address;
}

const sockaddr *generic(const sockaddr_in &address)
{
    return reinterpret_cast<const sockaddr *>(&address);
}

msghdr messageTo(sockaddr_in *address, iovec *text)
{
    msghdr message = {};
    message.msg_name = address;
    message.msg_namelen = sizeof *address;
    message.msg_iov = text;
    message.msg_iovlen = 1;
    return message;
}

char text[] = "text";

} // namespace

/// The functions by which the desk box reaches addresses, of a page that is not from here.
class TestSockets : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void anAbstractSocketOutOfReachIsAsIfNobodyListened();
    void whatIsRefusedGetsNothing_data();
    void whatIsRefusedGetsNothing();
    void whatIsAllowedGetsAll();
    void whatComesBeforeARefusedMessageIsSent();
    void aSocketThatIsConnectedSends();
    void socketsOfOtherKindsAreLeftAlone();
    void whatIsRefusedIsTold();
    void aPageThatTriesManyAddressesIsNotToldOfAll();

private:
    using Call = std::function<ssize_t(sockaddr_in *)>;

    QVector<QPair<const char *, Call>> calls() const;

    QUdpSocket m_allowed;
    QUdpSocket m_refused;
    int m_socket = -1;
};

void TestSockets::initTestCase()
{
    QVERIFY(m_allowed.bind(QHostAddress(QHostAddress::LocalHost)));
    QVERIFY(m_refused.bind(QHostAddress(QHostAddress::LocalHost)));
    QVERIFY(!NetGate::running());
    NetGate *guard = NetGate::start({QString("127.0.0.1:%1").arg(m_allowed.localPort())});
    QCOMPARE(NetGate::running(), guard);
    guard->setFirstPage(QUrl("http://203.0.113.7/"));
}

void TestSockets::init()
{
    m_socket = socket(AF_INET, SOCK_DGRAM, 0);
    QVERIFY(m_socket >= 0);
}

void TestSockets::cleanup()
{
    close(m_socket);
}

QVector<QPair<const char *, TestSockets::Call>> TestSockets::calls() const
{
    const int socket = m_socket;
    return {
        {"connect", [socket](sockaddr_in *to) { return ssize_t(::connect(socket, generic(*to), sizeof *to)); }},
        {"sendto", [socket](sockaddr_in *to) { return ::sendto(socket, text, 4, 0, generic(*to), sizeof *to); }},
        {"sendmsg",
         [socket](sockaddr_in *to) {
             iovec part = {text, 4};
             const msghdr message = messageTo(to, &part);
             return ::sendmsg(socket, &message, 0);
         }},
        {"sendmmsg",
         [socket](sockaddr_in *to) {
             iovec part = {text, 4};
             mmsghdr message = {messageTo(to, &part), 0};
             return ssize_t(::sendmmsg(socket, &message, 1, 0));
         }},
    };
}

// So that a display's library goes on to the server's file, in a box whose kernel keeps it from abstract sockets.
void TestSockets::anAbstractSocketOutOfReachIsAsIfNobodyListened()
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray name = "kavro-sockets-" + QByteArray::number(getpid());
    std::copy(name.begin(), name.end(), address.sun_path + 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    QCOMPARE(bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    QCOMPARE(listen(listener, 1), 0);

    const int reached = 0, refused = 1, another = 2;
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        KernelScope::restrict();
        const int end = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::connect(end, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
            _exit(reached);
        _exit(errno == ECONNREFUSED ? refused : another);
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    close(listener);
    QVERIFY(WIFEXITED(status));
    if (WEXITSTATUS(status) == reached)
        QSKIP("This kernel is older than 6.12 or has no Landlock; it does not keep a box from abstract sockets.");
    QCOMPARE(WEXITSTATUS(status), refused);
}

void TestSockets::whatIsRefusedGetsNothing_data()
{
    QTest::addColumn<int>("call");
    const auto all = calls();
    for (int i = 0; i < all.size(); ++i)
        QTest::newRow(all[i].first) << i;
}

void TestSockets::whatIsRefusedGetsNothing()
{
    QFETCH(int, call);
    sockaddr_in refused = addressOf("127.0.0.1", m_refused.localPort());
    errno = 0;
    QCOMPARE(calls().at(call).second(&refused), ssize_t(-1));
    QCOMPARE(errno, EACCES);
    QVERIFY(!m_refused.waitForReadyRead(50));
}

void TestSockets::whatIsAllowedGetsAll()
{
    sockaddr_in allowed = addressOf("127.0.0.1", m_allowed.localPort());
    const auto all = calls();
    for (const auto &call : all) {
        QVERIFY2(call.second(&allowed) >= 0, call.first);
        if (qstrcmp(call.first, "connect") == 0)
            continue;
        QVERIFY2(m_allowed.hasPendingDatagrams() || m_allowed.waitForReadyRead(5000), call.first);
        QCOMPARE(m_allowed.receiveDatagram().data(), QByteArray(text));
    }
}

void TestSockets::whatComesBeforeARefusedMessageIsSent()
{
    sockaddr_in allowed = addressOf("127.0.0.1", m_allowed.localPort());
    sockaddr_in refused = addressOf("127.0.0.1", m_refused.localPort());
    iovec part = {text, 4};
    mmsghdr messages[] = {
        {messageTo(&allowed, &part), 0}, {messageTo(&refused, &part), 0}, {messageTo(&allowed, &part), 0}};
    QCOMPARE(sendmmsg(m_socket, messages, 3, 0), 1);
    QVERIFY(m_allowed.hasPendingDatagrams() || m_allowed.waitForReadyRead(5000));
    QCOMPARE(m_allowed.receiveDatagram().data(), QByteArray(text));
    QCOMPARE(sendmmsg(m_socket, messages + 1, 2, 0), -1);
    QCOMPARE(errno, EACCES);
    QCOMPARE(sendmmsg(m_socket, messages, 0, 0), 0);
    QVERIFY(!m_refused.waitForReadyRead(50));
    QVERIFY(!m_allowed.hasPendingDatagrams());
}

void TestSockets::aSocketThatIsConnectedSends()
{
    const sockaddr_in allowed = addressOf("127.0.0.1", m_allowed.localPort());
    QCOMPARE(::connect(m_socket, generic(allowed), sizeof allowed), 0);
    QCOMPARE(::sendto(m_socket, text, 4, 0, nullptr, 0), ssize_t(4));
    iovec part = {text, 4};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    QCOMPARE(::sendmsg(m_socket, &message, 0), ssize_t(4));
    for (int i = 0; i < 2; ++i) {
        QVERIFY(m_allowed.hasPendingDatagrams() || m_allowed.waitForReadyRead(5000));
        QCOMPARE(m_allowed.receiveDatagram().data(), QByteArray(text));
    }
}

void TestSockets::socketsOfOtherKindsAreLeftAlone()
{
    const QTemporaryDir folder;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, qPrintable(folder.filePath("socket")), sizeof address.sun_path);
    const auto *local = reinterpret_cast<const sockaddr *>(&address);
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    const int client = socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(bind(server, local, sizeof address), 0);
    QCOMPARE(listen(server, 1), 0);
    QCOMPARE(::connect(client, local, sizeof address), 0);
    close(client);
    close(server);
}

// Once, until another page has come.
void TestSockets::whatIsRefusedIsTold()
{
    QSignalSpy told(NetGate::running(), &NetGate::refused);
    const sockaddr_in refused = addressOf("10.1.2.3", 80);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(::connect(m_socket, generic(refused), sizeof refused), -1);
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().toString(),
             QString("10.1.2.3:80 is on this PC or its network, and refused to pages from 203.0.113.7; "
                     "--allow-net 10.1.2.3:80 allows it"));

    NetGate::running()->tellAgain();
    QCOMPARE(::connect(m_socket, generic(refused), sizeof refused), -1);
    QCOMPARE(told.size(), 2);
}

void TestSockets::aPageThatTriesManyAddressesIsNotToldOfAll()
{
    NetGate::running()->tellAgain();
    const QSignalSpy told(NetGate::running(), &NetGate::refused);
    QStringList said;
    setReporter([&said](const QByteArray &text, bool) { said += QString::fromLocal8Bit(text); });
    for (int i = 0; i < 300; ++i) {
        const QByteArray host = "10.9." + QByteArray::number(i / 250) + '.' + QByteArray::number(1 + i % 250);
        const sockaddr_in refused = addressOf(host.constData(), 80);
        QCOMPARE(::connect(m_socket, generic(refused), sizeof refused), -1);
    }
    setReporter(nullptr);
    QCOMPARE(told.size(), 100);
    QVERIFY(said.size() > 50 && said.size() <= 100); // some were said before
    QVERIFY(said.last().endsWith("; further addresses are refused without a word"));
}

QTEST_GUILESS_MAIN(TestSockets)
#include "tst_sockets.moc"
