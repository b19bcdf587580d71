// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/BootParameters.h"

#include "browser/bridge/EventNotifier.h"
#include "config/PluginConfigParser.h"
#include "jsapi/PlatformRecords.h"
#include "platform/stbapi.h"

#include <QRegExp>
#include <QStringList>

namespace {

const char resolutionKey[] = "dfbres";
const char *const platformKeys[] = {"hdmi_config", "buf_time_udp", "buf_time_http", "buf_time_hls"};

bool isPlatformKey(const QString &key)
{
    for (const char *platformKey : platformKeys) {
        if (key == QLatin1String(platformKey))
            return true;
    }
    return false;
}

} // namespace

bool BootParameters::isResolution(const QString &key)
{
    return key == QLatin1String(resolutionKey);
}

QString BootParameters::value(const QString &key)
{
    if (isResolution(key)) {
        const QSize size = PluginConfigParser::instance()->currentResolution();
        return QString::fromLatin1("%1x%2").arg(size.width()).arg(size.height());
    }
    // Not every box writes the buffer for a key that it does not know. It is then what was in it before: never cleared,
    // and never anything but what a box has written.
    static char buffer[256];
    KVR_GetBootParamValue(key.toUtf8().constData(), buffer);
    return PlatformRecords::fieldText(buffer, sizeof buffer);
}

bool BootParameters::setResolution(const QString &text)
{
    PluginConfigParser *manifest = PluginConfigParser::instance();
    if (manifest->systemwideResolution)
        return false;
    if (!QRegExp(QLatin1String("[0-9]+x[0-9]+")).exactMatch(text))
        return false;
    const QStringList numbers = text.split(QLatin1Char('x'));
    bool ok;
    // A width that is too large counts as 0; only the height is refused.
    const QSize size(numbers[0].toInt(), numbers[1].toInt(&ok));
    if (!ok)
        return false;
    manifest->setResolution(size);
    manifest->save();
    EventNotifier::instance()->notifyEvent(KVR_BOX, KVR_EVENT_SYNC_DONE);
    return true;
}

bool BootParameters::setPlatformValue(const QString &key, const QString &value)
{
    return isPlatformKey(key) && KVR_SetBootParamValue(key.toUtf8().constData(), value.toUtf8().constData()) >= 0;
}
