// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/StbWebNam.h"

#include "common/other/qtcompat.h"

#include <QDebug>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>

StbWebNam::StbWebNam(QObject *parent)
    : QNetworkAccessManager(parent)
{
}

QNetworkReply *StbWebNam::createRequest(Operation op, const QNetworkRequest &request, QIODevice *outgoingData)
{
    qDebug() << "Create request";
    QNetworkRequest changed(request);
    QSslConfiguration configuration = changed.sslConfiguration();
    QtCompat::setTls10(configuration);
    configuration.setCaCertificates(QSslSocket::defaultCaCertificates());
    changed.setSslConfiguration(configuration);
    return QNetworkAccessManager::createRequest(op, changed, outgoingData);
}
