// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "config/SystemSettings.h"

#include <QBuffer>

#include <iostream>

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::cerr.rdbuf(nullptr); // what is wrong with the input
    QByteArray input = bytes(data, size);
    for (const char *key : {"language", "gui_mode"}) {
        QBuffer buffer(&input);
        buffer.open(QIODevice::ReadOnly);
        Common::CSettingsParser parser;
        const QString value = parser.parse(&buffer, "system", key);
        require(!parser.hasError() || value.isNull(), "malformed settings have no values");
        parser.errorString();
    }
    return 0;
}
