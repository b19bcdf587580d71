// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/UserAgentWebPage.h"

#include "browser/FrameProtection.h"
#include "browser/StbWebNam.h"
#include "jsapi/StoragePath.h"

#include <QDebug>
#include <QKeyEvent>
#include <QWebFrame>
#include <QWebSettings>

namespace {

const int longestDialogText = 2000; // characters, since the toolkit takes minutes to lay out millions

void reportIgnored()
{
    qDebug() << "Ignore back/fwd action";
}

} // namespace

UserAgentWebPage *UserAgentWebPage::create(QObject *parent, CaBundle *bundle)
{
    // The engine decides where a page's storage is kept when it makes the page, before the page can switch it on.
    QWebSettings *settings = QWebSettings::globalSettings();
    const QString storagePath = settings->localStoragePath();
    settings->setLocalStoragePath(QLatin1String(localStorageDirectory));
    UserAgentWebPage *page = new UserAgentWebPage(parent);
    settings->setLocalStoragePath(storagePath);
    FrameProtection::addTo(page);
    page->setNetworkAccessManager(new StbWebNam(parent, bundle));
    return page;
}

UserAgentWebPage::UserAgentWebPage(QObject *parent)
    : QWebPage(parent)
    , isLeaving(false)
{
}

void UserAgentWebPage::leaveDocument()
{
    if (isLeaving)
        return;
    isLeaving = true;
    mainFrame()->setHtml(QString());
    isLeaving = false;
}

QString UserAgentWebPage::userAgentForUrl(const QUrl &url) const
{
    return QWebPage::userAgentForUrl(url) + QLatin1String(" Kavro MZ412");
}

bool UserAgentWebPage::event(QEvent *event)
{
    const bool isKnown = QWebPage::event(event);
    // Where the engine itself makes nothing of the backspace key, it is an action like everywhere else.
    if (event->type() == QEvent::KeyPress && !event->isAccepted()) {
        const QKeyEvent *press = static_cast<QKeyEvent *>(event);
        if (press->key() == Qt::Key_Backspace)
            triggerAction(press->modifiers() & Qt::ShiftModifier ? Forward : Back);
    }
    return isKnown;
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

void UserAgentWebPage::javaScriptAlert(QWebFrame *frame, const QString &text)
{
    QWebPage::javaScriptAlert(frame, text.left(longestDialogText));
}

bool UserAgentWebPage::javaScriptConfirm(QWebFrame *frame, const QString &text)
{
    return isLeaving || QWebPage::javaScriptConfirm(frame, text.left(longestDialogText));
}

bool UserAgentWebPage::javaScriptPrompt(QWebFrame *frame, const QString &text, const QString &value, QString *result)
{
    const QString shown = value.left(longestDialogText);
    const bool isAnswered = QWebPage::javaScriptPrompt(frame, text.left(longestDialogText), shown, result);
    // Who has changed nothing means the whole of it.
    if (isAnswered && *result == shown)
        *result = value;
    return isAnswered;
}
