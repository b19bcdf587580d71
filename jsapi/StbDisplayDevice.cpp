// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The members of StbDisplay for the device and its boot parameters.

#include "jsapi/StbDisplay.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/BootParameters.h"
#include "jsapi/BoxCommand.h"
#include "jsapi/DeviceIdentity.h"
#include "jsapi/StoragePath.h"

#include <QWebSettings>

namespace KavroJS {

QString StbDisplay::APIVersion()
{
    trace("StbDisplay.APIVersion");
    return QLatin1String("v1.2");
}

QString StbDisplay::EthernetHardwareAddress()
{
    trace("StbDisplay.EthernetHardwareAddress");
    return DeviceIdentity::hardwareAddress();
}

QString StbDisplay::IpAddress()
{
    trace("StbDisplay.IpAddress");
    return DeviceIdentity::ipAddress();
}

QString StbDisplay::DeviceModel()
{
    trace("StbDisplay.DeviceModel");
    return DeviceIdentity::platformText(KVR_GetDeviceModel, "????");
}

QString StbDisplay::FirmwareVersion()
{
    trace("StbDisplay.FirmwareVersion");
    return DeviceIdentity::platformText(KVR_GetFirmwareVersion, "unknown");
}

QString StbDisplay::SerialNumber()
{
    trace("StbDisplay.SerialNumber");
    return DeviceIdentity::platformText(KVR_GetDeviceSerialNumber, "SN????????");
}

int StbDisplay::SetBootParamValue(QString key, QString value)
{
    trace("StbDisplay.SetBootParamValue(%1, %2)", key, value);
    const bool done = BootParameters::isResolution(key) ? BootParameters::setResolution(value)
                                                        : BootParameters::setPlatformValue(key, value);
    return done ? 0 : 1;
}

QVariant StbDisplay::GetBootParamValue(QString key)
{
    trace("StbDisplay.GetBootParamValue(%1)", key);
    return BootParameters::value(key);
}

int StbDisplay::SyncBootParams()
{
    trace("StbDisplay.SyncBootParams()");
    KVR_SyncBootParams();
    return 0;
}

int StbDisplay::UpgradeFirmware(QString url)
{
    trace("StbDisplay.UpgradeFirmware(%1)", url);
    KVR_UpgradeFirmware(url.toUtf8().constData());
    return 0;
}

// Writes no trace line.
int StbDisplay::EnableHtml5LocalStorage(bool isEnabled)
{
    QWebSettings *settings = QWebSettings::globalSettings();
    settings->setAttribute(QWebSettings::LocalStorageEnabled, isEnabled);
    if (isEnabled)
        settings->setLocalStoragePath(QLatin1String(localStorageDirectory));
    return 0;
}

int StbDisplay::Reboot()
{
    trace("StbDisplay.Reboot()");
    BoxCommand::reboot();
    return 0;
}

int StbDisplay::ExitToMenu()
{
    trace("StbDisplay.ExitToMenu()");
    emit ExitToMenuSignal();
    return 0;
}

int StbDisplay::SetKeyEventPeriod(int ms)
{
    trace("StbDisplay.SetKeyEventPeriod(%1)", ms);
    emit keyDelayChanged(ms);
    return 0;
}

} // namespace KavroJS
