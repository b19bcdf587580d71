// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "browser/KeyDelay.h"

#include <QList>
#include <QSslError>
#include <QUrl>
#include <QWebView>

#include <memory>

class CaBundle;
class PageLoader;
class QNetworkReply;
class ScriptObjects;
class TraceFile;

/// The one web view. What it does has classes of its own: PageLoader loads the portal, ScriptObjects gives the page its
/// script objects and the platform's events, TraceFile tells whether to trace, KeyDelay thins out the keys. They are
/// reached by the view's slots, which engine, platform, keys and launcher know.
class KavroStbBrowser : public QWebView
{
    Q_OBJECT

public:
    explicit KavroStbBrowser(QWidget *parent);
    ~KavroStbBrowser() override;

    void loadPage(const QUrl &url);
    /// The page to show when no page can be loaded; none if empty.
    void setErrorPageUrl(const QUrl &url);

    /// Whether script calls are traced and pages dumped.
    static bool isTracingEnabled();

    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void reloadPage();
    void closeBrowser();
    void newUrl();
    void goToUrl();
    void loadErrorPage();
    void populateJavaScriptWindowObject();
    void evaluateEvent(int, int);
    void setJsCallback(const QString &);
    void pageLoaded(bool isLoaded);
    void changeKeyDelay(int);
    void showCursor();
    void checkDebugFile();
    void sslErrorHandler(QNetworkReply *, const QList<QSslError> &);
    void onLoadProgress();

private:
    static void setUpWebSettings();
    void addShortcuts();
    void connectPage();

    CaBundle *bundle;
    // They end with the slots, before the view does: its last page may still run scripts, and wait in them.
    std::unique_ptr<TraceFile> traceFile;
    std::unique_ptr<ScriptObjects> scriptObjects;
    std::unique_ptr<PageLoader> loader;
    KeyDelay keyDelay;
};
