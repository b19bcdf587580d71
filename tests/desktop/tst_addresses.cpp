// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/Address.h"
#include "platform/desktop/Multicast.h"
#include "platform/desktop/PlayableAddress.h"

#include <QTest>

using namespace Desk;

/// What the addresses that pages give to players stand for.
class TestAddresses : public QObject
{
    Q_OBJECT

private slots:
    void anAddressHasItsParts_data();
    void anAddressHasItsParts();
    void groupsAreTold_data();
    void groupsAreTold();
    void filesAndStreamsOfTheNetworkArePlayed_data();
    void filesAndStreamsOfTheNetworkArePlayed();
};

void TestAddresses::anAddressHasItsParts_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<QString>("hostAndPort");
    QTest::addColumn<QString>("asUdp");
    const auto row = [](const char *text, const char *scheme, const char *hostAndPort, const char *asUdp) {
        QTest::newRow(text) << scheme << hostAndPort << asUdp;
    };
    row("rtp://10.0.0.1:5000/a?b=c", "rtp", "10.0.0.1:5000", "udp://10.0.0.1:5000/a?b=c");
    row("RtP://Host", "rtp", "Host", "udp://Host");
    row("rtp://@239.1.1.1:1234", "rtp", "239.1.1.1:1234", "udp://@239.1.1.1:1234");
    row("rtp://[ff02::1]:99", "rtp", "[ff02::1]:99", "udp://[ff02::1]:99");
    row("rtp://@:1234", "rtp", "", "udp://@:1234");
    row("/mnt/stb/a://b", "", "", "udp://b");
    row("/mnt/stb/a.ts", "", "", "/mnt/stb/a.ts");
    row("", "", "", "");
}

void TestAddresses::anAddressHasItsParts()
{
    const Address address(QTest::currentDataTag());
    QTEST(QString::fromStdString(address.scheme()), "scheme");
    QTEST(QString::fromStdString(address.hostAndPort()), "hostAndPort");
    QTEST(QString::fromStdString(address.withScheme("udp")), "asUdp");
}

void TestAddresses::groupsAreTold_data()
{
    QTest::addColumn<QString>("group");
    const auto row = [](const char *text, const char *group) { QTest::newRow(text) << group; };
    row("udp://239.255.77.1:1234", "239.255.77.1:1234");
    row("UDP://@224.0.0.1:1?localaddr=127.0.0.1", "224.0.0.1:1");
    row("rtp://239.255.77.1:1234", "239.255.77.1:1234");
    row("udp://[ff02::1]:1234", "[ff02::1]:1234");
    row("udp://223.255.255.255:1234", "");
    row("udp://240.0.0.0:1234", "");
    row("udp://[fe80::1]:1234", "");
    row("udp://host:1234", "");
    row("http://239.255.77.1:1234", "");
    row("/mnt/stb/239.255.77.1", "");
}

void TestAddresses::groupsAreTold()
{
    QTEST(QString::fromStdString(multicastGroup(QTest::currentDataTag())), "group");
}

void TestAddresses::filesAndStreamsOfTheNetworkArePlayed_data()
{
    QTest::addColumn<bool>("isPlayed");
    const auto row = [](const char *text, bool isPlayed) { QTest::newRow(text) << isPlayed; };
    row("/proc/self/status", true);
    row("/nonexistent/file.ts", true); // the core tells the reason
    row("http://host/a", true);
    row("HTTPS://host/a", true);
    row("udp://@239.1.1.1:1", true);
    row("/", false);
    row("/dev/zero", false);
    row("-", false);
    row("fd://0", false);
    row("file:///etc/passwd", false);
    row("lavf://http://host", false);
    row("udpx://host", false);
}

void TestAddresses::filesAndStreamsOfTheNetworkArePlayed()
{
    QTEST(isPlayable(QTest::currentDataTag()), "isPlayed");
}

QTEST_GUILESS_MAIN(TestAddresses)

#include "tst_addresses.moc"
