// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "shell/CStbApplication.h"

/// A plugin that fills the screen with green and, a moment after its start, ends the whole process.
class ExitingPlugin : public CStbApplication
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID KAVRO_STB_INTERFACE_ID)

public:
    QString relativePath() const override { return {}; }
    QString pluginVersion() const override { return {}; }
    QString vcsVersion() const override { return {}; }
    QString compilationTime() const override { return {}; }
    QString appName() override { return {}; }
    QString appDescription() override { return {}; }
    QPixmap appLogo() override { return {}; }
    QPixmap appLogoSmall() override { return {}; }
    void setFullPath(const QString &path) override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
