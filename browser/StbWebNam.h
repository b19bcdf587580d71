// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QNetworkAccessManager>

class CaBundle;

/// The page's network access: every request is held to the TLS that the operators' servers speak,
/// and none writes a file.
class StbWebNam : public QNetworkAccessManager
{
    Q_OBJECT

public:
    StbWebNam(QObject *parent, CaBundle *bundle);

protected:
    QNetworkReply *createRequest(Operation op, const QNetworkRequest &request, QIODevice *outgoingData) override;

private:
    QNetworkRequest withTls(const QNetworkRequest &request) const;

    CaBundle *bundle; ///< is waited for before the default certificates are used
};
