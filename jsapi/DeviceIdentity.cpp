// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/DeviceIdentity.h"

#include "common/other/plainfile.h"
#include "platform/stbapi.h"

#include <QNetworkInterface>
#include <QTextStream>

#include <cstdlib>

namespace {

const char versionFile[] = "/home/user/version";
const int versionLength = 32; // characters

QNetworkInterface wiredNetwork()
{
    return QNetworkInterface::interfaceFromName(QLatin1String("eth0"));
}

// Of a text that the platform has handed out; null if it has not.
QString takenText(char *text)
{
    QString taken = QString::fromLatin1(text);
    free(text);
    return taken;
}

} // namespace

QString DeviceIdentity::hardwareAddress()
{
    return wiredNetwork().hardwareAddress().toLower();
}

QString DeviceIdentity::ipAddress()
{
    const QList<QNetworkAddressEntry> entries = wiredNetwork().addressEntries();
    return entries.isEmpty() ? QString::fromLatin1("") : entries.first().ip().toString();
}

QString DeviceIdentity::versionInFile()
{
    const QString path = QLatin1String(versionFile);
    Common::PlainFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString::fromLatin1("");
    return QTextStream(&file).readLine(versionLength);
}

QString DeviceIdentity::model()
{
    char *text = nullptr;
    KVR_GetDeviceModel(&text);
    return takenText(text);
}

QString DeviceIdentity::platformText(TextQuery query, const char *fallback)
{
    char *text = nullptr;
    if (query(&text) != KVR_OK || !text)
        return QString::fromLatin1(fallback);
    return takenText(text);
}
