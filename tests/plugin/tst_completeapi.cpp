// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"

#include "shell/CStbApplication.h"

#include <QtTest>
#include <memory>

namespace {

struct ScriptObject
{
    const char *name;
    int methodCount;
    QStringList methods;
    QStringList properties;
    QStringList others; ///< signals, and what the browser adds in a page
};

QStringList words(const char *text)
{
    return QString(text).split(' ');
}

// Everything that portals can use, object by object.
const ScriptObject objects[] = {
    {"StbMedia", 52,
     words("CreatePlayer ClosePlayer GetPlayersCount PlayFile PlayStream PlayHttp PlayRtsp PlayMagnet Pause Stop "
           "Continue NextFrame SetPosition GetPosition GetDuration SetSpeed GetSpeed GetPlayerState "
           "GetVideoPid GetAudioPid SetAudioPid GetSubtitlePid SetSubtitlePid IsSubtitlesVisible SetSubtitlesVisible "
           "GetTeletextPid SetTeletextPid GetTeletextPage SetTeletextPage IsTeletextVisible SetTeletextVisible "
           "GetVideoTrackList GetAudioTrackList GetSubtitleTrackList GetTeletextTrackList GetLastMulticastEvent "
           "GetPlayerViewPort "
           "SetVolume GetVolume SetMute IsMute SetZoom GetZoom GetFps SetPlayerViewPort SetPlayerAlphaLevel "
           "GetPlayerAlphaLevel SetPlayerVisible IsPlayerVisible SetPlayerDisplayMode GetPlayerDisplayMode "
           "GetEventDescription"),
     words("onEvent"), words("jsCallback")},
    {"StbDisplay", 30,
     words("SetGraphicsViewport GetGraphicsViewport SetGraphicsVisible IsGraphicsVisible SetAlphaLevel GetAlphaLevel "
           "SetChromaKey GetChromaKey IsChromaKeyEnable SetChromaKeyEnable SetCurrentRMLayout GetCurrentRMLayout "
           "SwitchToNextRMLayout GetOrder SetOrder IsOutportsEnabled GetHdmiState "
           "SetBootParamValue GetBootParamValue SyncBootParams UpgradeFirmware EnableHtml5LocalStorage Reboot "
           "ExitToMenu SetKeyEventPeriod "
           "ListFiles ListDirs ExecBlocking Debug Log"),
     words("APIVersion EthernetHardwareAddress IpAddress DeviceModel FirmwareVersion SerialNumber"),
     words("ExitToMenuSignal keyDelayChanged")},
    {"StbPVR",
     10,
     words("AddRecord GetRecordsList GetRecordStatus SetRecordStartTime SetRecordDuration SetRecordFilename "
           "SetRecordUrl GetRecordFilename CleanUpRecords DeleteRecord"),
     {},
     {}},
    {"stb_media", 45,
     words("CreatePlayer ClosePlayer GetPlayersCount PlayFile PlayStream PlayHttp PlayRtsp PlayMagnet Pause Stop "
           "Continue NextFrame SetPosition GetPosition GetDuration SetSpeed GetSpeed "
           "GetVideoPid GetVideoTrackList SetAudioPid GetAudioPid GetAudioTrackList SetSubtitlePid GetSubtitlePid "
           "GetSubtitleTrackList SetSubtitlesVisible IsSubtitlesVisible "
           "SetVolume GetVolume IsMute SetMute GetZoom SetZoom GetFps SetPlayerViewPort GetPlayerViewPort "
           "SetPlayerAlphaLevel GetPlayerAlphaLevel SetPlayerVisible IsPlayerVisible GetPlayerDisplayMode "
           "SetPlayerDisplayMode GetPlayerState GetLastMulticastEvent getEventDescription"),
     words("onEvent"), words("jsCallback")},
    {"stb_display",
     27,
     words("setStb_displaytimeZone setGraphicsViewport getGraphicsViewport setGraphicsVisible isGraphicsVisible "
           "setAlphaLevel getAlphaLevel SetBootParamValue GetBootParamValue SyncBootParams setChromaKey getChromaKey "
           "isChromaKeyEnable setChromaKeyEnable setCurrentRMLayout getCurrentRMLayout switchToNextRMLayout "
           "UpgradeFirmware ListFiles ListDirs IsOutportsEnabled reboot debug log ntpUpdate setMediaStatus standby"),
     words("browserVersion timeZone macaddr netip mode model cpuname cpufreq FirmwareVersion SerialNumber"),
     {}},
};

// What the toolkit gives to every object.
const QStringList inherited = words("objectName destroyed deleteLater");

QStringList sorted(QStringList names)
{
    names.sort();
    names.removeDuplicates();
    return names;
}

} // namespace

// The whole interface for pages, asked of the shipped plugin from a page.
class TestCompleteApi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void objectsHaveTheseMembersAndNoOthers_data();
    void objectsHaveTheseMembersAndNoOthers();
    void methodsCanBeCalledByTheirNames_data();
    void methodsCanBeCalledByTheirNames();
    void propertiesAreTexts_data();
    void propertiesAreTexts();
    void pagesHaveTheFiveObjectsOnly();

private:
    void addObjects();

    std::unique_ptr<HostedPlugin> m_plugin;
};

void TestCompleteApi::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml("<!DOCTYPE html><title>All</title>"));
}

void TestCompleteApi::cleanupTestCase()
{
    m_plugin.reset();
}

void TestCompleteApi::addObjects()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(objects)); ++i)
        QTest::newRow(objects[i].name) << i;
}

void TestCompleteApi::objectsHaveTheseMembersAndNoOthers_data()
{
    addObjects();
}

void TestCompleteApi::objectsHaveTheseMembersAndNoOthers()
{
    QFETCH(const int, index);
    const ScriptObject &object = objects[index];
    QCOMPARE(object.methods.size(), object.methodCount);
    QStringList members =
        m_plugin
            ->evaluate(QString("(function () { var names = []; for (var name in %1) names.push(name.split('(')[0]);"
                               "return names; })()")
                           .arg(object.name))
            .toStringList();
    QCOMPARE(sorted(members), sorted(object.methods + object.properties + object.others + inherited));
}

void TestCompleteApi::methodsCanBeCalledByTheirNames_data()
{
    addObjects();
}

void TestCompleteApi::methodsCanBeCalledByTheirNames()
{
    QFETCH(const int, index);
    const ScriptObject &object = objects[index];
    for (const QString &method : object.methods) {
        QCOMPARE(m_plugin->evaluateToJson(QString("typeof %1.%2").arg(object.name, method)), QString("\"function\""));
    }
}

void TestCompleteApi::propertiesAreTexts_data()
{
    addObjects();
}

void TestCompleteApi::propertiesAreTexts()
{
    QFETCH(const int, index);
    const ScriptObject &object = objects[index];
    for (const QString &property : object.properties) {
        QCOMPARE(m_plugin->evaluateToJson(QString("typeof %1.%2").arg(object.name, property)), QString("\"string\""));
    }
}

// Under the window's own names there may be anything.
void TestCompleteApi::pagesHaveTheFiveObjectsOnly()
{
    const QStringList names = m_plugin->evaluate("Object.keys(window)")
                                  .toStringList()
                                  .filter(QRegExp("^stb|^kvr|^kavro", Qt::CaseInsensitive));
    QCOMPARE(sorted(names), sorted(words("StbMedia StbDisplay StbPVR stb_media stb_display")));
}

QTEST_MAIN(TestCompleteApi)

#include "tst_completeapi.moc"
