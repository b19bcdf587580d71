// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "RawServer.h"

#include "platform/desktop/DeskBox.h"

#include "tests/support/BoxFile.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/HttpServer.h"
#include "tests/support/OddFile.h"
#include "tests/support/TlsServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTest>

#include <array>
#include <climits>
#include <cstdio>
#include <dlfcn.h>
#include <unistd.h>

namespace {

constexpr char bootParameters[] = "/home/user/config/boot_params";
constexpr char image[] = "/home/user/firmware/image";
constexpr char serialNumber[] = "/home/user/config/serial_number";
constexpr char useOddFiles[] = "use-odd-files";
constexpr char storeForever[] = "store-forever";
constexpr char tellSerialNumber[] = "tell-serial-number";
constexpr char tellNewSerialNumber[] = "tell-new-serial-number";
constexpr char leaveInUpgrade[] = "leave-in-upgrade";
constexpr int kills = 12;

thread_local int syncs = 0; // of this thread

QByteArray textOf(int (*get)(char **))
{
    char *text = nullptr;
    if (get(&text) != KVR_OK)
        return {};
    QByteArray result = text;
    free(text);
    return result;
}

QByteArray bootParameter(const char *key)
{
    std::array<char, 256> buffer;
    buffer.fill('x');
    KVR_GetBootParamValue(key, buffer.data());
    return QByteArray(buffer.data());
}

// What the child process of the kill test does: two parameters that always go together, over and over.
int storeParametersForever()
{
    for (int i = 0;; ++i) {
        const std::string value(static_cast<std::size_t>(1 + i % 255), static_cast<char>('a' + i % 26));
        KVR_SetBootParamValue("hdmi_config", value.c_str());
        KVR_SyncBootParams();
    }
}

// What the child process of the test of a new serial number does: the number, and how often it waited for the disk.
int tellNewSerialNumberAndStay()
{
    const QByteArray serial = textOf(KVR_GetDeviceSerialNumber);
    std::printf("%s %d\n", serial.constData(), syncs);
    std::fflush(stdout);
    return ::pause();
}

// What the child process of the test of odd files does: the values, as often as a page may ask, then what it can
// change.
int readAndReplace()
{
    for (int i = 0; i < 3; ++i)
        std::printf("%s;%s;", bootParameter("buf_time_udp").constData(), textOf(KVR_GetDeviceSerialNumber).constData());
    KVR_SetBootParamValue("buf_time_udp", "9");
    std::printf("%d", KVR_SyncBootParams());
    return 0;
}

} // namespace

// In place of the C library's.
extern "C" int fsync(int file)
{
    ++syncs;
    static auto *const next = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"));
    return next(file);
}

/// The desk box's identity, boot parameters, outputs and firmware.
class TestDeskDevice : public QObject
{
    Q_OBJECT

private slots:
    void theDeviceSaysWhoItIs();
    void theSerialNumberIsTheBoxs();
    void aNewSerialNumberOutlastsAKillAndWaitsForNoDisk();
    void bootParametersAreKept_data();
    void bootParametersAreKept();
    void wrongBootParametersAreRefused();
    void anUnknownBootParameterIsAnEmptyText();
    void synchronisingSaysSoWhenTheFileIsThere();
    void aKillLeavesTheOldOrTheNewParameters();
    void outputsAndHdmiTellOfChanges();
    void aWholeImageIsInstalled();
    void anUpgradeFollowsNoLink();
    void anImageComesFromTheNetworkAlone();
    void anImageComesOnlyFromAServerThatTheBoxTrusts();
    void theEndDoesNotWaitForAnUpgrade();
    void anImageThatDidNotArriveIsNotInstalled_data();
    void anImageThatDidNotArriveIsNotInstalled();
    void oneUpgradeAtATime();
    void whatIsInAFilesPlaceIsSaidOnce_data();
    void whatIsInAFilesPlaceIsSaidOnce();
    void aWriteBeyondTheLimitOfFilesFails();
};

void TestDeskDevice::theDeviceSaysWhoItIs()
{
    QCOMPARE(textOf(KVR_GetDeviceModel), QByteArray("MZ-600 desk"));
    DeskBox::setDeviceModel("XY-100");
    QCOMPARE(textOf(KVR_GetDeviceModel), QByteArray("XY-100"));
    QCOMPARE(textOf(KVR_GetFirmwareVersion), QByteArray("1.1.4"));
    QCOMPARE(KVR_GetDeviceModel(nullptr), int(KVR_ERR_INVALID_ARGUMENT));
}

void TestDeskDevice::theSerialNumberIsTheBoxs()
{
    const QByteArray serial = textOf(KVR_GetDeviceSerialNumber);
    QVERIFY(!serial.isEmpty());
    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {tellSerialNumber});
    QVERIFY(other.waitForFinished());
    QCOMPARE(other.readAllStandardOutput(), serial);
}

void TestDeskDevice::aNewSerialNumberOutlastsAKillAndWaitsForNoDisk()
{
    QVERIFY(QFile::remove(serialNumber));
    QProcess first;
    first.start(QCoreApplication::applicationFilePath(), {tellNewSerialNumber});
    QTRY_VERIFY(first.canReadLine());
    const QList<QByteArray> told = first.readLine().trimmed().split(' ');
    first.kill();
    QVERIFY(first.waitForFinished());
    QCOMPARE(told.size(), 2);
    QVERIFY(!told[0].isEmpty());
    QCOMPARE(told[1], QByteArray("0"));
    QCOMPARE(boxFile(serialNumber), told[0] + '\n');
}

void TestDeskDevice::bootParametersAreKept_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("plain") << QByteArray("buf_time_udp") << QByteArray("500");
    QTest::newRow("empty value") << QByteArray("hdmi_config") << QByteArray();
    QTest::newRow("line break and separators") << QByteArray("a=b%c\n") << QByteArray("1=2%3d\r\n4");
    QTest::newRow("longest") << QByteArray("buf_time_hls") << QByteArray(255, 'x');
    QTest::newRow("UTF-8") << QByteArray("имя") << QByteArray("значение");
}

void TestDeskDevice::bootParametersAreKept()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, value);
    QCOMPARE(KVR_SetBootParamValue(key, value), int(KVR_OK));
    QCOMPARE(bootParameter(key), value);
    QCOMPARE(KVR_SyncBootParams(), int(KVR_OK));

    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {"tell-boot-parameter", QString::fromUtf8(key)});
    QVERIFY(other.waitForFinished());
    QCOMPARE(other.readAllStandardOutput(), value);
}

void TestDeskDevice::wrongBootParametersAreRefused()
{
    QCOMPARE(KVR_SetBootParamValue("hdmi_config", "1"), int(KVR_OK));
    QCOMPARE(KVR_SetBootParamValue("hdmi_config", QByteArray(256, 'x')), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetBootParamValue("", "1"), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetBootParamValue(nullptr, "1"), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetBootParamValue("hdmi_config", nullptr), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(bootParameter("hdmi_config"), QByteArray("1"));
}

void TestDeskDevice::anUnknownBootParameterIsAnEmptyText()
{
    std::array<char, 256> buffer;
    buffer.fill('x');
    QCOMPARE(KVR_GetBootParamValue("nothing", buffer.data()), int(KVR_ERR_FAILED));
    QCOMPARE(buffer[0], '\0');
}

void TestDeskDevice::synchronisingSaysSoWhenTheFileIsThere()
{
    const DeskEvents events(KVR_BOX);
    KVR_SetBootParamValue("buf_time_http", "1234");
    QCOMPARE(KVR_SyncBootParams(), int(KVR_OK));
    QVERIFY(boxFile(bootParameters).contains("buf_time_http=1234\n"));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_SYNC_DONE), 1);
    QCOMPARE(DeskEvents::of(KVR_EVENT_SYNC_DONE).constFirst().argument, int(KVR_BOX));
}

void TestDeskDevice::aKillLeavesTheOldOrTheNewParameters()
{
    for (int i = 0; i < kills; ++i) {
        QProcess writer;
        writer.start(QCoreApplication::applicationFilePath(), {storeForever});
        QVERIFY(writer.waitForStarted());
        const QByteArray before = boxFile(bootParameters);
        QTRY_VERIFY_WITH_TIMEOUT(boxFile(bootParameters) != before, 20000);
        QTest::qWait(i); // at another point of its work each time
        writer.kill();
        QVERIFY(writer.waitForFinished());

        const QByteArray content = boxFile(bootParameters);
        QVERIFY(content.endsWith('\n'));
        const int begin = content.indexOf("hdmi_config=");
        QVERIFY(begin >= 0);
        const QByteArray value = content.mid(begin + 12, content.indexOf('\n', begin) - begin - 12);
        QVERIFY(!value.isEmpty());
        QCOMPARE(value, QByteArray(value.size(), value[0]));
        QVERIFY2(content.contains("buf_time_http=1234\n"), "a parameter that was not touched");
    }
}

void TestDeskDevice::outputsAndHdmiTellOfChanges()
{
    const DeskEvents events(KVR_BOX);
    QCOMPARE(KVR_GetHdmiState(), int(KVR_HDMI_ACTIVE));
    QCOMPARE(KVR_IsOutportsEnabled(), 1);
    DeskBox::setHdmiState(KVR_HDMI_UNPLUGGED);
    DeskBox::setHdmiState(KVR_HDMI_UNPLUGGED);
    DeskBox::setOutputsEnabled(false);
    DeskBox::setOutputsEnabled(false);
    QCOMPARE(KVR_GetHdmiState(), int(KVR_HDMI_UNPLUGGED));
    QCOMPARE(KVR_IsOutportsEnabled(), 0);
    DeskBox::injectEvent(KVR_BOX, KVR_EVENT_SYNC_DONE, KVR_BOX);
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_SYNC_DONE), 1);
    QCOMPARE(DeskEvents::all().size(), 4);
    QCOMPARE(DeskEvents::count(KVR_EVENT_HDMI), 1);
    QCOMPARE(DeskEvents::of(KVR_EVENT_HDMI).constFirst().argument, int(KVR_HDMI_UNPLUGGED));
    QCOMPARE(DeskEvents::of(KVR_EVENT_OUTPUT_PORTS).constFirst().argument, 0);
    QCOMPARE(DeskEvents::count(KVR_EVENT_OUTPUT_STATE), 1);
}

void TestDeskDevice::aWholeImageIsInstalled()
{
    const QByteArray firmware = QByteArray("firmware").repeated(100000);
    HttpServer server;
    server.serve("/image.bin", HttpServer::Page{firmware, "application/octet-stream"});
    const ErrorOutput log;
    QCOMPARE(KVR_UpgradeFirmware(server.url("/image.bin").toEncoded()), int(KVR_OK));
    QTRY_VERIFY(log.text().contains(" done"));
    QCOMPARE(boxFile(image), firmware);
    QCOMPARE(log.text().count('\n'), 2);
    QCOMPARE(QDir("/home/user/firmware").entryList(QDir::Files), QStringList("image"));
}

void TestDeskDevice::anUpgradeFollowsNoLink()
{
    const QString kept = "/mnt/stb/kept";
    writeBoxFile(kept, "kept");
    QVERIFY(QFile::link(kept, QString(image) + ".part"));
    HttpServer server;
    server.serve("/image.bin", HttpServer::Page{"another image", "application/octet-stream"});
    const ErrorOutput log;
    QCOMPARE(KVR_UpgradeFirmware(server.url("/image.bin").toEncoded()), int(KVR_OK));
    QTRY_VERIFY2(log.text().contains(" done"), qPrintable(log.text()));
    QCOMPARE(boxFile(image), QByteArray("another image"));
    QVERIFY(!QFileInfo(image).isSymLink());
    QCOMPARE(boxFile(kept), QByteArray("kept"));
}

void TestDeskDevice::anImageComesFromTheNetworkAlone()
{
    const QByteArray before = boxFile(image);
    const ErrorOutput log;
    QCOMPARE(KVR_UpgradeFirmware("file:///proc/self/exe"), int(KVR_OK));
    QTRY_VERIFY(log.text().contains(" failed: "));
    QVERIFY2(log.text().contains("rotocol"), qPrintable(log.text()));
    QCOMPARE(boxFile(image), before);
}

void TestDeskDevice::anImageComesOnlyFromAServerThatTheBoxTrusts()
{
    TlsServer server;
    QVERIFY(server.isUp());
    const QByteArray before = boxFile(image);
    {
        const ErrorOutput log;
        QCOMPARE(KVR_UpgradeFirmware(server.url().toEncoded()), int(KVR_OK));
        QTRY_VERIFY(log.text().contains(" failed: "));
        QVERIFY2(log.text().contains("certificate"), qPrintable(log.text()));
        QCOMPARE(boxFile(image), before);
    }
    const QString bundle = "/etc/ssl/certs/ca-bundle.crt";
    QVERIFY(QFile::remove(bundle)); // it may be a link to the PC's
    QVERIFY(QFile::copy(TlsServer::certificate, bundle));
    const ErrorOutput log;
    QCOMPARE(KVR_UpgradeFirmware(server.url().toEncoded()), int(KVR_OK));
    QTRY_VERIFY2(log.text().contains(" done"), qPrintable(log.text()));
    QCOMPARE(boxFile(image), QByteArray(TlsServer::page));
}

void TestDeskDevice::theEndDoesNotWaitForAnUpgrade()
{
    HttpServer server;
    server.fallSilent();
    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {leaveInUpgrade, server.url("/image").toString()});
    QTRY_COMPARE_WITH_TIMEOUT(other.state(), QProcess::NotRunning, 10000);
    QCOMPARE(other.exitCode(), 0);
}

void TestDeskDevice::anImageThatDidNotArriveIsNotInstalled_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("reason");
    QTest::newRow("not found") << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nnone") << "404";
    QTest::newRow("cut off") << RawServer::cutOff("half", 8) << "4 bytes remaining";
    QTest::newRow("empty") << RawServer::cutOff("", 0) << "0 of 0 bytes";
    QTest::newRow("size unknown") << QByteArray("HTTP/1.1 200 OK\r\n\r\nsome") << "Content-Length";
    QTest::newRow("larger than a disk") << RawServer::cutOff("half", INT_MAX) << "2147483647 bytes are more than";
    QTest::newRow("endless") << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nhalf\r\n")
                             << "Content-Length";
    QTest::newRow("closed at once") << QByteArray() << "Empty reply";
    QTest::newRow("to another scheme") << QByteArray("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n\r\n")
                                       << "rotocol";
    QTest::newRow("to FTP") << QByteArray("HTTP/1.1 302 Found\r\nLocation: ftp://127.0.0.1:1/a\r\n\r\n") << "rotocol";
}

void TestDeskDevice::anImageThatDidNotArriveIsNotInstalled()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, reason);
    const QByteArray before = boxFile(image);
    QVERIFY(!before.isEmpty());
    const RawServer server(answer);
    const ErrorOutput log;
    QCOMPARE(KVR_UpgradeFirmware(server.url().toUtf8()), int(KVR_OK));
    QTRY_VERIFY(log.text().contains(" failed: "));
    QVERIFY2(log.text().contains(reason), qPrintable(log.text()));
    QCOMPARE(boxFile(image), before);
    QCOMPARE(QDir("/home/user/firmware").entryList(QDir::Files), QStringList("image"));
}

void TestDeskDevice::oneUpgradeAtATime()
{
    HttpServer server;
    server.fallSilent();
    const ErrorOutput log;
    QCOMPARE(KVR_UpgradeFirmware(server.url("/slow").toEncoded()), int(KVR_OK));
    QCOMPARE(KVR_UpgradeFirmware(server.url("/second").toEncoded()), int(KVR_ERR_INVALID_STATE));
    QTRY_VERIFY(log.text().contains("/second refused: another one is running\n"));
    QCOMPARE(KVR_UpgradeFirmware(""), int(KVR_ERR_INVALID_ARGUMENT));
    QTRY_VERIFY(log.text().contains("refused: it has no URL\n"));
    QCOMPARE(KVR_UpgradeFirmware(nullptr), int(KVR_ERR_INVALID_ARGUMENT));
}

void TestDeskDevice::whatIsInAFilesPlaceIsSaidOnce_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("what");
    QTest::addColumn<bool>("isReplaced"); // by a write, which a file takes and a folder does not
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QByteArray(row.what) << (row.kind != OddFile::Folder);
}

void TestDeskDevice::whatIsInAFilesPlaceIsSaidOnce()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, what);
    QFETCH(bool, isReplaced);
    for (const char *file : {bootParameters, serialNumber})
        QVERIFY(OddFile::put(file, OddFile::Kind(kind)));
    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {useOddFiles});
    QVERIFY(other.waitForFinished());
    const QByteArray log = other.readAllStandardError();
    for (const char *file : {bootParameters, serialNumber})
        QVERIFY2(log.count("stbapi: " + QByteArray(file) + " is " + what + ", so nothing is read from it;") == 1, log);
    QCOMPARE(log.count("cannot write " + QByteArray(serialNumber)), isReplaced ? 0 : 1);

    const QByteArray serial = isReplaced ? boxFile(serialNumber).trimmed() : QByteArray();
    QCOMPARE(serial.isEmpty(), !isReplaced);
    QCOMPARE(other.readAllStandardOutput(),
             (';' + serial + ';').repeated(3) + QByteArray::number(isReplaced ? KVR_OK : KVR_ERR_FAILED));
    QCOMPARE(boxFile(bootParameters), isReplaced ? QByteArray("buf_time_udp=9\n") : QByteArray());
}

void TestDeskDevice::aWriteBeyondTheLimitOfFilesFails()
{
    HttpServer server;
    server.serve("/image.bin", HttpServer::Page{QByteArray(100000, 'f'), "application/octet-stream"});
    const QByteArray before = boxFile(image);
    const ErrorOutput log;
    const FileSizeLimit limit(4096); // of the log too
    KVR_SetBootParamValue("hdmi_config", "1");
    QCOMPARE(KVR_SyncBootParams(), int(KVR_OK));
    QByteArray parameters;
    int result = KVR_OK;
    for (int i = 0; i < 40 && result == KVR_OK; ++i) {
        parameters = boxFile(bootParameters); // what was written last
        KVR_SetBootParamValue("parameter" + QByteArray::number(i), QByteArray(200, 'x'));
        result = KVR_SyncBootParams();
    }
    QCOMPARE(result, int(KVR_ERR_FAILED));
    QVERIFY(!parameters.isEmpty());
    QCOMPARE(boxFile(bootParameters), parameters);
    QCOMPARE(KVR_UpgradeFirmware(server.url("/image.bin").toEncoded()), int(KVR_OK));
    QTRY_VERIFY(log.text().contains("failed: File too large\n"));
    QCOMPARE(boxFile(image), before);
}

int main(int argc, char *argv[])
{
    const QByteArray role = argc > 1 ? argv[1] : "";
    if (role == storeForever)
        return storeParametersForever();
    if (role == useOddFiles)
        return readAndReplace();
    if (role == tellNewSerialNumber)
        return tellNewSerialNumberAndStay();
    if (role == tellSerialNumber)
        return std::fputs(textOf(KVR_GetDeviceSerialNumber), stdout) < 0;
    if (role == leaveInUpgrade && argc == 3)
        return KVR_UpgradeFirmware(argv[2]);
    if (role == "tell-boot-parameter" && argc == 3)
        return std::fputs(bootParameter(argv[2]), stdout) < 0;

    QCoreApplication application(argc, argv);
    TestDeskDevice test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_deskdevice.moc"
