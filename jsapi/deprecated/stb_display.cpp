// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/deprecated/stb_display.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/GraphicsLayer.h"
#include "jsapi/PageLog.h"
#include "jsapi/deprecated/JsonText.h"
#include "platform/stbapi.h"

namespace KavroJSDeprecated {

stb_display::stb_display()
    : logFile(new PageLog(this))
{
}

stb_display::~stb_display()
{
    logFile->close();
}

int stb_display::setGraphicsViewport(int x, int y, int w, int h)
{
    trace("stb_display.setGraphicsViewport(%1, %2, %3, %4)", x, y, w, h);
    return GraphicsLayer::setViewport(x, y, w, h);
}

QString stb_display::getGraphicsViewport()
{
    trace("stb_display.getGraphicsViewport()");
    KVR_Rect viewport;
    if (!GraphicsLayer::viewport(viewport))
        return QLatin1String("{\"errordescr\":\"Invalid Id\"}");
    return JsonText::rectangle(viewport);
}

int stb_display::setGraphicsVisible(int visible)
{
    trace("stb_display.setGraphicsVisible(%1)", visible);
    return KVR_SetGraphicsVisible(visible);
}

int stb_display::isGraphicsVisible()
{
    trace("stb_display.isGraphicsVisible()");
    return KVR_IsGraphicsVisible();
}

int stb_display::setAlphaLevel(uint alpha)
{
    trace("stb_display.setAlphaLevel(%1)", alpha);
    return KVR_SetGraphicsAlphaLevel(alpha);
}

int stb_display::getAlphaLevel()
{
    trace("stb_display.getAlphaLevel()");
    return KVR_GetGraphicsAlphaLevel();
}

int stb_display::setChromaKey(int color)
{
    trace("stb_display.setChromaKey(%1)", color);
    return GraphicsLayer::setChromaKey(color);
}

int stb_display::getChromaKey()
{
    trace("stb_display.getChromaKey()");
    return GraphicsLayer::chromaKey();
}

int stb_display::isChromaKeyEnable()
{
    trace("stb_display.isChromaKeyEnable()");
    return KVR_IsChromaKeyEnable();
}

int stb_display::setChromaKeyEnable(int enable)
{
    trace("stb_display.setChromaKeyEnable(%1)", enable);
    return KVR_SetChromaKeyEnable(enable);
}

int stb_display::setCurrentRMLayout(int layout)
{
    trace("stb_display.setCurrentRMLayout(%1)", layout);
    return KVR_SetCurrentLayout(layout);
}

int stb_display::getCurrentRMLayout()
{
    trace("stb_display.getCurrentRMLayout()");
    return KVR_GetCurrentLayout();
}

int stb_display::switchToNextRMLayout()
{
    trace("stb_display.switchToNextRMLayout()");
    return KVR_SwitchToNextLayout();
}

int stb_display::IsOutportsEnabled()
{
    trace("stb_display.IsOutportsEnabled()");
    return KVR_IsOutportsEnabled();
}

int stb_display::setMediaStatus()
{
    trace("stb_display.setMediaStatus()");
    return 0;
}

} // namespace KavroJSDeprecated
