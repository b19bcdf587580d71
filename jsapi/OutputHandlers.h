// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

namespace KavroJS {

/// Takes the events of the box's outputs over from the launcher, and gives them back in the end.
class OutputHandlers
{
public:
    OutputHandlers();
    ~OutputHandlers();

private:
    // What was registered before; null if nothing was.
    KVR_EventHandler savedSyncHandler;
    KVR_EventHandler savedOutputPortHandler;
    KVR_EventHandler savedHdmiHandler;
};

} // namespace KavroJS
