// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Log.h"
#include "platform/stbapi.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

namespace Desk {

/// Runs the body of a KVR_ function: no exception crosses the C interface, it becomes a line in the log and failure.
template <typename Body, typename Result = int>
Result apiCall(const char *function, Body body, Result failure = KVR_ERR_FAILED)
{
    try {
        return body();
    } catch (const std::exception &exception) {
        log(std::string(function) + " failed: " + exception.what());
        return failure;
    }
}

/// A text for the caller, who releases it with free. Null when there is no memory.
inline char *newText(const std::string &text)
{
    return ::strdup(text.c_str());
}

/// An array for the caller, who releases it with free; null when it would be empty.
template <typename Item>
int newArray(const std::vector<Item> &items, Item **array, int *count)
{
    Item *copy = nullptr;
    if (!items.empty()) {
        copy = static_cast<Item *>(std::malloc(items.size() * sizeof(Item)));
        if (!copy)
            return KVR_ERR_FAILED;
        std::copy(items.begin(), items.end(), copy);
    }
    *array = copy;
    *count = static_cast<int>(items.size());
    return KVR_OK;
}

} // namespace Desk
