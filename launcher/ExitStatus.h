// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

/// How kavro-box ends. A status above 128 is that of a box that was killed by a signal.
namespace ExitStatus {

enum {
    Done = 0,   ///< left by F1, by the page, by --exit-after or on request
    Failed = 1, ///< something that was asked for could not be done, such as writing the screenshot
    WrongUsage = 2,
    NoPlugin = 3, ///< the plugin cannot be loaded
    BoxInUse = 4, ///< the box directory belongs to a desk box that is running
    NoBox = 5     ///< the box directory cannot be used, or there can be no box on this PC
};

} // namespace ExitStatus
