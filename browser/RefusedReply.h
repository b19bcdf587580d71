// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QNetworkAccessManager>
#include <QNetworkReply>

/// The reply to a request that is not carried out: it fails as soon as its receiver can listen.
class RefusedReply : public QNetworkReply
{
    Q_OBJECT

public:
    RefusedReply(QNetworkAccessManager::Operation op, const QNetworkRequest &request, const QString &reason,
                 QObject *parent);

    void abort() override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;
};
