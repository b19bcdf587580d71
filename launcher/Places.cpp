// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Places.h"

#include "platform/desktop/DeskBox.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

// All of them lie at the same places relative to each other in a build tree and installed.
QString installed(const char *path)
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../" + path);
}

} // namespace

QString Places::inBox()
{
    return installed("libexec/kavro/in-box");
}

QString Places::plugin()
{
    return installed("lib/kavro/libkavrostbbrowser.so");
}

QString Places::portal()
{
    return installed("share/kavro/portal");
}

QString Places::programInside()
{
    return "/box/app/bin/" + QFileInfo(QCoreApplication::applicationFilePath()).fileName();
}

bool Places::isInside()
{
    return QFile::exists(DeskBox::sign);
}
