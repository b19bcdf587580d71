// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/StbWebNam.h"

#include "browser/CaBundle.h"
#include "common/other/qtcompat.h"

#include <QDebug>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QUrl>

StbWebNam::StbWebNam(QObject *parent, CaBundle *bundle)
    : QNetworkAccessManager(parent)
    , bundle(bundle)
{
}

QNetworkReply *StbWebNam::createRequest(Operation op, const QNetworkRequest &request, QIODevice *outgoingData)
{
    qDebug() << "Create request";
    // Others do not use TLS, and would wait for it to be set up.
    if (request.url().scheme() != QLatin1String("https"))
        return QNetworkAccessManager::createRequest(op, request, outgoingData);
    if (bundle)
        bundle->require();
    QNetworkRequest changed(request);
    QSslConfiguration configuration = changed.sslConfiguration();
    QtCompat::setTls10(configuration);
    configuration.setCaCertificates(QSslSocket::defaultCaCertificates());
    changed.setSslConfiguration(configuration);
    return QNetworkAccessManager::createRequest(op, changed, outgoingData);
}
