// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The slots of StbDisplay for the page's log, the files on the box's storage, and the operator's scripts.

#include "jsapi/StbDisplay.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/BoxCommand.h"
#include "jsapi/FailureMap.h"
#include "jsapi/PageLog.h"
#include "jsapi/StoragePath.h"

namespace {

QVariant listing(const QString &dir, QDir::Filters kind)
{
    const QString root = QLatin1String(storageRoot);
    const QString path = QDir(root + QLatin1Char('/') + dir).absolutePath();
    // A comparison of texts, as portals have come to rely on: a neighbour such as /mnt/stbx passes.
    if (!path.startsWith(root))
        return failureMap(dir + QLatin1String("No such directory"), QLatin1String("45"));
    return QVariant(entryNames(path, kind)).toList();
}

} // namespace

namespace KavroJS {

QVariant StbDisplay::ListFiles(QString dir)
{
    trace("StbDisplay.ListFiles(%1)", dir);
    return listing(dir, QDir::Files);
}

QVariant StbDisplay::ListDirs(QString dir)
{
    trace("StbDisplay.ListDirs(%1)", dir);
    return listing(dir, QDir::Dirs);
}

QVariant StbDisplay::ExecBlocking(QString cmd, QString args)
{
    trace("StbDisplay.ExecBlocking(%1, %2)", cmd, args);
    return BoxCommand::runScript(cmd, args);
}

int StbDisplay::Debug(QString Debug)
{
    trace("StbDisplay.Debug(%1)", Debug);
    PageLog::print(Debug);
    return 0;
}

int StbDisplay::Log(QString Log)
{
    trace("StbDisplay.Log(%1)", Log);
    logFile->append(Log);
    return 0;
}

} // namespace KavroJS
