// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StbDisplay.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/FailureMap.h"
#include "jsapi/GraphicsLayer.h"
#include "jsapi/PageLog.h"

#include <QVarLengthArray>

#include <cstdlib>
#include <utility>

namespace KavroJS {

StbDisplay *StbDisplay::inst_ = nullptr;

StbDisplay *StbDisplay::instance()
{
    if (!inst_)
        inst_ = new StbDisplay;
    return inst_;
}

void StbDisplay::destroyInstance()
{
    delete inst_;
    inst_ = nullptr;
}

StbDisplay::StbDisplay()
    : logFile(new PageLog(this))
{
}

StbDisplay::~StbDisplay()
{
    logFile->close();
}

int StbDisplay::SetGraphicsViewport(int x, int y, int w, int h)
{
    trace("StbDisplay.SetGraphicsViewport(%1, %2, %3, %4)", x, y, w, h);
    return GraphicsLayer::setViewport(x, y, w, h);
}

QVariant StbDisplay::GetGraphicsViewport()
{
    trace("StbDisplay.GetGraphicsViewport()");
    KVR_Rect viewport;
    if (!GraphicsLayer::viewport(viewport))
        return failureMap(QLatin1String("Invalid Id"), 30);
    QVariantMap answer;
    answer[QLatin1String("status")] = QLatin1String("OK");
    answer[QLatin1String("x")] = viewport.x;
    answer[QLatin1String("y")] = viewport.y;
    answer[QLatin1String("width")] = viewport.width;
    answer[QLatin1String("height")] = viewport.height;
    return answer;
}

int StbDisplay::SetGraphicsVisible(int visible)
{
    trace("StbDisplay.SetGraphicsVisible(%1)", visible);
    return KVR_SetGraphicsVisible(visible);
}

int StbDisplay::IsGraphicsVisible()
{
    trace("StbDisplay.IsGraphicsVisible()");
    return KVR_IsGraphicsVisible();
}

int StbDisplay::SetAlphaLevel(uint alpha)
{
    trace("StbDisplay.SetAlphaLevel(%1)", alpha);
    return KVR_SetGraphicsAlphaLevel(alpha);
}

int StbDisplay::GetAlphaLevel()
{
    trace("StbDisplay.GetAlphaLevel()");
    return KVR_GetGraphicsAlphaLevel();
}

int StbDisplay::SetChromaKey(int color)
{
    trace("StbDisplay.SetChromaKey(%1)", color);
    return GraphicsLayer::setChromaKey(color);
}

int StbDisplay::GetChromaKey()
{
    trace("StbDisplay.GetChromaKey()");
    return GraphicsLayer::chromaKey();
}

int StbDisplay::IsChromaKeyEnable()
{
    trace("StbDisplay.IsChromaKeyEnable()");
    return KVR_IsChromaKeyEnable();
}

int StbDisplay::SetChromaKeyEnable(int enable)
{
    trace("StbDisplay.SetChromaKeyEnable(%1)", enable);
    return KVR_SetChromaKeyEnable(enable);
}

int StbDisplay::SetCurrentRMLayout(int layout)
{
    trace("StbDisplay.SetCurrentRMLayout(%1)", layout);
    return KVR_SetCurrentLayout(layout);
}

int StbDisplay::GetCurrentRMLayout()
{
    trace("StbDisplay.GetCurrentRMLayout()");
    return KVR_GetCurrentLayout();
}

int StbDisplay::SwitchToNextRMLayout()
{
    trace("StbDisplay.SwitchToNextRMLayout()");
    return KVR_SwitchToNextLayout();
}

QVariant StbDisplay::GetOrder()
{
    trace("StbDisplay.GetOrder()");
    int *order = nullptr;
    int count = 0;
    if (KVR_GetOrder(&order, &count) != KVR_OK)
        return failureMap(QLatin1String("get order failed"), 99);
    QVariantList answer;
    for (int i = 0; order && i < count; ++i)
        answer.append(order[i]);
    free(order);
    return answer;
}

int StbDisplay::SetOrder(QVariantList list)
{
    trace("StbDisplay.SetOrder()");
    QVarLengthArray<int> order;
    for (const QVariant &entry : std::as_const(list))
        order.append(entry.toInt());
    KVR_SetOrder(order.constData(), order.size());
    return 0;
}

int StbDisplay::IsOutportsEnabled()
{
    trace("StbDisplay.IsOutportsEnabled()");
    return KVR_IsOutportsEnabled();
}

int StbDisplay::GetHdmiState()
{
    trace("StbDisplay.GetHdmiState()");
    return KVR_GetHdmiState();
}

} // namespace KavroJS
