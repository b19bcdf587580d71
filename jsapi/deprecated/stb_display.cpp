// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/deprecated/stb_display.h"

#include "browser/bridge/JsApiTracer.h"
#include "common/other/plainfile.h"
#include "jsapi/BootParameters.h"
#include "jsapi/DeviceIdentity.h"
#include "jsapi/GraphicsLayer.h"
#include "jsapi/PageLog.h"
#include "jsapi/Reboot.h"
#include "jsapi/StoragePath.h"
#include "jsapi/deprecated/JsonText.h"
#include "platform/stbapi.h"

#include <QTextStream>

#include <iostream>

namespace {

const char versionFile[] = "/home/user/version";
const int versionLength = 32;

// Old portals read these two numbers as characters.
const char timeZoneCode = 40;
const char modeCode = 1;

QString listing(const QString &dir, QDir::Filters kind)
{
    QString entries;
    const QStringList names = entryNames(QLatin1String(storageRoot) + dir, kind);
    for (const QString &name : names)
        entries += JsonText::filled("\"%1\",\n", name);
    return JsonText::list(entries);
}

} // namespace

namespace KavroJSDeprecated {

stb_display::stb_display()
    : logFile(new PageLog(this))
{
}

stb_display::~stb_display()
{
    logFile->close();
}

QString stb_display::browserVersion()
{
    trace("stb_display.browserVersion");
    return QLatin1String("Qt/Webkit 4.7.0");
}

QString stb_display::timeZone()
{
    trace("stb_display.timeZone");
    return QChar::fromLatin1(timeZoneCode);
}

QString stb_display::macaddr()
{
    trace("stb_display.macaddr");
    return DeviceIdentity::hardwareAddress();
}

QString stb_display::netip()
{
    trace("stb_display.netip");
    return DeviceIdentity::ipAddress();
}

QString stb_display::mode()
{
    trace("stb_display.mode");
    return QChar::fromLatin1(modeCode);
}

QString stb_display::model()
{
    trace("stb_display.model");
    return QLatin1String("MZ412");
}

QString stb_display::cpuname()
{
    trace("stb_display.cpuname");
    return QLatin1String("MIPS-SMP8655A");
}

QString stb_display::cpufreq()
{
    trace("stb_display.cpufreq");
    return QLatin1String("500 MHz");
}

QString stb_display::FirmwareVersion()
{
    trace("stb_display.getFirmwareVersion()");
    const QString path = QLatin1String(versionFile);
    Common::PlainFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString::fromLatin1("");
    return QTextStream(&file).readLine(versionLength);
}

QString stb_display::SerialNumber()
{
    trace("stb_display.SerialNumber");
    return QLatin1String("00000001");
}

int stb_display::setStb_displaytimeZone()
{
    trace("stb_display.setStb_displaytimeZone()");
    std::cout << "stb_displaytimeZone SET " << std::endl;
    return 0;
}

int stb_display::setGraphicsViewport(int x, int y, int w, int h)
{
    trace("stb_display.setGraphicsViewport(%1, %2, %3, %4)", x, y, w, h);
    return GraphicsLayer::setViewport(x, y, w, h);
}

QString stb_display::getGraphicsViewport()
{
    trace("stb_display.getGraphicsViewport()");
    KVR_Rect viewport;
    if (!GraphicsLayer::viewport(viewport))
        return QLatin1String("{\"errordescr\":\"Invalid Id\"}");
    return JsonText::rectangle(viewport);
}

int stb_display::setGraphicsVisible(int visible)
{
    trace("stb_display.setGraphicsVisible(%1)", visible);
    return KVR_SetGraphicsVisible(visible);
}

int stb_display::isGraphicsVisible()
{
    trace("stb_display.isGraphicsVisible()");
    return KVR_IsGraphicsVisible();
}

int stb_display::setAlphaLevel(uint alpha)
{
    trace("stb_display.setAlphaLevel(%1)", alpha);
    return KVR_SetGraphicsAlphaLevel(alpha);
}

int stb_display::getAlphaLevel()
{
    trace("stb_display.getAlphaLevel()");
    return KVR_GetGraphicsAlphaLevel();
}

int stb_display::SetBootParamValue(QString key, QString value)
{
    trace("stb_display.SetBootParamValue(%1, %2)", key, value);
    return BootParameters::isResolution(key) && BootParameters::setResolution(value) ? 0 : 1;
}

QString stb_display::GetBootParamValue(QString key)
{
    trace("stb_display.GetBootParamValue(%1)", key);
    return BootParameters::value(key);
}

int stb_display::SyncBootParams()
{
    trace("stb_display.SyncBootParams()");
    KVR_SyncBootParams();
    return 0;
}

int stb_display::setChromaKey(int color)
{
    trace("stb_display.setChromaKey(%1)", color);
    return GraphicsLayer::setChromaKey(color);
}

int stb_display::getChromaKey()
{
    trace("stb_display.getChromaKey()");
    return GraphicsLayer::chromaKey();
}

int stb_display::isChromaKeyEnable()
{
    trace("stb_display.isChromaKeyEnable()");
    return KVR_IsChromaKeyEnable();
}

int stb_display::setChromaKeyEnable(int enable)
{
    trace("stb_display.setChromaKeyEnable(%1)", enable);
    return KVR_SetChromaKeyEnable(enable);
}

int stb_display::setCurrentRMLayout(int layout)
{
    trace("stb_display.setCurrentRMLayout(%1)", layout);
    return KVR_SetCurrentLayout(layout);
}

int stb_display::getCurrentRMLayout()
{
    trace("stb_display.getCurrentRMLayout()");
    return KVR_GetCurrentLayout();
}

int stb_display::switchToNextRMLayout()
{
    trace("stb_display.switchToNextRMLayout()");
    return KVR_SwitchToNextLayout();
}

int stb_display::UpgradeFirmware(QString url)
{
    trace("stb_display.UpgradeFirmware(%1)", url);
    KVR_UpgradeFirmware(url.toUtf8().constData());
    return 0;
}

// Unlike the current object's, these lists may lie outside the storage root, and no separator follows the root.

QString stb_display::ListFiles(QString dir)
{
    trace("stb_display.ListFiles(%1)", dir);
    return listing(dir, QDir::Files);
}

QString stb_display::ListDirs(QString dir)
{
    trace("stb_display.ListDirs(%1)", dir);
    return listing(dir, QDir::Dirs);
}

int stb_display::IsOutportsEnabled()
{
    trace("stb_display.IsOutportsEnabled()");
    return KVR_IsOutportsEnabled();
}

int stb_display::reboot()
{
    trace("stb_display.reboot()");
    rebootBox();
    return 0;
}

int stb_display::debug(QString debug)
{
    trace("stb_display.debug(%1)", debug);
    PageLog::print(debug);
    return 0;
}

int stb_display::log(QString log)
{
    trace("stb_display.log(%1)", log);
    logFile->append(log);
    return 0;
}

int stb_display::ntpUpdate()
{
    trace("stb_display.ntpUpdate()");
    std::cout << "stb_displayProtoFunntpUpdate " << std::endl;
    return 0;
}

int stb_display::setMediaStatus()
{
    trace("stb_display.setMediaStatus()");
    return 0;
}

int stb_display::standby()
{
    trace("stb_display.standby()");
    std::cout << "setmediaStatus " << std::endl;
    return 0;
}

} // namespace KavroJSDeprecated
