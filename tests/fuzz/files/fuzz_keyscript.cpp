// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "launcher/KeyScript.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QString error;
    const auto steps = KeyScript::parse(QString::fromUtf8(bytes(data, size)), &error);
    require(steps.has_value() == error.isEmpty(), "what is no list of keys is told");
    if (!steps)
        return 0;
    for (const KeyScript::Step &step : *steps)
        require(step.pause >= 0 && step.pause < 10000000, "pauses are of a sensible length");
    return 0;
}
