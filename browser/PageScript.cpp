// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageScript.h"

#include <QFile>

QString pageScript(const char *name)
{
    const QString path = QString(QLatin1String(":/page/%1.js")).arg(QLatin1String(name));
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
