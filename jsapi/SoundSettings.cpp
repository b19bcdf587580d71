// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/SoundSettings.h"

#include "common/other/plainfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryFile>

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace {

const char settingsPath[] = "/home/user/config/config_files/qtstbapi.conf";
const char volumeKey[] = "volume/volumeValue";
const char muteKey[] = "volume/mute";

// QSettings makes objects of any type and size of entries with escapes or of this type. Those of this file are numbers.
// False if there is no file.
bool readPlainEntries(QByteArray *entries)
{
    Common::PlainFile file(QString::fromLatin1(settingsPath));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (!line.contains('\\') && !line.contains("@Variant("))
            *entries += line;
    }
    return true;
}

// The toolkit takes settings from its memory while the file's size and time of change are the same, which two writes in
// one tick of the clock leave so. A copy under a new name is read in any case, if there is room for one.
QVariant value(const char *key)
{
    QByteArray entries;
    if (!readPlainEntries(&entries))
        return 0;
    QTemporaryFile copy;
    const bool isCopied = copy.open() && copy.write(entries) == entries.size() && copy.flush();
    const QString path = isCopied ? copy.fileName() : QString::fromLatin1(settingsPath);
    return QSettings(path, QSettings::NativeFormat).value(QLatin1String(key), 0);
}

void bringToDisk(const QByteArray &path)
{
    const int file = open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (file >= 0) {
        fsync(file);
        close(file);
    }
}

// A new file takes the old one's place in one step, so that a kill at any moment leaves the one or the other whole.
void setValue(const char *key, int value)
{
    const QString path = QLatin1String(settingsPath);
    const QString newPath = path + QLatin1String(".new");
    QDir().mkpath(QFileInfo(path).path());
    const QString lockPath = newPath + QLatin1String(".lock");
    QFile::remove(newPath);
    // Left behind by a kill, it would be waited for, if the process that made it had the same number as this one.
    QFile::remove(lockPath);
    if (QFile::exists(lockPath))
        return;
    QByteArray entries;
    readPlainEntries(&entries); // there may be none yet
    Common::PlainFile copy(newPath);
    if (!copy.open(QIODevice::WriteOnly) || copy.write(entries) != entries.size() || !copy.flush())
        return;
    copy.close();
    QSettings(newPath, QSettings::NativeFormat).setValue(QLatin1String(key), value);
    bringToDisk(QFile::encodeName(newPath));
    rename(QFile::encodeName(newPath).constData(), settingsPath);
    bringToDisk(QFile::encodeName(QFileInfo(path).path()));
}

} // namespace

int SoundSettings::volume()
{
    return value(volumeKey).toInt();
}

void SoundSettings::setVolume(int volume)
{
    setValue(volumeKey, volume);
}

int SoundSettings::mute()
{
    return value(muteKey).toBool() ? 1 : 0;
}

void SoundSettings::setMute(int mute)
{
    setValue(muteKey, mute);
}
