// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/net/NetPolicy.h"

#include <QtTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/un.h>

namespace {

NetAddress addressOf(const QString &text)
{
    return NetAddress::fromText(text).value();
}

QVector<NetAddress> addressesOf(const QString &list)
{
    QVector<NetAddress> addresses;
    const QStringList texts = list.split(' ', Qt::SkipEmptyParts);
    for (const QString &text : texts)
        addresses += addressOf(text);
    return addresses;
}

NetAddress withPort(const char *host, quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, host, &address.sin_addr);
    return NetAddress::fromSocket(reinterpret_cast<const sockaddr *>(&address), sizeof address).value();
}

} // namespace

/// Which addresses the desk box lets its pages and players reach.
class TestNetPolicy : public QObject
{
    Q_OBJECT

private slots:
    void addressesOfThisPcAndItsNetworkArePrivate_data();
    void addressesOfThisPcAndItsNetworkArePrivate();
    void socketsOfOtherKindsHaveNoAddress();
    void anAddressIsWrittenWithItsPort_data();
    void anAddressIsWrittenWithItsPort();
    void theFirstPageDecides_data();
    void theFirstPageDecides();
    void theNameOfTheFirstPageIsWhatItLeadsTo_data();
    void theNameOfTheFirstPageIsWhatItLeadsTo();
    void everythingMayBeReachedBeforeThereIsAPage();
    void whatIsAllowedMayBeReached_data();
    void whatIsAllowedMayBeReached();
    void anAllowedNameIsWhatItLeadsTo();
    void ofANameOnlySoManyAddressesAreKept();
    void whatIsNoHostIsNotAllowed_data();
    void whatIsNoHostIsNotAllowed();
};

void TestNetPolicy::addressesOfThisPcAndItsNetworkArePrivate_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isPrivate");

    for (const char *address : {"0.0.0.0",
                                "0.255.255.255",
                                "10.0.0.0",
                                "10.255.255.255",
                                "100.64.0.0",
                                "100.127.255.255",
                                "127.0.0.1",
                                "127.0.0.53",
                                "127.255.255.255",
                                "169.254.0.0",
                                "169.254.169.254",
                                "172.16.0.0",
                                "172.31.255.255",
                                "192.168.0.0",
                                "192.168.255.255",
                                "255.255.255.255",
                                "::",
                                "::1",
                                "fc00::",
                                "fdff:ffff::1",
                                "fe80::1",
                                "fe80::1%eth0",
                                "febf::1",
                                "::ffff:127.0.0.1",
                                "::ffff:192.168.1.5",
                                "::127.0.0.1",
                                "64:ff9b::127.0.0.1",
                                "64:ff9b::a00:1"})
        QTest::newRow(address) << address << true;
    for (const char *address : {"1.0.0.0",
                                "9.255.255.255",
                                "11.0.0.0",
                                "100.63.255.255",
                                "100.128.0.0",
                                "126.255.255.255",
                                "128.0.0.0",
                                "169.253.255.255",
                                "169.255.0.0",
                                "172.15.255.255",
                                "172.32.0.0",
                                "192.167.255.255",
                                "192.169.0.0",
                                "203.0.113.7",
                                "224.0.0.1",
                                "239.255.0.1",
                                "255.255.255.254",
                                "2001:db8::1",
                                "fbff::1",
                                "fe00::1",
                                "fec0::1",
                                "ff02::1",
                                "ff3e::8000:1",
                                "::ffff:203.0.113.7",
                                "64:ff9b::203.0.113.7",
                                "64:ff9c::127.0.0.1"})
        QTest::newRow(address) << address << false;
}

void TestNetPolicy::addressesOfThisPcAndItsNetworkArePrivate()
{
    QFETCH(QString, address);
    QTEST(addressOf(address).isPrivate(), "isPrivate");
}

void TestNetPolicy::socketsOfOtherKindsHaveNoAddress()
{
    sockaddr_un local = {};
    local.sun_family = AF_UNIX;
    QVERIFY(!NetAddress::fromSocket(reinterpret_cast<const sockaddr *>(&local), sizeof local));
    sockaddr_in6 cut = {};
    cut.sin6_family = AF_INET6;
    QVERIFY(!NetAddress::fromSocket(reinterpret_cast<const sockaddr *>(&cut), sizeof(sockaddr_in)));
    sockaddr_in none = {};
    none.sin_family = AF_UNSPEC;
    QVERIFY(!NetAddress::fromSocket(reinterpret_cast<const sockaddr *>(&none), sizeof none));
    QVERIFY(!NetAddress::fromSocket(nullptr, 0));
}

void TestNetPolicy::anAddressIsWrittenWithItsPort_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QString>("text");

    QTest::newRow("version 6") << QByteArray("fd00::5") << "[fd00::5]:8080";
    QTest::newRow("loopback") << QByteArray("::1") << "[::1]:8080";
    QTest::newRow("version 4, mapped") << QByteArray("::ffff:10.1.2.3") << "10.1.2.3:8080";
    QTest::newRow("version 4, translated") << QByteArray("64:ff9b::10.1.2.3") << "10.1.2.3:8080";
}

void TestNetPolicy::anAddressIsWrittenWithItsPort()
{
    QFETCH(QByteArray, address);
    sockaddr_in6 socketAddress = {};
    socketAddress.sin6_family = AF_INET6;
    socketAddress.sin6_port = htons(8080);
    QCOMPARE(inet_pton(AF_INET6, address.constData(), &socketAddress.sin6_addr), 1);
    const auto known = NetAddress::fromSocket(reinterpret_cast<const sockaddr *>(&socketAddress), sizeof socketAddress);
    QVERIFY(known);
    QTEST(known->toString(), "text");
    QCOMPARE(withPort("10.1.2.3", 80).toString(), QString("10.1.2.3:80"));
}

void TestNetPolicy::theFirstPageDecides_data()
{
    QTest::addColumn<QUrl>("page");
    QTest::addColumn<bool>("isPermitted");

    QTest::newRow("this PC") << QUrl("http://127.0.0.1:2000/index.html") << true;
    QTest::newRow("this PC, version 6") << QUrl("http://[::1]:2000/") << true;
    QTest::newRow("its network") << QUrl("http://192.168.1.5/") << true;
    QTest::newRow("its network, with an interface") << QUrl("http://[fe80::1%25eth0]/") << true;
    QTest::newRow("this PC, as a number") << QUrl("http://0x7f000001/") << true;
    QTest::newRow("file") << QUrl("file:///home/portal/index.html") << true;
    QTest::newRow("data") << QUrl("data:text/html,portal") << true;
    QTest::newRow("blank") << QUrl("about:blank") << true;
    QTest::newRow("none") << QUrl() << true;
    QTest::newRow("elsewhere") << QUrl("http://203.0.113.7/") << false;
    QTest::newRow("elsewhere, version 6") << QUrl("https://[2001:db8::7]:8443/") << false;
    QTest::newRow("user name that looks like this PC") << QUrl("http://127.0.0.1@203.0.113.7/") << false;
    QTest::newRow("name that nobody has looked up") << QUrl("http://portal.example/") << false;
}

void TestNetPolicy::theFirstPageDecides()
{
    QFETCH(QUrl, page);
    NetPolicy policy({});
    policy.setFirstPage(page);
    for (const char *address : {"127.0.0.1", "192.168.1.5", "::1", "fe80::1"})
        QTEST(policy.permits(addressOf(address)), "isPermitted");
    for (const char *address : {"203.0.113.7", "198.51.100.1", "2001:db8::1", "239.1.1.1", "ff02::1"})
        QVERIFY2(policy.permits(addressOf(address)), address);
}

void TestNetPolicy::theNameOfTheFirstPageIsWhatItLeadsTo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("found");
    QTest::addColumn<bool>("isPermitted");

    QTest::newRow("this PC") << "portal.example" << QStringList("127.0.0.1") << true;
    QTest::newRow("its network, twice") << "portal.example" << QStringList({"192.168.1.5", "10.0.0.1 fd00::1"}) << true;
    QTest::newRow("elsewhere") << "portal.example" << QStringList("203.0.113.7") << false;
    QTest::newRow("elsewhere and here") << "portal.example" << QStringList("203.0.113.7 127.0.0.1") << false;
    QTest::newRow("here and elsewhere") << "portal.example" << QStringList("127.0.0.1 203.0.113.7") << false;
    QTest::newRow("here, then elsewhere") << "portal.example" << QStringList({"127.0.0.1", "203.0.113.7"}) << false;
    QTest::newRow("elsewhere, then here") << "portal.example" << QStringList({"203.0.113.7", "127.0.0.1"}) << false;
    QTest::newRow("nowhere") << "portal.example" << QStringList("") << false;
    QTest::newRow("another name") << "other.example" << QStringList("127.0.0.1") << false;
    QTest::newRow("another spelling") << "PORTAL.example." << QStringList("127.0.0.1") << true;
}

void TestNetPolicy::theNameOfTheFirstPageIsWhatItLeadsTo()
{
    QFETCH(QString, name);
    QFETCH(QStringList, found);
    for (const bool isBefore : {true, false}) { // the page is known
        NetPolicy policy({});
        if (!isBefore)
            policy.setFirstPage(QUrl("http://Portal.example:8080/"));
        for (const QString &addresses : qAsConst(found))
            policy.learn(name, addressesOf(addresses));
        if (isBefore)
            policy.setFirstPage(QUrl("http://Portal.example:8080/"));
        QTEST(policy.permits(addressOf("127.0.0.1")), "isPermitted");
        QVERIFY(policy.permits(addressOf("203.0.113.7")));
    }
}

void TestNetPolicy::everythingMayBeReachedBeforeThereIsAPage()
{
    QVERIFY(NetPolicy({}).permits(addressOf("127.0.0.1")));
}

void TestNetPolicy::whatIsAllowedMayBeReached_data()
{
    QTest::addColumn<QString>("allowed");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("isPermitted");

    QTest::newRow("address") << "192.168.1.5"
                             << "192.168.1.5" << 80 << true;
    QTest::newRow("address and port") << "192.168.1.5:80"
                                      << "192.168.1.5" << 80 << true;
    QTest::newRow("another port") << "192.168.1.5:81"
                                  << "192.168.1.5" << 80 << false;
    QTest::newRow("another address") << "192.168.1.6"
                                     << "192.168.1.5" << 80 << false;
    QTest::newRow("mapped address") << "[::ffff:192.168.1.5]:80"
                                    << "192.168.1.5" << 80 << true;
    QTest::newRow("version 6 is another host") << "::1"
                                               << "127.0.0.1" << 80 << false;
    QTest::newRow("name") << "nas.lan"
                          << "192.168.1.5" << 80 << true;
    QTest::newRow("name and port") << "nas.lan:80"
                                   << "192.168.1.5" << 80 << true;
    QTest::newRow("name in capitals, with a dot") << "NAS.lan."
                                                  << "192.168.1.5" << 80 << true;
    QTest::newRow("name, its second address") << "nas.lan"
                                              << "192.168.1.7" << 80 << true;
    QTest::newRow("name and another port") << "nas.lan:81"
                                           << "192.168.1.5" << 80 << false;
    QTest::newRow("another name") << "tv.lan"
                                  << "192.168.1.5" << 80 << false;
}

void TestNetPolicy::whatIsAllowedMayBeReached()
{
    QFETCH(QString, allowed);
    QFETCH(QString, host);
    QFETCH(int, port);
    NetPolicy policy({AllowedHost::parse("10.9.9.9").value(), AllowedHost::parse(allowed).value()});
    policy.setFirstPage(QUrl("http://203.0.113.7/"));
    policy.learn("nas.lan", addressesOf("192.168.1.5 fd00::5"));
    policy.learn("nas.lan", addressesOf("192.168.1.7"));
    QTEST(policy.permits(withPort(qPrintable(host), quint16(port))), "isPermitted");
    QVERIFY(policy.permits(addressOf("10.9.9.9")));
}

// What a page's own names lead to does not count.
void TestNetPolicy::anAllowedNameIsWhatItLeadsTo()
{
    NetPolicy policy({AllowedHost::parse("nas.lan").value()});
    policy.setFirstPage(QUrl("http://portal.example/"));
    policy.learn("portal.example", addressesOf("203.0.113.7"));
    QVERIFY(!policy.permits(addressOf("192.168.1.5")));
    policy.learn("evil.example", addressesOf("192.168.1.5"));
    QVERIFY(!policy.permits(addressOf("192.168.1.5")));
    policy.learn("nas.lan", addressesOf("192.168.1.5"));
    QVERIFY(policy.permits(addressOf("192.168.1.5")));
    QVERIFY(!policy.permits(addressOf("127.0.0.1")));
}

void TestNetPolicy::ofANameOnlySoManyAddressesAreKept()
{
    NetPolicy policy({AllowedHost::parse("nas.lan").value()});
    policy.setFirstPage(QUrl("http://203.0.113.7/"));
    for (int i = 0; i < 257; ++i)
        policy.learn("nas.lan", addressesOf(QString("10.0.%1.%2").arg(i / 256).arg(i % 256)));
    QVERIFY(policy.permits(addressOf("10.0.0.255")));
    QVERIFY(!policy.permits(addressOf("10.0.1.0")));
}

void TestNetPolicy::whatIsNoHostIsNotAllowed_data()
{
    QTest::addColumn<bool>("isHost");

    for (const char *text : {"127.0.0.1", "127.0.0.1:1", "127.0.0.1:65535", "localhost", "localhost:8080", "::1",
                             "[::1]", "[::1]:80", "nas", "nas.lan", "nas-2.lan", "_http.lan", "xn--bcher-kva.example",
                             "b\xc3\xbc"
                             "cher.example",
                             "3com.example"})
        QTest::newRow(text) << true;
    for (const char *text : {"",
                             ":",
                             ":80",
                             "127.0.0.1:",
                             "127.0.0.1:0",
                             "127.0.0.1:65536",
                             "127.0.0.1:http",
                             "127.0.0.1:80:80",
                             "127.0.0",
                             "127.0.0.256",
                             "1.2.3.4.5",
                             "12345",
                             "[127.0.0.1",
                             "[nas.lan]",
                             "[::1]80",
                             "::1:",
                             "http://nas.lan",
                             "nas.lan/",
                             "nas lan",
                             "*.lan",
                             "nas..lan",
                             "*",
                             "192.168.0.0/16",
                             "-"})
        QTest::newRow(text) << false;
}

void TestNetPolicy::whatIsNoHostIsNotAllowed()
{
    QTEST(AllowedHost::parse(QString::fromUtf8(QTest::currentDataTag())).has_value(), "isHost");
}

QTEST_APPLESS_MAIN(TestNetPolicy)
#include "tst_netpolicy.moc"
