// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"

#include <string>

namespace Desk {

/// The file of a recording: below the storage root whatever its name tries, and never one that was there before.
class RecordFile
{
public:
    /// What is wrong with a file name. A relative name is one below the storage root; an absolute one
    /// must lie there. It has no more than eight folders.
    static Problem problemOf(const std::string &name);

    /// Whether two names are of one file.
    static bool areSame(const std::string &name, const std::string &other);

    /// Removes a file of this name. No link of the path is followed.
    static void remove(const std::string &name);

    RecordFile() = default;
    RecordFile(const RecordFile &) = delete;
    RecordFile &operator=(const RecordFile &) = delete;
    ~RecordFile();

    /// Creates the file, and folders for it that are missing.
    Problem create(const std::string &name);

    /// Writes all of it, unless there is a problem.
    Problem write(const unsigned char *data, int size);

private:
    int m_file = -1;
};

} // namespace Desk
