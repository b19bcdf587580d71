// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StoragePath.h"

const char storageRoot[] = "/mnt/stb";
const char localStorageDirectory[] = "/home/user/config/html5localstorage";

QString storagePath(const QString &path)
{
    const QString root = QLatin1String(storageRoot);
    return path.contains(root) ? path : root + path;
}

QStringList entryNames(const QString &directory, QDir::Filters kind)
{
    return QDir(directory).entryList(kind, QDir::Name);
}
