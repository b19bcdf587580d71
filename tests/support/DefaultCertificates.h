// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QSslConfiguration>

/// Those that this process checks servers against unless told otherwise.
inline QList<QSslCertificate> defaultCertificates()
{
    return QSslConfiguration::defaultConfiguration().caCertificates();
}

/// As a launcher may change them.
inline void setDefaultCertificates(const QList<QSslCertificate> &certificates)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(certificates);
    QSslConfiguration::setDefaultConfiguration(configuration);
}
