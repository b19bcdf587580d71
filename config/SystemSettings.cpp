// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "config/SystemSettings.h"

#include "common/other/plainfile.h"
#include "common/other/tools.h"

namespace {

const char settingsPath[] = "/etc/settings.xml";
const char systemSection[] = "system";

} // namespace

QString Common::CSettingsParser::parse(QIODevice *device, const QString &section, const QString &key)
{
    setDevice(device);
    if (!readNextStartElement() || name() != QLatin1String("settings")
        || attributes().value(QLatin1String("version")) != QLatin1String("0.1")) {
        writeError("QString Common::CSettingsParser::parse(QIODevice*, const QString&, const QString&)",
                   QLatin1String("Not a settings file or version is not 0.1"));
        return QString();
    }
    if (!goToChild(section) || !goToChild(key))
        return QString();
    const QString value = readElementText(SkipChildElements);
    return hasError() ? QString() : value;
}

bool Common::CSettingsParser::goToChild(const QString &name)
{
    while (readNextStartElement()) {
        if (this->name() == name)
            return true;
        skipCurrentElement();
    }
    return false;
}

QString Common::CSettingsParser::errorString() const
{
    return QString::fromLatin1("%1\nLine %2, column %3")
        .arg(QXmlStreamReader::errorString(), QString::number(lineNumber()), QString::number(columnNumber()));
}

QString Common::settingsValue(const QString &section, const QString &key)
{
    const QString path = QLatin1String(settingsPath);
    PlainFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        writeError("QString Common::settingsValue(const QString&, const QString&)",
                   QString::fromLatin1("Can't open %1 %2").arg(path, file.errorString()));
        return QString();
    }
    return CSettingsParser().parse(&file, section, key);
}

QLocale::Language Common::getCurrentLanguage()
{
    return settingsValue(QLatin1String(systemSection), QLatin1String("language")) == QLatin1String("rus")
        ? QLocale::Russian
        : QLocale::English;
}

int Common::getDisplayMode()
{
    return settingsValue(QLatin1String(systemSection), QLatin1String("gui_mode")) == QLatin1String("SD") ? 1440 : 1920;
}
