// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "platform/desktop/BootParameterStore.h"
#include "platform/desktop/DurableFile.h"
#include "platform/desktop/Log.h"

namespace {

std::string &content()
{
    static std::string text; // of the file
    return text;
}

} // namespace

// In place of the disk and the log.
std::string Desk::readFile(const std::string &)
{
    return content();
}

bool Desk::writeDurably(const std::string &, const std::string &newContent)
{
    content() = newContent;
    return true;
}

void Desk::log(const std::string &) { }

// The file, and after its last line feed a key.
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t end = input.rfind('\n') + 1;
    const std::string key = input.substr(end);
    content() = input.substr(0, end);

    Desk::EventRegistry events;
    Desk::BootParameterStore parameters(events);
    const auto value = parameters.value(key);
    require(parameters.setValue("another key", "=%\n\x01") == KVR_OK, "a parameter can be set over any file");
    require(parameters.sync() == KVR_OK, "and is written");
    Desk::BootParameterStore again(events);
    require(again.value("another key") == "=%\n\x01", "and read");
    require(again.value(key) == value || key == "another key", "the others stay as they are");
    return 0;
}
