// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/bridge/EventNotifier.h"

EventNotifier *EventNotifier::_inst = nullptr;

EventNotifier *EventNotifier::instance()
{
    if (!_inst)
        _inst = new EventNotifier;
    return _inst;
}

int EventNotifier::notifyEvent(int argument, int code)
{
    emit eventOccured(argument, code);
    return 0;
}
