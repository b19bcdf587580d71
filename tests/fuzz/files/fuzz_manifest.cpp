// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzInput.h"

#include "config/PluginConfigParser.h"

#include <QCoreApplication>
#include <QTemporaryDir>

// The plugin's manifest and, behind a NUL, the user's one over it.
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    dropMessages();
    static int argc = 1;
    static char name[] = "/box/fuzz";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static const QString plugin = "/tmp/fuzzed";
    static const QString user = "/home/user/config/plugins/tmp/fuzzed";
    static const bool made = QDir().mkpath(plugin) && QDir().mkpath(user);
    require(made, "the directories can be made; run this in a box");

    const QByteArray input = bytes(data, size);
    const int end = input.indexOf('\0');
    writeFile(plugin + "/PluginManifest.xml", input.left(end));
    if (end >= 0)
        writeFile(user + "/PluginManifest.xml", input.mid(end + 1));
    else
        QFile::remove(user + "/PluginManifest.xml");

    PluginConfigParser manifest{QDir(plugin)};
    const QSize resolution = manifest.currentResolution();
    require(manifest.systemwideResolution || resolution == manifest.resolution, "the resolution is the manifest's");
    return 0;
}
