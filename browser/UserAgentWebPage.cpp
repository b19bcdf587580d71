// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/UserAgentWebPage.h"

#include <QDebug>

namespace {

void reportIgnored()
{
    qDebug() << "Ignore back/fwd action";
}

} // namespace

UserAgentWebPage::UserAgentWebPage(QObject *parent)
    : QWebPage(parent)
{
}

QString UserAgentWebPage::userAgentForUrl(const QUrl &url) const
{
    return QWebPage::userAgentForUrl(url) + QLatin1String(" Kavro MZ412");
}

void UserAgentWebPage::triggerAction(WebAction action, bool checked)
{
    if (action == Back || action == Forward)
        reportIgnored();
    else
        QWebPage::triggerAction(action, checked);
}

// The page's own history calls do not come as actions.
bool UserAgentWebPage::acceptNavigationRequest(QWebFrame *frame, const QNetworkRequest &request, NavigationType type)
{
    if (type == NavigationTypeBackOrForward) {
        reportIgnored();
        return false;
    }
    return QWebPage::acceptNavigationRequest(frame, request, type);
}
