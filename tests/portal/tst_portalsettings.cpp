// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"

#include <QFile>
#include <QTest>

using namespace RecordingPlatform;

namespace {

QString contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

/// The portal's settings, and its screens about the box.
class TestPortalSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theResolutionIsChangedForTheNextStart();
    void aResolutionThatTheBoxKeepsIsSaid();
    void theKeyDelayIsChangedAndRemembered();
    void theVolumeIsChanged();
    void eventsAreLoggedOnDemand();
    void theObjectsAreListedWithTheirMembers();
    void theBoxIsDescribed();
    void keysAreShownByNameAndCode_data();
    void keysAreShownByNameAndCode();
    void aRepeatedKeyIsCounted();
    void onlyTheNewestKeysAreKept();
    void keysThatThePortalDoesNotUseAreLeftToTheBox_data();
    void keysThatThePortalDoesNotUseAreLeftToTheBox();

private:
    PortalPage m_portal;
};

void TestPortalSettings::init()
{
    reset();
    PortalPage::playerIs(KVR_PLAYER_PLAYING);
    answer("KVR_GetVolume", 30);
    QVERIFY(m_portal.open());
}

void TestPortalSettings::cleanup()
{
    QCOMPARE(m_portal.errors(), QStringList());
    m_portal.forget();
    m_portal.close();
}

void TestPortalSettings::theResolutionIsChangedForTheNextStart()
{
    m_portal.press("Down*4 Return Down");
    QCOMPARE(m_portal.text("#row-resolution .value"), QString("1280x720"));
    m_portal.press("Right");
    QCOMPARE(m_portal.text("#row-resolution .value"), QString("1920x1080"));
    QCOMPARE(m_portal.evaluate("StbDisplay.GetBootParamValue('dfbres')").toString(), QString("1920x1080"));
    QCOMPARE(m_portal.text("#notice"), QString("1920x1080 from the next start on"));
    QCOMPARE(m_portal.text("#box"), QString::fromUtf8("MZ-600 test · 1280 × 720"));
    m_portal.press("Left");
    QCOMPARE(m_portal.text("#row-resolution .value"), QString("1280x720"));
}

void TestPortalSettings::aResolutionThatTheBoxKeepsIsSaid()
{
    m_portal.evaluate("Object.defineProperty(window, 'StbDisplay', {value: {"
                      "GetBootParamValue: function () { return '1280x720'; },"
                      "SetBootParamValue: function () { return 1; }}});");
    m_portal.press("Down*4 Return Down Right");
    QCOMPARE(m_portal.text("#row-resolution .value"), QString("1280x720"));
    QCOMPARE(m_portal.text("#notice"), QString("The box leaves the resolution to its own settings"));
}

void TestPortalSettings::theKeyDelayIsChangedAndRemembered()
{
    m_portal.press("Down*4 Return Down*2 Right");
    QCOMPARE(m_portal.text("#row-keyDelay .value"), QString("100 ms"));
    // Now in force: of the same key pressed twice at once, one is dropped.
    m_portal.press("Up Up");
    QCOMPARE(m_portal.focused(), QString("resolution"));
    m_portal.close();
    QVERIFY(m_portal.open());
    m_portal.press("Down Down");
    QCOMPARE(m_portal.focused(), QString("channel-2"));
}

void TestPortalSettings::theVolumeIsChanged()
{
    m_portal.press("Down*4 Return");
    QCOMPARE(m_portal.text("#row-volume .value"), QString("30"));
    takeCalls();
    m_portal.press("Right");
    QCOMPARE(PortalPage::takeCalls("KVR_SetVolume"), QByteArrayList{"KVR_SetVolume(1, 35)"});
    m_portal.press("Left");
    QCOMPARE(PortalPage::takeCalls("KVR_SetVolume"), QByteArrayList{"KVR_SetVolume(1, 25)"});
}

void TestPortalSettings::eventsAreLoggedOnDemand()
{
    const auto sendVolumeEvent = [this] { m_portal.evaluate("StbMedia.eventCallback(1, 7)"); };
    sendVolumeEvent();
    m_portal.press("Down*4 Return Down*3 Right");
    QCOMPARE(m_portal.text("#row-log .value"), QString("to the log file"));
    sendVolumeEvent();
    m_portal.press("Right");
    QCOMPARE(m_portal.text("#row-log .value"), QString("to the output"));
    sendVolumeEvent();
    m_portal.press("Right");
    QCOMPARE(m_portal.text("#row-log .value"), QString("off"));
    sendVolumeEvent();
    QCOMPARE(contentOf("/tmp/jsbrowser.log").count("Event 7 (volume) of 1"), 1);
}

void TestPortalSettings::theObjectsAreListedWithTheirMembers()
{
    m_portal.press("Down*5 Return");
    QCOMPARE(m_portal.texts(".row .value").size(), 5);
    QCOMPARE(m_portal.text("#row-StbPVR"), QString("StbPVR Scheduled recordings 10 members"));
    m_portal.press("Down*2 Return");
    QCOMPARE(m_portal.text("#members-object"), QString("StbPVR"));
    QCOMPARE(m_portal.texts("#members-list li"),
             QStringList({"AddRecord", "GetRecordsList", "GetRecordStatus", "SetRecordStartTime", "SetRecordDuration",
                          "SetRecordFilename", "SetRecordUrl", "GetRecordFilename", "CleanUpRecords", "DeleteRecord"}));
    m_portal.press("Return Down");
    QCOMPARE(m_portal.screen(), QString("members"));
}

void TestPortalSettings::theBoxIsDescribed()
{
    answer("KVR_GetFirmwareVersion", Answer::text("7.8.9"));
    answer("KVR_GetDeviceSerialNumber", Answer::text("SN123"));
    m_portal.press("Down*5 Return");
    QCOMPARE(m_portal.text("#address"), PortalPage::url().toString());
    QVERIFY(m_portal.text("#user-agent").endsWith(" Kavro MZ412"));
    QCOMPARE(m_portal.text("#versions"), QString("API v1.2, firmware 7.8.9, serial number SN123"));
}

void TestPortalSettings::keysAreShownByNameAndCode_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");
    QTest::newRow("arrow") << "Left"
                           << "Left 37";
    QTest::newRow("tabulator") << "Tab"
                               << "Tab 9";
    QTest::newRow("letter") << "A"
                            << "A 65";
    QTest::newRow("digit") << "7"
                           << "7 55";
    QTest::newRow("first coloured key") << "F2"
                                        << "F2 113";
    QTest::newRow("last function key") << "F24"
                                       << "F24 135";
    QTest::newRow("volume") << "VolumeUp"
                            << "VolumeUp 175";
    QTest::newRow("a key without a code") << "Hangup"
                                          << "Key 0";
}

void TestPortalSettings::keysAreShownByNameAndCode()
{
    QFETCH(QString, key);
    m_portal.press("Down*5 Return " + key);
    QTEST(m_portal.text("#keys li"), "expected");
}

void TestPortalSettings::aRepeatedKeyIsCounted()
{
    m_portal.press("Down*5 Return");
    QCOMPARE(m_portal.texts("#keys li"), QStringList({"Enter 13", QString::fromUtf8("Down 40 ×5")}));
}

void TestPortalSettings::onlyTheNewestKeysAreKept()
{
    m_portal.press("Down*5 Return A B C D E F");
    QCOMPARE(m_portal.texts("#keys li"), QStringList({"F 70", "E 69", "D 68", "C 67"}));
}

void TestPortalSettings::keysThatThePortalDoesNotUseAreLeftToTheBox_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("used");
    QTest::newRow("arrow") << 40 << true;
    QTest::newRow("back") << 8 << true;
    QTest::newRow("volume") << 175 << true;
    QTest::newRow("coloured key") << 113 << false;
}

void TestPortalSettings::keysThatThePortalDoesNotUseAreLeftToTheBox()
{
    QFETCH(int, key);
    QFETCH(bool, used);
    const QString press = "var event = document.createEvent('Event'); event.initEvent('keydown', true, true);"
                          "event.keyCode = %1; document.dispatchEvent(event)";
    const bool isLeft = m_portal.evaluate(press.arg(key)).toBool();
    QCOMPARE(!isLeft, used);
}

QTEST_MAIN(TestPortalSettings)
#include "tst_portalsettings.moc"
