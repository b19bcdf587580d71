// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "shell/StbInterface.h"

#include <QPixmap>
#include <QWidget>

/// A plugin that is an application with a screen: the widget that the launcher shows, and how it presents it in its
/// menu.
class CStbApplication : public QWidget, public StbInterface
{
    Q_OBJECT
    Q_INTERFACES(StbInterface)

public:
    explicit CStbApplication(QWidget *parent = nullptr);

    int type() override;
    /// Name for the launcher's menu.
    virtual QString appName() = 0;
    virtual QString appDescription() = 0;
    /// Icon of the chosen entry.
    virtual QPixmap appLogo() = 0;
    /// Icon of the other entries.
    virtual QPixmap appLogoSmall() = 0;

signals:
    /// Asks the launcher for its page of the subscriber's account.
    void loadPersonalCabinet(QString params);
    /// The application has finished; the launcher destroys it, but not before this signal's emission has returned.
    void exit();
};
