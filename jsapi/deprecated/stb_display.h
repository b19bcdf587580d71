// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QString>

class PageLog;

namespace KavroJSDeprecated {

/// The older twin of StbDisplay: other names, answers as JSON text, and some fixed ones. The order of the slots is part
/// of what portals and the launcher see.
class stb_display : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString browserVersion READ browserVersion)
    Q_PROPERTY(QString timeZone READ timeZone)
    Q_PROPERTY(QString macaddr READ macaddr)
    Q_PROPERTY(QString netip READ netip)
    Q_PROPERTY(QString mode READ mode)
    Q_PROPERTY(QString model READ model)
    Q_PROPERTY(QString cpuname READ cpuname)
    Q_PROPERTY(QString cpufreq READ cpufreq)
    Q_PROPERTY(QString FirmwareVersion READ FirmwareVersion)
    Q_PROPERTY(QString SerialNumber READ SerialNumber)

public:
    stb_display();
    ~stb_display() override;

    QString browserVersion();
    QString timeZone();
    QString macaddr();
    QString netip();
    QString mode();
    QString model();
    QString cpuname();
    QString cpufreq();
    QString FirmwareVersion();
    QString SerialNumber();

public slots:
    int setStb_displaytimeZone();
    int setGraphicsViewport(int, int, int, int);
    QString getGraphicsViewport();
    int setGraphicsVisible(int);
    int isGraphicsVisible();
    int setAlphaLevel(uint);
    int getAlphaLevel();
    int SetBootParamValue(QString key, QString value);
    QString GetBootParamValue(QString key);
    int SyncBootParams();
    int setChromaKey(int color);
    int getChromaKey();
    int isChromaKeyEnable();
    int setChromaKeyEnable(int);
    int setCurrentRMLayout(int);
    int getCurrentRMLayout();
    int switchToNextRMLayout();
    int UpgradeFirmware(QString url);
    QString ListFiles(QString dir);
    QString ListDirs(QString dir);
    int IsOutportsEnabled();
    int reboot();
    int debug(QString debug);
    int log(QString log);
    int ntpUpdate();
    int setMediaStatus();
    int standby();

private:
    PageLog *logFile;
};

} // namespace KavroJSDeprecated
