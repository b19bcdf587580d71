// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QApplication>
#include <QtTest>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using RecordingPlatform::Answer;

namespace {

const char *const wired = "eth0";
const char *const orders = "KAVRO_ORDERS"; // names the descriptor

// What the process in the box, which may not change its network itself, has the one outside do.
struct Order
{
    unsigned long control;
    ifreq request; // begins with the name, which is all that some take
};

// Network interfaces of this program's own network.
class Interfaces
{
public:
    bool add(const char *name) { return control(SIOCBRADDBR, requestFor(name)); }
    bool remove(const char *name)
    {
        return control(SIOCSIFFLAGS, requestFor(name)) && control(SIOCBRDELBR, requestFor(name));
    }
    bool setHardwareAddress(const char *name, const QByteArray &bytes)
    {
        ifreq request = requestFor(name);
        request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
        memcpy(request.ifr_hwaddr.sa_data, bytes.constData(), std::size_t(bytes.size()));
        return control(SIOCSIFHWADDR, request);
    }
    // A further address has a name with a colon.
    bool setAddress(const char *name, const char *address)
    {
        ifreq request = requestFor(name);
        sockaddr_in internet = {};
        internet.sin_family = AF_INET;
        inet_pton(AF_INET, address, &internet.sin_addr);
        memcpy(&request.ifr_addr, &internet, sizeof internet);
        return control(SIOCSIFADDR, request);
    }

private:
    static ifreq requestFor(const char *name)
    {
        ifreq request = {};
        qstrncpy(request.ifr_name, name, sizeof request.ifr_name);
        return request;
    }

    bool control(unsigned long control, const ifreq &request)
    {
        const Order order = {control, request};
        bool isDone = false;
        return send(m_orders, &order, sizeof order, 0) == sizeof order
            && recv(m_orders, &isDone, sizeof isDone, 0) == sizeof isDone && isDone;
    }

    const int m_orders = qEnvironmentVariableIntValue(orders);
};

void fulfil(int descriptor)
{
    const int network = socket(AF_INET, SOCK_DGRAM, 0);
    Order order;
    while (recv(descriptor, &order, sizeof order, 0) == sizeof order) {
        const bool isDone = ioctl(network, order.control, &order.request) == 0;
        if (send(descriptor, &isDone, sizeof isDone, 0) != sizeof isDone)
            break;
    }
    close(network);
}

bool write(const char *file, const QByteArray &text)
{
    QFile opened(file);
    return opened.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && opened.write(text) == text.size();
}

// Before there is any thread. Who may not make a network alone may make one together with users.
bool makeNetwork()
{
    if (unshare(CLONE_NEWNET) == 0)
        return true;
    const QByteArray user = QByteArray::number(geteuid());
    const QByteArray group = QByteArray::number(getegid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && write("/proc/self/uid_map", user + ' ' + user + " 1")
        && write("/proc/self/setgroups", "deny") && write("/proc/self/gid_map", group + ' ' + group + " 1");
}

// Runs this program in a box, in a network that it changes for it.
int runInBox(int argc, char **argv)
{
    int ends[2];
    if (!makeNetwork() || socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) {
        perror("This test needs a network of its own, which the kernel does not give it");
        return 1;
    }
    const QByteArray program = QFileInfo("/proc/self/exe").symLinkTarget().toLocal8Bit();
    const QByteArray inBox = program.left(program.lastIndexOf('/')) + "/in-fresh-box";
    std::vector<char *> arguments = {const_cast<char *>(inBox.constData()), const_cast<char *>(program.constData())};
    arguments.insert(arguments.end(), argv + 1, argv + argc + 1); // with the null at the end
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        qputenv("KAVRO_DESCRIPTORS", QByteArray::number(ends[1]));
        qputenv(orders, QByteArray::number(ends[1]));
        execv(inBox.constData(), arguments.data());
        _exit(127);
    }
    close(ends[1]);
    fulfil(ends[0]);
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

} // namespace

// What StbDisplay says of the box itself. The program has a network of its own, with no interface but those it makes.
class TestDeviceIdentity : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void textsComeFromThePlatform_data();
    void textsComeFromThePlatform();
    void textsAreAskedForOnEachRead();
    void withoutAWiredNetworkBothAreEmpty();
    void withoutAnAddressThatIsEmpty();
    void theHardwareAddressIsInLowerCase();
    void theFirstAddressCounts();
    void otherInterfacesDoNotCount();

private:
    QString result(const QString &script) { return m_session->run(script).result; }

    std::unique_ptr<ScriptSession> m_session;
    Interfaces m_interfaces;
};

void TestDeviceIdentity::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestDeviceIdentity::cleanup()
{
    m_interfaces.remove(wired);
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
    RecordingPlatform::reset();
}

void TestDeviceIdentity::textsComeFromThePlatform_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("json");

    const struct
    {
        const char *property;
        const char *function;
        const char *fallback;
    } properties[] = {{"DeviceModel", "KVR_GetDeviceModel", "\"????\""},
                      {"FirmwareVersion", "KVR_GetFirmwareVersion", "\"unknown\""},
                      {"SerialNumber", "KVR_GetDeviceSerialNumber", "\"SN????????\""}};
    for (const auto &p : properties) {
        const auto row = [&p](const char *name, const Answer &answer, const QString &json) {
            QTest::addRow("%s: %s", p.property, name)
                << QString(p.property) << QByteArray(p.function) << answer << json;
        };
        row("text", Answer::text("MZ-412 rev. \"B\""), R"("MZ-412 rev. \"B\"")");
        row("empty text", Answer::text(""), "\"\"");
        row("Latin-1 text", Answer::text("\xe9\xff"), "\"\u00e9\u00ff\"");
        row("long text", Answer::text(QByteArray(100000, 'x')), '"' + QString(100000, 'x') + '"');
        row("failure", -1, p.fallback);
        row("failure of an unknown id", -127, p.fallback);
        row("positive result", 1, p.fallback);
    }
}

void TestDeviceIdentity::textsComeFromThePlatform()
{
    QFETCH(const QString, property);
    QFETCH(const QByteArray, function);
    QFETCH(const Answer, answer);
    RecordingPlatform::answer(function, answer);
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay." + property);
    QTEST(outcome.result, "json");
    QCOMPARE(outcome.calls, QByteArray(function + "()"));
}

void TestDeviceIdentity::textsAreAskedForOnEachRead()
{
    RecordingPlatform::answerOnce("KVR_GetDeviceModel", Answer::text("one"));
    RecordingPlatform::answerOnce("KVR_GetDeviceModel", Answer::text("two"));
    QCOMPARE(result("[StbDisplay.DeviceModel, StbDisplay.DeviceModel]"), QString(R"(["one","two"])"));
    QCOMPARE(RecordingPlatform::blocksHandedOut(), 2);
}

void TestDeviceIdentity::withoutAWiredNetworkBothAreEmpty()
{
    QCOMPARE(result("[StbDisplay.EthernetHardwareAddress, StbDisplay.IpAddress]"), QString(R"(["",""])"));
}

void TestDeviceIdentity::withoutAnAddressThatIsEmpty()
{
    QVERIFY(m_interfaces.add(wired));
    QCOMPARE(result("[StbDisplay.EthernetHardwareAddress.length, StbDisplay.IpAddress]"), QString(R"([17,""])"));
}

void TestDeviceIdentity::theHardwareAddressIsInLowerCase()
{
    QVERIFY(m_interfaces.add(wired));
    QVERIFY(m_interfaces.setHardwareAddress(wired, QByteArray::fromHex("02abcdef001f")));
    QCOMPARE(result("StbDisplay.EthernetHardwareAddress"), QString("\"02:ab:cd:ef:00:1f\""));
}

void TestDeviceIdentity::theFirstAddressCounts()
{
    QVERIFY(m_interfaces.add(wired));
    QVERIFY(m_interfaces.setAddress(wired, "192.0.2.17"));
    QCOMPARE(result("StbDisplay.IpAddress"), QString("\"192.0.2.17\""));
    QVERIFY(m_interfaces.setAddress("eth0:1", "192.0.2.18"));
    QCOMPARE(result("StbDisplay.IpAddress"), QString("\"192.0.2.17\""));
    QVERIFY(m_interfaces.setAddress(wired, "0.0.0.0"));
    QVERIFY(m_interfaces.setAddress(wired, "198.51.100.1"));
    QCOMPARE(result("StbDisplay.IpAddress"), QString("\"198.51.100.1\""));
}

void TestDeviceIdentity::otherInterfacesDoNotCount()
{
    QVERIFY(m_interfaces.add("eth1"));
    QVERIFY(m_interfaces.setAddress("eth1", "192.0.2.17"));
    QCOMPARE(result("[StbDisplay.EthernetHardwareAddress, StbDisplay.IpAddress]"), QString(R"(["",""])"));
    QVERIFY(m_interfaces.remove("eth1"));
}

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet(orders))
        return runInBox(argc, argv);
    QApplication app(argc, argv);
    TestDeviceIdentity test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_deviceidentity.moc"
