// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

class QNetworkReply;
class QNetworkRequest;
class QUrl;

/// Fails a reply that redirects to a file. Servers do not send pages to the box's files, whatever pages may do of
/// themselves. Lives as long as the reply.
class FileRedirectRefuser : public QObject
{
    Q_OBJECT

public:
    explicit FileRedirectRefuser(QNetworkReply *reply);

    /// Whether the network manager may take the address for a file's.
    static bool mayBeFile(const QUrl &url);

private slots:
    void look();
    void end();

private:
    QNetworkReply *const m_reply;
    bool m_isRefused;
};
