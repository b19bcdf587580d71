// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/FileRedirectRefuser.h"

#include <QNetworkReply>
#include <QStringList>
#include <QUrl>
#include <QVariant>

namespace {

// What a reply keeps for classes derived from it.
class OpenReply : public QNetworkReply
{
public:
    using QNetworkReply::setAttribute;
    using QNetworkReply::setError;
};

} // namespace

FileRedirectRefuser::FileRedirectRefuser(QNetworkReply *reply)
    : QObject(reply)
    , m_reply(reply)
    , m_isRefused(false)
{
    // Before the engine's own slots, which read the redirection when there is a body or the end.
    connect(reply, SIGNAL(metaDataChanged()), SLOT(look()));
    connect(reply, SIGNAL(finished()), SLOT(end()));
    // The reply to a request that was waited for is complete, and sends no more signals.
    look();
    if (reply->isFinished())
        end();
}

// All but the manager's own protocols are tried as names of files, "notes:page" too.
bool FileRedirectRefuser::mayBeFile(const QUrl &url)
{
    static const QStringList others = QStringList()
        << QLatin1String("http") << QLatin1String("https") << QLatin1String("ftp") << QLatin1String("data");
    return !others.contains(url.scheme().toLower());
}

void FileRedirectRefuser::look()
{
    const QUrl target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (!target.isValid() || !mayBeFile(m_reply->url().resolved(target)))
        return;
    qWarning("Refused: %s redirects to %s, a file", m_reply->url().toEncoded().constData(),
             target.toEncoded().constData());
    m_isRefused = true;
    // With a status it would be an answer to the engine, and sometimes no failure.
    (m_reply->*&OpenReply::setAttribute)(QNetworkRequest::RedirectionTargetAttribute, QVariant());
    (m_reply->*&OpenReply::setAttribute)(QNetworkRequest::HttpStatusCodeAttribute, QVariant());
    // Not at once: that of Qt 4 could not stand an end in the midst of this signal.
    QMetaObject::invokeMethod(m_reply, "abort", Qt::QueuedConnection);
}

// It may have come to its end by itself before it was aborted.
void FileRedirectRefuser::end()
{
    if (m_isRefused && m_reply->error() == QNetworkReply::NoError)
        (m_reply->*&OpenReply::setError)(QNetworkReply::ContentOperationNotPermittedError,
                                         QLatin1String("A redirection to a file is refused"));
}
