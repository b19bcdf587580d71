// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/RefusedReply.h"

RefusedReply::RefusedReply(QNetworkAccessManager::Operation op, const QNetworkRequest &request, const QString &reason,
                           QObject *parent)
    : QNetworkReply(parent)
{
    setOperation(op);
    setRequest(request);
    setUrl(request.url());
    setError(ContentOperationNotPermittedError, reason);
    open(ReadOnly);
    QMetaObject::invokeMethod(this, "finished", Qt::QueuedConnection);
}

void RefusedReply::abort() { }

qint64 RefusedReply::readData(char *, qint64)
{
    return -1;
}
