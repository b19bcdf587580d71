// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/KeyDelay.h"

#include <QKeyEvent>

KeyDelay::KeyDelay()
    : lastKeyTime(QTime::currentTime())
    , lastKey(0)
    , delay(0)
{
}

void KeyDelay::set(int ms)
{
    delay = qMax(ms, 0);
}

bool KeyDelay::swallows(const QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<const QKeyEvent *>(event)->key();
    const QTime now = QTime::currentTime();
    // The delay counts from the last press that went through. Across midnight the difference is negative: too soon.
    if (lastKeyTime.msecsTo(now) < delay && key == lastKey && delay > 0)
        return true;
    lastKeyTime = now;
    lastKey = key;
    return false;
}
