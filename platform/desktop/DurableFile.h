// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Desk {

/// Replaces a file's content so that a kill or a power loss at any moment leaves the old or the new content. Creates
/// the missing folders of the path. On failure it logs why, returns false, and the old file is as it was.
bool writeDurably(const std::string &path, const std::string &content);

/// The same for a kill alone, without waiting for the disk: see makeDurable().
bool replaceFile(const std::string &path, const std::string &content);

/// Has a file that was replaced outlast a power loss too.
bool makeDurable(const std::string &path);

/// Brings a file that lies complete under a temporary name of the same folder to its final name, durably.
bool renameDurably(const std::string &from, const std::string &to);

/// Creates the missing folders of a file's path. Logs and returns false when it cannot.
bool makeFolderOf(const std::string &path);

/// The content of a text of the box; an empty text when there is none. Anything else that is in its place is logged.
std::string readFile(const std::string &path);

} // namespace Desk
