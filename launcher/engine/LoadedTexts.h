// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAbstractNetworkCache>
#include <QHash>

class QNetworkAccessManager;
class QNetworkReply;

/// Tells what scripts, style sheets and pages a network access manager has loaded, without asking a server twice: to
/// the manager it is a cache, in which it never finds anything.
class LoadedTexts : public QAbstractNetworkCache
{
    Q_OBJECT

public:
    /// The manager becomes its owner.
    explicit LoadedTexts(QNetworkAccessManager *manager);

    /// No more than a byte beyond this is kept of a text, and no more texts are kept at a time.
    static constexpr int largestText = 2 * 1024 * 1024;
    static constexpr int mostTexts = 64;

    QNetworkCacheMetaData metaData(const QUrl &url) override;
    void updateMetaData(const QNetworkCacheMetaData &metaData) override;
    QIODevice *data(const QUrl &url) override;
    bool remove(const QUrl &url) override;
    qint64 cacheSize() const override;
    QIODevice *prepare(const QNetworkCacheMetaData &metaData) override;
    void insert(QIODevice *device) override;

public slots:
    void clear() override;

signals:
    /// Kinds are "script", "style" and "page".
    void loaded(const QString &address, const QString &kind, const QByteArray &text);

private:
    struct Text
    {
        QString address;
        QString kind;
    };

    void endLoad(const QNetworkReply *reply);
    void takeFile(const QUrl &url);
    void dropLeftovers();

    const QNetworkAccessManager *m_manager;
    QHash<QIODevice *, Text> m_open;
};
