// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StbMedia.h"

KavroJS::StbMedia *KavroJS::StbMedia::inst_ = 0;

KavroJS::StbMedia *KavroJS::StbMedia::instance()
{
    if (!inst_)
        inst_ = new StbMedia;
    return inst_;
}

void KavroJS::StbMedia::destroyInstance()
{
    delete inst_;
    inst_ = 0;
}

void KavroJS::StbMedia::setLastEvent(int, int) { }
