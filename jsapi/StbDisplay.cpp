// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StbDisplay.h"

KavroJS::StbDisplay *KavroJS::StbDisplay::inst_ = 0;

KavroJS::StbDisplay *KavroJS::StbDisplay::instance()
{
    if (!inst_)
        inst_ = new StbDisplay;
    return inst_;
}

void KavroJS::StbDisplay::destroyInstance()
{
    delete inst_;
    inst_ = 0;
}
