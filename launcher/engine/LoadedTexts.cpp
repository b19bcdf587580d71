// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LoadedTexts.h"

#include <QBuffer>
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

// Takes all that is written, and keeps what is worth to be looked at.
class TextBuffer : public QBuffer
{
public:
    using QBuffer::QBuffer;

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        const qint64 room = LoadedTexts::largestText + 1 - this->size();
        if (room > 0)
            QBuffer::writeData(data, qMin(size, room));
        return size;
    }
};

} // namespace

LoadedTexts::LoadedTexts(QNetworkAccessManager *manager)
    : m_manager(manager)
{
    manager->setCache(this);
    connect(manager, &QNetworkAccessManager::finished, this, &LoadedTexts::endLoad);
}

void LoadedTexts::endLoad(const QNetworkReply *reply)
{
    takeFile(reply->url());
    dropLeftovers();
}

// Files are loaded without a cache.
void LoadedTexts::takeFile(const QUrl &url)
{
    const QString kind = url.isLocalFile() ? kindOf({}, url) : QString();
    if (kind.isEmpty())
        return;
    QFile file(url.toLocalFile());
    if (file.open(QIODevice::ReadOnly))
        emit loaded(url.toString(), kind, file.read(largestText + 1));
}

// The manager does not tell when a load is broken off, nor whose a text is. But when nothing is loaded any more, nobody
// writes to what is left.
void LoadedTexts::dropLeftovers()
{
    const QList<QNetworkReply *> replies = m_manager->findChildren<QNetworkReply *>();
    for (const QNetworkReply *reply : replies) {
        if (reply->isRunning())
            return;
    }
    qDeleteAll(m_open.keyBegin(), m_open.keyEnd());
    m_open.clear();
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
    if (kind.isEmpty() || m_open.size() >= mostTexts)
        return nullptr;
    TextBuffer *device = new TextBuffer(this);
    device->open(QIODevice::ReadWrite);
    m_open[device] = {metaData.url().toString(), kind};
    return device;
}

void LoadedTexts::insert(QIODevice *device)
{
    const Text text = m_open.take(device);
    if (!text.kind.isEmpty())
        emit loaded(text.address, text.kind, static_cast<TextBuffer *>(device)->data());
    device->deleteLater();
}

// There may be several loads of one address, of which this is about any.
bool LoadedTexts::remove(const QUrl &)
{
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
