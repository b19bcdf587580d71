// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "browser/bridge/JsApiTracer.h"

#include <QBuffer>

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    dropMessages();
    QByteArray input = bytes(data, size);
    QBuffer file(&input);
    file.open(QIODevice::ReadOnly);
    JsApiTracer::debug_level = -1;
    JsApiTracer::readLevel(file);
    require(JsApiTracer::isEnabled() == (JsApiTracer::debug_level > 0), "a level above 0 switches the trace on");
    trace("%1 %2 %9 %", QString::fromUtf8(input), JsApiTracer::debug_level);
    return 0;
}
