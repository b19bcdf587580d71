// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The members of stb_display for the device and its boot parameters.

#include "jsapi/deprecated/stb_display.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/BootParameters.h"
#include "jsapi/BoxCommand.h"
#include "jsapi/DeviceIdentity.h"
#include "platform/stbapi.h"

#include <iostream>

namespace {

// Old portals read these two numbers as characters.
const char timeZoneCode = 40;
const char modeCode = 1;

} // namespace

namespace KavroJSDeprecated {

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
    return DeviceIdentity::versionInFile();
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

int stb_display::UpgradeFirmware(QString url)
{
    trace("stb_display.UpgradeFirmware(%1)", url);
    KVR_UpgradeFirmware(url.toUtf8().constData());
    return 0;
}

int stb_display::reboot()
{
    trace("stb_display.reboot()");
    BoxCommand::reboot();
    return 0;
}

int stb_display::ntpUpdate()
{
    trace("stb_display.ntpUpdate()");
    std::cout << "stb_displayProtoFunntpUpdate " << std::endl;
    return 0;
}

int stb_display::standby()
{
    trace("stb_display.standby()");
    std::cout << "setmediaStatus " << std::endl;
    return 0;
}

} // namespace KavroJSDeprecated
