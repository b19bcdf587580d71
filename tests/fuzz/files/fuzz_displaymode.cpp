// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "config/DirectfbrcParser.h"

// In place of the system's: the disk need not be busy for each input.
extern "C" void sync() noexcept { }

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QString name = "/tmp/directfbrc";
    writeFile(name, bytes(data, size));
    bool hasMode = false;
    {
        DirectfbrcParser parser(name);
        hasMode = parser.mode().isValid();
        parser.setMode({1280, 720});
        parser.write();
    }
    DirectfbrcParser changed(name);
    require(changed.mode() == (hasMode ? QSize(1280, 720) : QSize()), "a mode is kept where there was one");
    changed.write();
    require(DirectfbrcParser(name).mode() == changed.mode(), "lines stay as they are");
    return 0;
}
