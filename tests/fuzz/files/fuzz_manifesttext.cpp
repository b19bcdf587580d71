// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "launcher/ManifestText.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ManifestText manifest(QString::fromUtf8(bytes(data, size)));
    if (!manifest.isValid())
        return 0;
    const QString address = "http://[::1]/?a=\"<'>&b";
    manifest.setAttribute("src", address);
    manifest.setAttribute("desk-page", QString("x"));
    manifest.setAttribute("desk-page", std::nullopt);
    const ManifestText changed(manifest.text());
    require(changed.isValid(), "the changed manifest is well-formed");
    require(changed.attribute("src") == address, "it has the address");
    require(!changed.attribute("desk-page"), "it does not have what was taken away");
    return 0;
}
