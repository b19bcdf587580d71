// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "ApiCall.h"
#include "Box.h"

namespace Desk {

/// The body of a KVR_ function about one player: runs call with the player, or gives unknown when there is none.
template <typename Call, typename Result = int>
Result withPlayer(const char *function, KVR_ID id, Call call, Result unknown = KVR_ERR_INVALID_ID)
{
    return apiCall(
        function,
        [&]() -> Result {
            const std::shared_ptr<Player> player = box().players.find(id);
            return player ? call(*player) : unknown;
        },
        static_cast<Result>(KVR_ERR_FAILED));
}

} // namespace Desk
