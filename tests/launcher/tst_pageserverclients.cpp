// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageServerTest.h"

#include "launcher/LoopbackPeer.h"

#include <QProcess>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const uid_t nobody = 65534;
const int longestWait = 60; // s

// More than a connection holds that nobody reads.
QByteArray film()
{
    return QByteArray(16 << 20, 'x');
}

/// A connection that does not stand in the way of an event loop, of which there may be thousands.
class Connection
{
public:
    explicit Connection(int port)
        : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(quint16(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_isConnected = connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    }
    ~Connection() { close(m_socket); }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    bool isConnected() const { return m_isConnected; }
    bool send(const QByteArray &text) const
    {
        return ::send(m_socket, text.constData(), size_t(text.size()), MSG_NOSIGNAL) == text.size();
    }
    /// What has come so far.
    QByteArray received() const
    {
        QByteArray text(1 << 16, 0);
        text.resize(int(qMax(ssize_t(0), recv(m_socket, text.data(), size_t(text.size()), MSG_DONTWAIT))));
        return text;
    }
    /// Waits for all that comes until the other side has had enough.
    QByteArray receivedToEnd() const
    {
        const timeval patience = {longestWait, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        QByteArray text;
        QByteArray part(1 << 16, 0);
        for (ssize_t got = 1; got > 0; text.append(part.constData(), int(got)))
            got = qMax(ssize_t(0), recv(m_socket, part.data(), size_t(part.size()), 0));
        return text;
    }
    bool isEnded() const
    {
        char byte = 0;
        const ssize_t got = recv(m_socket, &byte, 1, MSG_DONTWAIT | MSG_PEEK);
        return got == 0 || (got < 0 && errno != EAGAIN);
    }

private:
    int m_socket;
    bool m_isConnected;
};

/// While it lives, the connections that this thread opens are another user's. Only root can do so.
class AsNobody
{
public:
    AsNobody() { setfsuid(nobody); }
    ~AsNobody() { setfsuid(geteuid()); }
    AsNobody(const AsNobody &) = delete;
    AsNobody &operator=(const AsNobody &) = delete;
};

} // namespace

/// Whom the web server for pages answers, and for how long.
class TestPageServerClients : public PageServerTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { setUp(); }

    void itAnswersUnderItsOwnAddressAlone_data();
    void itAnswersUnderItsOwnAddressAlone();
    void otherUsersGetNothing();
    void theSameUserInANamespaceIsServed();
    void connectionsThatWaitForARequestEnd();
    void manyConnectionsLeaveRoomForARequest_data();
    void manyConnectionsLeaveRoomForARequest();
    void manyUnreadAnswersLeaveRoomForARequest();
    void otherServersPagesDoNotEmbedIt();
    void onlyAClientThatIsThereHasAUser();

private:
    QByteArray get(const QByteArray &path) const
    {
        return "GET " + path + " HTTP/1.1\r\nHost: " + host() + "\r\nConnection: close\r\n\r\n";
    }
};

// Both ends of all the connections are in this process.
void TestPageServerClients::initTestCase()
{
    rlimit limit = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = limit.rlim_max;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

void TestPageServerClients::itAnswersUnderItsOwnAddressAlone_data()
{
    QTest::addColumn<QByteArray>("request"); // with PORT for the port
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const QByteArray &line, const QByteArray &headers, int status) {
        QTest::newRow(name) << QByteArray(line + "\r\n" + headers + "Connection: close\r\n\r\n") << status;
    };
    const QByteArray get = "GET /index.html HTTP/1.1";
    const QByteArray own = "Host: 127.0.0.1:PORT\r\n";
    row("own", get, own, 200);
    row("own, in another case", get, "hOST:127.0.0.1:PORT  \r\n", 200);
    row("own, of HTTP/1.0", "GET /index.html HTTP/1.0", own, 200);
    row("own, also in the target", "GET http://127.0.0.1:PORT/index.html HTTP/1.1", own, 200);
    row("localhost", get, "Host: localhost:PORT\r\n", 421);
    row("name of another server", get, "Host: portal.example:PORT\r\n", 421);
    row("name that begins alike", get, "Host: 127.0.0.1.portal.example:PORT\r\n", 421);
    row("name that ends alike", get, "Host: portal.example@127.0.0.1:PORT\r\n", 421);
    row("no port", get, "Host: 127.0.0.1\r\n", 421);
    row("other port", get, "Host: 127.0.0.1:80\r\n", 421);
    row("other number of this machine", get, "Host: 127.0.0.2:PORT\r\n", 421);
    row("short number", get, "Host: 127.1:PORT\r\n", 421);
    row("number of the other protocol", get, "Host: [::ffff:127.0.0.1]:PORT\r\n", 421);
    row("empty", get, "Host:\r\n", 421);
    row("none", get, "", 400);
    row("none, of HTTP/1.0", "GET /index.html HTTP/1.0", "", 400);
    row("own twice", get, own + own, 400);
    row("own and another", get, own + "Host: portal.example:PORT\r\n", 400);
    row("another and own", get, "Host: portal.example:PORT\r\n" + own, 400);
    row("other target", "GET http://portal.example:PORT/index.html HTTP/1.1", own, 421);
    row("target that begins alike", "GET http://127.0.0.1:PORT.portal.example/index.html HTTP/1.1", own, 421);
    row("target of another scheme", "GET https://127.0.0.1:PORT/index.html HTTP/1.1", own, 421);
    row("own target, other host", "GET http://127.0.0.1:PORT/index.html HTTP/1.1", "Host: portal.example\r\n", 421);
    row("target that is no path", "GET index.html HTTP/1.1", own, 421);
    row("other method", "POST /index.html HTTP/1.1", "Host: portal.example:PORT\r\nContent-Length: 0\r\n", 421);
    row("only the head", "HEAD /index.html HTTP/1.1", "Host: portal.example:PORT\r\n", 421);
}

void TestPageServerClients::itAnswersUnderItsOwnAddressAlone()
{
    QFETCH(QByteArray, request);
    QFETCH(int, status);
    const Answer answer = send(request.replace("PORT", QByteArray::number(port())));
    QCOMPARE(answer.status, status);
    if (status == 200)
        QCOMPARE(answer.body, QByteArray("index"));
    else if (!request.startsWith("HEAD"))
        QCOMPARE(answer.body, "This server answers requests for http://" + host() + "/ and no other host.\n");
}

void TestPageServerClients::otherUsersGetNothing()
{
    if (geteuid() != 0)
        QSKIP("Only root can connect as another user");
    {
        const AsNobody asNobody;
        const Answer answer = ask("/index.html");
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.head + answer.body, QByteArray());
    }
    QCOMPARE(ask("/index.html").body, QByteArray("index"));
}

// A box is such a namespace.
void TestPageServerClients::theSameUserInANamespaceIsServed()
{
    if (QProcess::execute("unshare", {"--user", "true"}) != 0)
        QSKIP("This kernel allows no namespaces of users");
    QProcess client;
    client.start("unshare",
                 {"--user", "bash", "-c",
                  "exec 3<>/dev/tcp/127.0.0.1/$0; printf 'GET / HTTP/1.0\\r\\nHost: 127.0.0.1:%s\\r\\n\\r\\n' $0 >&3; "
                  "cat <&3",
                  QString::number(port())});
    QVERIFY(client.waitForFinished(patience));
    const QByteArray answer = client.readAllStandardOutput();
    QVERIFY2(answer.endsWith("\r\n\r\nindex"), answer + client.readAllStandardError());
}

void TestPageServerClients::connectionsThatWaitForARequestEnd()
{
    write("root/film.ts", film());
    const QByteArray request = "GET /index.html HTTP/1.1\r\nHost: " + host() + "\r\n\r\n";
    const Connection silent(port());
    const Connection halfAsked(port());
    QVERIFY(halfAsked.send(request.left(30)));
    const Connection slow(port());
    const Connection answered(port());
    QVERIFY(answered.send(request));
    QByteArray answer;
    QTRY_VERIFY_WITH_TIMEOUT((answer += answered.received()).endsWith("index"), patience);
    QVERIFY(!answered.isEnded());
    const Connection paused(port());
    QVERIFY(paused.send(get("/film.ts")));

    const auto slowIsEnded = [&slow] { return !slow.send("G") || slow.isEnded(); };
    QTRY_VERIFY_WITH_TIMEOUT(slowIsEnded() && silent.isEnded() && halfAsked.isEnded() && answered.isEnded(), patience);
    QVERIFY(paused.receivedToEnd().endsWith(film()));
}

void TestPageServerClients::manyConnectionsLeaveRoomForARequest_data()
{
    QTest::addColumn<bool>("isOtherUser");
    QTest::addColumn<QByteArray>("sent");
    const QByteArray request = "GET /index.html HTTP/1.1\r\nHost: HOST\r\n\r\n";
    QTest::newRow("nothing is asked") << false << QByteArray();
    QTest::newRow("half is asked") << false << request.left(20);
    QTest::newRow("all is asked") << false << request;
    QTest::newRow("another user asks nothing") << true << QByteArray();
    QTest::newRow("another user asks") << true << request;
}

void TestPageServerClients::manyConnectionsLeaveRoomForARequest()
{
    QFETCH(bool, isOtherUser);
    QFETCH(QByteArray, sent);
    if (isOtherUser && geteuid() != 0)
        QSKIP("Only root can connect as another user");
    write("root/film.ts", film());
    const Connection paused(port());
    QVERIFY(paused.send(get("/film.ts")));

    sent.replace("HOST", host());
    std::vector<std::unique_ptr<Connection>> connections;
    {
        const std::unique_ptr<AsNobody> asNobody(isOtherUser ? new AsNobody : nullptr);
        for (int i = 0; i < 1500; ++i) {
            connections.push_back(std::make_unique<Connection>(port()));
            QVERIFY2(connections.back()->isConnected(), qPrintable(QString("connection %1").arg(i)));
            connections.back()->send(sent);
        }
    }
    QCOMPARE(ask("/index.html").body, QByteArray("index"));
    QByteArray received;
    for (const auto &connection : connections)
        received += connection->received();
    const auto open =
        std::count_if(connections.cbegin(), connections.cend(), [](const auto &one) { return !one->isEnded(); });
    QVERIFY2(open <= (isOtherUser ? 0 : 64), qPrintable(QString("%1 are open").arg(open)));
    QCOMPARE(received.isEmpty(), isOtherUser || !sent.endsWith("\r\n\r\n"));
    QVERIFY(paused.receivedToEnd().endsWith(film()));
}

void TestPageServerClients::manyUnreadAnswersLeaveRoomForARequest()
{
    write("root/film.ts", film());
    std::vector<std::unique_ptr<Connection>> connections;
    for (int i = 0; i < 100; ++i) {
        connections.push_back(std::make_unique<Connection>(port()));
        QVERIFY(connections.back()->send(get("/film.ts")));
    }
    QCOMPARE(ask("/index.html").body, QByteArray("index"));
    const auto whole = std::count_if(connections.cbegin(), connections.cend(),
                                     [](const auto &one) { return one->receivedToEnd().endsWith(film()); });
    QVERIFY2(whole > 0 && whole < 64, qPrintable(QString("%1 were left").arg(whole)));
}

void TestPageServerClients::otherServersPagesDoNotEmbedIt()
{
    QCOMPARE(ask("/index.html").header("Cross-Origin-Resource-Policy"), QByteArray("same-origin"));
    QCOMPARE(ask("/index.html").header("Access-Control-Allow-Origin"), QByteArray());
}

// Of another port the kernel tells who listens there, and of a client that its program has closed that it is root's.
void TestPageServerClients::onlyAClientThatIsThereHasAUser()
{
    const auto addressOf = [](int socket) {
        sockaddr_in address = {};
        socklen_t size = sizeof address;
        getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
        return address;
    };
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in any = {};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QCOMPARE(bind(listener, reinterpret_cast<const sockaddr *>(&any), sizeof any), 0);
    QCOMPARE(listen(listener, 1), 0);
    const sockaddr_in server = addressOf(listener);
    QCOMPARE(::connect(client, reinterpret_cast<const sockaddr *>(&server), sizeof server), 0);
    const sockaddr_in clients = addressOf(client);
    QVERIFY(LoopbackPeer::user(clients, server) == geteuid());

    QVERIFY(LoopbackPeer::user(server, sockaddr_in()) == geteuid());
    sockaddr_in nobodys = clients;
    nobodys.sin_port = htons(1);
    QVERIFY(!LoopbackPeer::user(server, nobodys));
    ::close(client);
    QVERIFY(!LoopbackPeer::user(clients, server));
    ::close(listener);
}

QTEST_GUILESS_MAIN(TestPageServerClients)

#include "tst_pageserverclients.moc"
