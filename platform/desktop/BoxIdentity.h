// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <mutex>
#include <optional>
#include <string>

namespace Desk {

/// Who the box says it is.
class BoxIdentity
{
public:
    std::string model() const;
    void setModel(const std::string &model);

    /// The version of this system.
    static std::string firmwareVersion();

    /// Made up at first use and kept in the box's files. Empty, until the process ends, when it cannot be kept.
    std::string serialNumber();

private:
    mutable std::mutex m_mutex;
    std::string m_model = "MZ-600 desk";
    std::optional<std::string> m_serialNumber; // what came of the first use
};

} // namespace Desk
