// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/other/qtcompat.h"
#include "shell/CStbApplication.h"
#include "shell/SplashImage.h"

#include <QDir>

class KavroStbBrowser;
class PluginConfigParser;
class QWebInspector;

/// The object that the launcher loads: presents the application, starts the browser with a splash image over it, and
/// leaves the graphics layer as the launcher expects it.
class PluginWrapper : public CStbApplication
{
    Q_OBJECT
    KAVRO_PLUGIN_ROOT

public:
    explicit PluginWrapper(QWidget *parent = nullptr);
    ~PluginWrapper() override;

    QString appName() override;
    QString appDescription() override;
    QPixmap appLogo() override;
    QPixmap appLogoSmall() override;
    QString relativePath() const override;
    QString pluginVersion() const override;
    QString vcsVersion() const override;
    QString compilationTime() const override;
    void setFullPath(const QString &path) override;
    bool supportsSD() const override;

    bool eventFilter(QObject *object, QEvent *event) override;

signals:
    void resize(QSize size);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    void runApplication();
    void shutdownApplication();
    void doFixedSize(QSize);
    void onPageLoadFinished(bool ok);
    void showSplash();

private:
    QSize chosenPageSize() const;
    void createBrowser(const QSize &size);
    void makeBackgroundTransparent();
    void createInspector();
    QPixmap icon(const QString &file, const char *builtIn) const;
    void teardown();
    static void cleanupStbApi();

    bool shuttingDown; ///< every key press is swallowed
    KavroStbBrowser *browser;
    QWebInspector *inspector;
    bool running;
    QDir pluginDir;
    PluginConfigParser *manifest; ///< null until the launcher has told the plugin's directory
    SplashImage splash;
};
