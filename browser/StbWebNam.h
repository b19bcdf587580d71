// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QNetworkAccessManager>

/// The page's network access: every request is held to the TLS that the operators' servers speak.
class StbWebNam : public QNetworkAccessManager
{
    Q_OBJECT

public:
    explicit StbWebNam(QObject *parent);

protected:
    QNetworkReply *createRequest(Operation op, const QNetworkRequest &request, QIODevice *outgoingData) override;
};
