// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "PluginManifest.h"

#include "shell/CStbApplication.h"

#include <QPointer>
#include <QUrl>
#include <QVariant>

#include <memory>

class QWebView;

/// The launcher of a test: loads the plugin, starts it in the test's box and hands its browser over. Ends the program
/// with a message outside a box, where the plugin would work on the developer's own files.
class HostedPlugin
{
public:
    /// Whether pages find the engine of a box rather than the PC's: the tests run with each, as the environment's
    /// KAVRO_ENGINE says.
    static bool hasBoxEngine();

    /// The plugin's directory in the box.
    static QString pluginDirectory();
    static void writeManifest(const PluginManifest &manifest);
    /// Any text, well-formed or not.
    static void writeManifest(const QByteArray &text);
    static void removeManifest();

    /// Loads the plugin, which starts nothing yet.
    HostedPlugin();
    ~HostedPlugin();
    HostedPlugin(const HostedPlugin &) = delete;
    HostedPlugin &operator=(const HostedPlugin &) = delete;

    /// Null after destroy().
    CStbApplication *application() const { return m_application; }
    /// Gives the plugin its directory and waits until it has made its browser. False if it does not within 5 seconds.
    bool start();
    /// Null before start() and after destroy().
    QWebView *browser() const;
    /// Destroys the application, as a launcher does when it exits.
    void destroy();

    /// Opens a page and waits up to 10 seconds for the end of loading. False if that fails or takes longer.
    bool load(const QUrl &url);
    bool loadHtml(const QString &html, const QUrl &baseUrl = QUrl());
    /// Waits for the next end of loading; what it was worth is not asked.
    bool waitForLoad(int milliseconds = 10000);

    /// Runs a script in the page's main frame.
    QVariant evaluate(const QString &script);
    /// The same, with the result as JSON, so that 0, "0" and false differ: "undefined" and "NaN" as they stand, and
    /// "throws TypeError: ..." for an exception.
    QString evaluateToJson(const QString &script);

private:
    std::unique_ptr<QObject> m_engine; // before the plugin's own scripts
    QPointer<CStbApplication> m_application;
};
