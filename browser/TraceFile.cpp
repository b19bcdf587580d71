// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/TraceFile.h"

#include "browser/bridge/JsApiTracer.h"
#include "common/other/plainfile.h"

#include <QFileSystemWatcher>
#include <QStringList>

namespace {

const char directory[] = "/etc";
const char fileName[] = "/etc/stbjsapi_debug";

} // namespace

TraceFile::TraceFile(QObject *owner)
    : watcher(new QFileSystemWatcher(owner))
{
    watcher->addPath(QLatin1String(directory));
    watcher->addPath(QLatin1String(fileName));
    QObject::connect(watcher, SIGNAL(fileChanged(QString)), owner, SLOT(checkDebugFile()));
    QObject::connect(watcher, SIGNAL(directoryChanged(QString)), owner, SLOT(checkDebugFile()));
    check();
}

void TraceFile::check()
{
    int &level = JsApiTracer::debug_level;
    const QString path = QLatin1String(fileName);
    if (!QFile::exists(path)) {
        // A negative level stays, as it always has.
        if (level >= 0)
            level = -1;
        return;
    }
    // A file that did not exist when the watcher was set up is not watched yet.
    if (level == -1 && !watcher->files().contains(path))
        watcher->addPath(path);

    Common::PlainFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    JsApiTracer::readLevel(file);
}
