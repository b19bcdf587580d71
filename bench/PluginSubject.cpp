// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PluginSubject.h"

#include <QWebFrame>
#include <QWebView>

void PluginSubject::start(const QUrl &page)
{
    PluginManifest manifest;
    manifest.homePage = page.toString();
    HostedPlugin::writeManifest(manifest);
    m_plugin.application()->resize(1920, 1080);
    m_plugin.application()->show();
    m_plugin.application()->setFullPath(HostedPlugin::pluginDirectory());
}

QWebView *PluginSubject::view() const
{
    return m_plugin.browser();
}

void PluginSubject::connectEvents()
{
    const int player = view()->page()->mainFrame()->evaluateJavaScript("StbMedia.CreatePlayer()").toInt();
    m_handler = KVR_GetEventHandler(player, KVR_EVENT_STATE);
}

// What a platform's thread does.
void PluginSubject::fire(int argument)
{
    m_handler(argument);
}
