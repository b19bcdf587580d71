// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QTime>

class QEvent;

/// Thins out the presses of a key that is held down, as far as the page asks for it.
class KeyDelay
{
public:
    KeyDelay();

    /// The least time in ms between presses of one key; 0 or less lets all through.
    void set(int ms);
    /// Whether the event is a key press that comes too soon after the last one that went through.
    bool swallows(const QEvent *event);

private:
    QTime lastKeyTime; ///< of the last key press that went through
    int lastKey;
    int delay; ///< 0 lets all through
};
