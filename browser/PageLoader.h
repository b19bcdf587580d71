// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QUrl>

class QTimer;
class QWebView;
class UserAgentWebPage;

/// Has the view load the portal, and keeps trying while it cannot be loaded. When it gives up, or a load makes no
/// progress, the error page is shown, and from then on nothing is tried again.
class PageLoader
{
public:
    /// The view tells of its loads by noteProgress and finish. Its slots reloadPage and loadErrorPage, which are to
    /// call reload and showErrorPage, are called in time.
    PageLoader(QWebView *view, UserAgentWebPage *page);

    void load(const QUrl &url);
    /// The page to show when no page can be loaded; none if empty.
    void setErrorPage(const QUrl &url);
    /// Goes to another page, about whose failure nothing is done: finish must not be called any more.
    void leaveFor(const QUrl &url);

    void noteProgress();
    void finish(bool isLoaded);
    void reload();
    void showErrorPage();

private:
    void replacePage(const QUrl &url);
    void dumpPage(bool isLoaded);
    void retryOrGiveUp();

    QWebView *view;
    UserAgentWebPage *page;
    QTimer *reloadTimer;
    QTimer *errorPageTimer; ///< runs out when a load makes no progress
    QUrl errorPageUrl;
    int retryCount;     ///< failed loads so far; never reset
    bool errorPageMode; ///< the error page has been asked for; never cleared
};
