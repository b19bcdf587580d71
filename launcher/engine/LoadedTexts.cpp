// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LoadedTexts.h"

#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace {

// Empty for what is none of the three.
QString kindOf(const QByteArray &contentType, const QUrl &url)
{
    const QByteArray type = contentType.toLower();
    const QString suffix = QFileInfo(url.path()).suffix().toLower();
    if (type.contains("javascript") || type.contains("ecmascript"))
        return "script";
    if (type.startsWith("text/css"))
        return "style";
    if (type.startsWith("text/html") || type.startsWith("application/xhtml"))
        return "page";
    // The engine takes scripts of any type, and files have none.
    if (suffix == "js")
        return "script";
    const bool isUntyped = type.isEmpty() || type.startsWith("text/plain");
    if (isUntyped && suffix == "css")
        return "style";
    return isUntyped && (suffix == "html" || suffix == "htm") ? "page" : QString();
}

} // namespace

LoadedTexts::LoadedTexts(QNetworkAccessManager *manager)
{
    manager->setCache(this);
    connect(manager, &QNetworkAccessManager::finished, this, &LoadedTexts::takeFile);
}

// Files and data are loaded without a cache.
void LoadedTexts::takeFile(const QNetworkReply *reply)
{
    const QUrl url = reply->url();
    const QString kind = kindOf({}, url);
    if (!url.isLocalFile() || kind.isEmpty())
        return;
    QFile file(url.toLocalFile());
    if (file.open(QIODevice::ReadOnly))
        emit loaded(url.toString(), kind, file.readAll());
}

QIODevice *LoadedTexts::prepare(const QNetworkCacheMetaData &metaData)
{
    QByteArray contentType;
    const QNetworkCacheMetaData::RawHeaderList headers = metaData.rawHeaders();
    for (const QNetworkCacheMetaData::RawHeader &header : headers) {
        if (header.first.toLower() == "content-type")
            contentType = header.second;
    }
    const QString kind = kindOf(contentType, metaData.url());
    if (kind.isEmpty())
        return nullptr;
    QBuffer *device = new QBuffer(this);
    device->open(QIODevice::ReadWrite);
    m_open[device] = {metaData.url().toString(), kind};
    return device;
}

void LoadedTexts::insert(QIODevice *device)
{
    const Text text = m_open.take(device);
    if (!text.kind.isEmpty())
        emit loaded(text.address, text.kind, static_cast<QBuffer *>(device)->data());
    device->deleteLater();
}

// A load was broken off, or has another end than it began with.
bool LoadedTexts::remove(const QUrl &url)
{
    const QList<QIODevice *> devices = m_open.keys();
    for (QIODevice *device : devices) {
        if (m_open[device].address == url.toString()) {
            m_open.remove(device);
            device->deleteLater();
            return true;
        }
    }
    return false;
}

QNetworkCacheMetaData LoadedTexts::metaData(const QUrl &)
{
    return {};
}

void LoadedTexts::updateMetaData(const QNetworkCacheMetaData &) { }

QIODevice *LoadedTexts::data(const QUrl &)
{
    return nullptr;
}

qint64 LoadedTexts::cacheSize() const
{
    return 0;
}

void LoadedTexts::clear() { }
