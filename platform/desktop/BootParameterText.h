// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <string>
#include <vector>

namespace Desk {

using BootParameterValues = std::map<std::string, std::string>;

/// The file of the boot parameters, with one "key=value" a line.
std::string bootParameterText(const BootParameterValues &values);

/// What the file says. Lines that are none of a parameter go to ignored.
BootParameterValues readBootParameterText(const std::string &text, std::vector<std::string> *ignored);

} // namespace Desk
