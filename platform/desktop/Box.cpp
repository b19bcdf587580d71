// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Box.h"

using namespace Desk;

void Box::finish()
{
    firmware.finish();
    bootParameters.finish();
    events.finish();
}

Box &Desk::box()
{
    // The box itself stays: a KVR_ function may still be called by a destructor that runs later than ours.
    static Box *const instance = new Box;
    static const struct Finisher {
        ~Finisher() { instance->finish(); }
    } finisher;
    return *instance;
}
