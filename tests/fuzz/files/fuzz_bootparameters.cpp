// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "platform/desktop/BootParameterText.h"

// The file, and after its last line feed a value.
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t end = input.rfind('\n') + 1;

    std::vector<std::string> ignored;
    Desk::BootParameterValues values = Desk::readBootParameterText(input.substr(0, end), &ignored);
    values["another key"] = input.substr(end);
    values["=%\n\x01"] = "=%\n\x01";
    std::vector<std::string> ignoredAgain;
    require(Desk::readBootParameterText(Desk::bootParameterText(values), &ignoredAgain) == values,
            "what is written is read again");
    require(ignoredAgain.empty(), "and nothing but parameters is written");
    return 0;
}
