// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "shell/CStbApplication.h"

#include <QWebInspector>

/// A plugin with a page and its inspector that, a moment after its start, writes which windows are open and how large
/// the screen's is, and closes that, as a user does. Before that it begins a line, and its page writes to the console.
class WindowsPlugin : public CStbApplication
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

private:
    void writeWindows();

    QWebInspector m_inspector;
};
