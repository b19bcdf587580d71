// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "shell/BoxScreen.h"

#include "jsapi/DeviceIdentity.h"
#include "platform/stbapi.h"

QSize BoxScreen::size()
{
    return QSize(1920, 1080);
}

void BoxScreen::takeOver()
{
    KVR_SetCurrentLayout(0);
    KVR_SetChromaKeyEnable(0);
}

void BoxScreen::setResolution(const QSize &size)
{
    KVR_SetResolution(size.width(), size.height());
}

void BoxScreen::giveBack()
{
    KVR_SetGraphicsVisible(0);
    setResolution(size());
    KVR_SetGraphicsAlphaLevel(255);
    const KVR_Rect fullScreen = {0, 0, size().width(), size().height()};
    KVR_SetGraphicsViewport(&fullScreen);
    KVR_SetGraphicsVisible(1);
    KVR_SetChromaKeyEnable(0);
}

bool BoxScreen::needsTranslucentWindow()
{
    return DeviceIdentity::model().contains(QLatin1String("MZ-600"), Qt::CaseInsensitive);
}
