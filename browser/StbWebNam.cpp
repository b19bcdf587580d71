// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/StbWebNam.h"

#include "browser/CaBundle.h"
#include "browser/FileRedirectRefuser.h"
#include "browser/RefusedReply.h"
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
    if (op != GetOperation && op != HeadOperation && FileRedirectRefuser::mayBeFile(request.url())) {
        qWarning("Refused: a request that would change %s; pages read files only",
                 request.url().toEncoded().constData());
        return new RefusedReply(op, request, QLatin1String("Files are only read"), this);
    }
    // Others do not use TLS, and would wait for it to be set up.
    const bool usesTls = request.url().scheme() == QLatin1String("https");
    QNetworkReply *reply = QNetworkAccessManager::createRequest(op, usesTls ? withTls(request) : request, outgoingData);
    new FileRedirectRefuser(reply);
    return reply;
}

QNetworkRequest StbWebNam::withTls(const QNetworkRequest &request) const
{
    bundle->require();
    QNetworkRequest changed(request);
    QSslConfiguration configuration = changed.sslConfiguration();
    QtCompat::setTls10(configuration);
    configuration.setCaCertificates(QSslSocket::defaultCaCertificates());
    if (QtCompat::isSynchronous(request)) {
        // A request that ends before anybody can say that its server's certificate will do.
        configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    }
    changed.setSslConfiguration(configuration);
    return changed;
}
