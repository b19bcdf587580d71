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
#include <map>

namespace {

const char settingsPath[] = "/home/user/config/config_files/qtstbapi.conf";
const char soundSection[] = "volume";
const char volumeKey[] = "volumeValue";
const char muteKey[] = "mute";

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
    const QString name = QString::fromLatin1(soundSection) + QLatin1Char('/') + QLatin1String(key);
    return QSettings(path, QSettings::NativeFormat).value(name, 0);
}

// By section and key, in the order in which the toolkit writes them; the values as they stand in the file.
using Entries = std::map<QByteArray, std::map<QByteArray, QByteArray>>;

Entries fileEntries()
{
    QByteArray text;
    readPlainEntries(&text); // there may be none yet
    Entries entries;
    QByteArray section = "General"; // as the toolkit calls what stands in none
    const QList<QByteArray> lines = text.replace('\r', '\n').split('\n');
    for (const QByteArray &wholeLine : lines) {
        const QByteArray line = wholeLine.trimmed();
        const int sign = line.indexOf('=');
        const int bracket = line.indexOf(']');
        // A quotation mark that is not closed would take the next lines with it.
        if (line.startsWith(';') || line.count('"') % 2 != 0)
            continue;
        if (line.startsWith('['))
            section = line.mid(1, bracket < 0 ? -1 : bracket - 1).trimmed();
        else if (sign > 0)
            entries[section][line.left(sign).trimmed()] = line.mid(sign + 1).trimmed();
    }
    return entries;
}

bool write(const QString &path, const Entries &entries)
{
    QByteArray text;
    for (const auto &[section, values] : entries) {
        text += QByteArray(text.isEmpty() ? "[" : "\n[") + section + QByteArray("]\n");
        for (const auto &[key, value] : values)
            text += key + '=' + value + '\n';
    }
    Common::PlainFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

// A new file takes the old one's place in one step, so that a kill at any moment leaves the one or the other whole. The
// toolkit's own way would wait for the disk, and the page with it.
void setValue(const char *key, int value)
{
    const QString path = QLatin1String(settingsPath);
    const QString newPath = path + QLatin1String(".new");
    QDir().mkpath(QFileInfo(path).path());
    QFile::remove(newPath);
    Entries entries = fileEntries();
    entries[soundSection][key] = QByteArray::number(value);
    if (!write(newPath, entries) || rename(QFile::encodeName(newPath).constData(), settingsPath) != 0)
        QFile::remove(newPath);
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
