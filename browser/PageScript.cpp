// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageScript.h"

#include <QFile>

QString pageScript(const char *name)
{
    QFile file(QLatin1String(":/kavrostbbrowser/page/") + QLatin1String(name) + QLatin1String(".js"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll().constData()) : QString();
}
