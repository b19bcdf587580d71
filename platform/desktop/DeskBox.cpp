// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBox.h"
#include "Box.h"

#include <utility>

using Desk::box;

DeskBox::GraphicsLayer DeskBox::graphicsLayer()
{
    return box().graphics.layer();
}

std::vector<DeskBox::PlayerWindow> DeskBox::playerWindows()
{
    return box().players.windows();
}

void DeskBox::setScreenHandler(std::function<void()> handler)
{
    box().screen.setHandler(std::move(handler));
}

void DeskBox::setDeviceModel(const std::string &model)
{
    box().identity.setModel(model);
}

void DeskBox::setHdmiState(KVR_HdmiState state)
{
    box().outputs.setHdmiState(state);
}

void DeskBox::setOutputsEnabled(bool enabled)
{
    box().outputs.setEnabled(enabled);
}

void DeskBox::injectEvent(KVR_ID id, int type, int argument)
{
    box().events.send(id, type, argument);
}
