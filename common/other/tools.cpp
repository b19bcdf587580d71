// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "common/other/tools.h"

#include <iostream>

namespace {

// Tools on the box look for this path, so it is not the compiler's idea of where this file lies.
const char sourcePath[] = "../common/other/tools.cpp";

} // namespace

std::ostream &operator<<(std::ostream &stream, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    return stream.write(utf8.constData(), utf8.size());
}

void Common::writeError(const char *signature, const QString &message)
{
    std::cerr << sourcePath << ": \033[0;31m-E-\033[0m " << signature << " Error: " << message << std::endl;
}
