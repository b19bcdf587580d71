// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QWebPage>

class CaBundle;

/// The page: tells servers which box they talk to, goes neither back nor forward, and opens no endless dialogs.
class UserAgentWebPage : public QWebPage
{
public:
    /// A page with its network access, for which the certificates are. The parent becomes that of both.
    static UserAgentWebPage *create(QObject *parent, CaBundle *bundle);

    /// Ends the document as the engine does when a page goes to another one by itself: it hears of beforeunload,
    /// pagehide and unload. What it answers keeps nobody here, and nobody is asked.
    void leaveDocument();

    bool event(QEvent *event) override;
    void triggerAction(WebAction action, bool checked = false) override;

protected:
    QString userAgentForUrl(const QUrl &url) const override;
    bool acceptNavigationRequest(QWebFrame *frame, const QNetworkRequest &request, NavigationType type) override;
    void javaScriptAlert(QWebFrame *frame, const QString &text) override;
    bool javaScriptConfirm(QWebFrame *frame, const QString &text) override;
    bool javaScriptPrompt(QWebFrame *frame, const QString &text, const QString &value, QString *result) override;

private:
    explicit UserAgentWebPage(QObject *parent);

    bool isLeaving;
};
