// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "BootParameterStore.h"
#include "BoxIdentity.h"
#include "BufferTimes.h"
#include "EventRegistry.h"
#include "Firmware.h"
#include "GraphicsState.h"
#include "Outputs.h"
#include "PlayerTable.h"
#include "Recordings.h"
#include "ScreenNotifier.h"

namespace Desk {

/// The state of the desk box: what the KVR_ functions and the DeskBox functions work on.
struct Box
{
    Box();

    EventRegistry events;
    ScreenNotifier screen;
    GraphicsState graphics{screen};
    Outputs outputs{events};
    PlayerTable players{events, screen, graphics};
    BoxIdentity identity;
    BootParameterStore bootParameters{events};
    BufferTimeParameters bufferTimes{bootParameters};
    Firmware firmware;
    Recordings records{events};

    /// Ends what goes on in the background, when the process ends.
    void finish();
};

/// The only box of the process.
Box &box();

} // namespace Desk
