// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <QByteArray>

#include <functional>
#include <vector>

/// A function of the platform, with arguments that it takes.
struct KvrFunction
{
    /// What the first argument names; nothing for a function of the box.
    enum Subject { Box, Player, Recording };
    /// Calls the function about what has that identifier, and gives the result as text.
    using Call = std::function<QByteArray(KVR_ID id)>;

    QByteArray name;
    Subject subject;
    Call call;
    std::vector<Call> nullCalls; ///< with a null pointer for each of the pointers in turn
    QByteArray unknown = QByteArray::number(KVR_ERR_INVALID_ID); ///< the result when nothing has that identifier
};

/// All functions of stbapi.h, in an order in which all find what they are about.
const std::vector<KvrFunction> &kvrFunctions();

/// Whether the latest of these calls stored nothing through any pointer.
bool kvrOutputsAreUntouched();
