// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/Reboot.h"

#include <QDebug>

#include <cstdlib>

void rebootBox()
{
    // The page is told nothing of this; the log is.
    if (system("reboot") != 0)
        qWarning() << "reboot failed";
}
