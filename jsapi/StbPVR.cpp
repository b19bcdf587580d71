// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StbPVR.h"

KavroJS::StbPVR *KavroJS::StbPVR::_inst = 0;

KavroJS::StbPVR *KavroJS::StbPVR::instance()
{
    if (!_inst)
        _inst = new StbPVR;
    return _inst;
}

void KavroJS::StbPVR::destroyInstance()
{
    delete _inst;
    _inst = 0;
}
