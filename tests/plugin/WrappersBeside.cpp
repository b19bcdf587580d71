// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "WrappersBeside.h"

#include "tests/support/HostedPlugin.h"

#include "jsapi/StbDisplay.h"
#include "jsapi/StbMedia.h"
#include "jsapi/StbPVR.h"
#include "jsapi/deprecated/stb_display.h"
#include "jsapi/deprecated/stb_media.h"

#include <QWebFrame>
#include <QWebPage>
#include <QWebView>

WrappersBeside::WrappersBeside() = default;

WrappersBeside::~WrappersBeside()
{
    KavroJS::StbMedia::destroyInstance();
    KavroJS::StbDisplay::destroyInstance();
    KavroJS::StbPVR::destroyInstance();
}

// The engine keeps an object's wrapper, with what a page has done to it, as long as the object lives.
void WrappersBeside::renew()
{
    KavroJS::StbMedia::destroyInstance();
    KavroJS::StbDisplay::destroyInstance();
    KavroJS::StbPVR::destroyInstance();
    m_deprecatedMedia = std::make_unique<KavroJSDeprecated::stb_media>();
    m_deprecatedDisplay = std::make_unique<KavroJSDeprecated::stb_display>();
}

bool WrappersBeside::load(HostedPlugin *plugin, const QString &html)
{
    renew();
    if (!plugin->loadHtml(html))
        return false;
    QWebFrame *frame = plugin->browser()->page()->mainFrame();
    frame->addToJavaScriptWindowObject(nameBeside("StbMedia"), KavroJS::StbMedia::instance());
    frame->addToJavaScriptWindowObject(nameBeside("StbDisplay"), KavroJS::StbDisplay::instance());
    frame->addToJavaScriptWindowObject(nameBeside("StbPVR"), KavroJS::StbPVR::instance());
    frame->addToJavaScriptWindowObject(nameBeside("stb_media"), m_deprecatedMedia.get());
    frame->addToJavaScriptWindowObject(nameBeside("stb_display"), m_deprecatedDisplay.get());
    return true;
}
