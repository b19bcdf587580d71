// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "PlayerPicture.h"

#include <QTest>

/// Whether a player stays where it is for a while.
inline bool holds(KVR_ID id)
{
    const long long position = KVR_GetPosition(id);
    QTest::qWait(200);
    return KVR_GetPosition(id) == position;
}

/// Whether a player comes to play: in that state, with a picture, and moving on.
inline bool comesToPlay(KVR_ID id)
{
    constexpr int patience = 12000; // milliseconds, for what has to buffer first
    constexpr int progress = 300;   // milliseconds of the stream
    const auto plays = [id] { return KVR_GetPlayerState(id) == KVR_PLAYER_PLAYING && !playerPicture(id).isNull(); };
    if (!QTest::qWaitFor(plays, patience))
        return false;
    const long long begin = KVR_GetPosition(id);
    return QTest::qWaitFor([=] { return KVR_GetPosition(id) > begin + progress; }, patience);
}
