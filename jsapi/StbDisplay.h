// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "jsapi/OutputHandlers.h"

#include <QObject>
#include <QString>
#include <QVariant>

class PageLog;

namespace KavroJS {

/// The script object StbDisplay: graphics layer, video layout, outputs, device, boot parameters, log, files and
/// scripts. The order of the slots is part of what portals and the launcher see.
class StbDisplay : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString APIVersion READ APIVersion)
    Q_PROPERTY(QString EthernetHardwareAddress READ EthernetHardwareAddress)
    Q_PROPERTY(QString IpAddress READ IpAddress)
    Q_PROPERTY(QString DeviceModel READ DeviceModel)
    Q_PROPERTY(QString FirmwareVersion READ FirmwareVersion)
    Q_PROPERTY(QString SerialNumber READ SerialNumber)

public:
    /// The one object of the process, made by the first call.
    static StbDisplay *instance();
    static void destroyInstance();

    /// Takes the box-wide event handlers over, and gives them back when destroyed.
    StbDisplay();
    ~StbDisplay() override;

    QString APIVersion();
    QString EthernetHardwareAddress();
    QString IpAddress();
    QString DeviceModel();
    QString FirmwareVersion();
    QString SerialNumber();

signals:
    void ExitToMenuSignal();
    void keyDelayChanged(int);

public slots:
    int SetGraphicsViewport(int, int, int, int);
    QVariant GetGraphicsViewport();
    int SetGraphicsVisible(int);
    int IsGraphicsVisible();
    int SetAlphaLevel(uint);
    int GetAlphaLevel();
    int SetChromaKey(int color);
    int GetChromaKey();
    int IsChromaKeyEnable();
    int SetChromaKeyEnable(int);
    int SetCurrentRMLayout(int);
    int GetCurrentRMLayout();
    int SwitchToNextRMLayout();
    QVariant GetOrder();
    int SetOrder(QVariantList);
    int IsOutportsEnabled();
    int GetHdmiState();

    int SetBootParamValue(QString key, QString value);
    QVariant GetBootParamValue(QString key);
    int SyncBootParams();
    int UpgradeFirmware(QString url);
    int EnableHtml5LocalStorage(bool isEnabled);
    int Reboot();
    int ExitToMenu();
    int SetKeyEventPeriod(int ms);

    QVariant ListFiles(QString dir);
    QVariant ListDirs(QString dir);
    QVariant ExecBlocking(QString cmd, QString args);
    int Debug(QString Debug);
    int Log(QString Log);

private:
    PageLog *logFile;
    OutputHandlers outputHandlers;

    static StbDisplay *inst_;
};

} // namespace KavroJS
