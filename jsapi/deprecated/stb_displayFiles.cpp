// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The slots of stb_display for the page's log and the files on the box's storage.

#include "jsapi/deprecated/stb_display.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/PageLog.h"
#include "jsapi/StoragePath.h"
#include "jsapi/deprecated/JsonText.h"

namespace {

QString listing(const QString &dir, QDir::Filters kind)
{
    QString entries;
    const QStringList names = entryNames(QLatin1String(storageRoot) + dir, kind);
    for (const QString &name : names)
        entries += filled("\"%1\",\n", name);
    return JsonText::list(entries);
}

} // namespace

namespace KavroJSDeprecated {

// Unlike the current object's, these lists may lie outside the storage root, and no separator follows the root.

QString stb_display::ListFiles(QString dir)
{
    trace("stb_display.ListFiles(%1)", dir);
    return listing(dir, QDir::Files);
}

QString stb_display::ListDirs(QString dir)
{
    trace("stb_display.ListDirs(%1)", dir);
    return listing(dir, QDir::Dirs);
}

int stb_display::debug(QString debug)
{
    trace("stb_display.debug(%1)", debug);
    PageLog::print(debug);
    return 0;
}

int stb_display::log(QString log)
{
    trace("stb_display.log(%1)", log);
    logFile->append(log);
    return 0;
}

} // namespace KavroJSDeprecated
