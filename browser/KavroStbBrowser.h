// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QSslError>
#include <QTime>
#include <QUrl>
#include <QWebView>

class CaBundle;
class PageEvents;
class PageGuards;
class QFileSystemWatcher;
class QNetworkReply;
class QTimer;
class QWebFrame;

namespace KavroJS {
class StbDisplay;
class StbMedia;
class StbPVR;
} // namespace KavroJS

namespace KavroJSDeprecated {
class stb_display;
class stb_media;
} // namespace KavroJSDeprecated

/// The one web view: loads the portal, keeps trying while it cannot be loaded, gives the page its script objects and
/// brings it the platform's events.
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
    void watchDebugFile();
    void setUpWebSettings();
    void addShortcuts();
    void createScriptObjects();
    void createPage();
    void connectPageToPlatform();
    void createTimers();
    void dumpPage(bool isLoaded);
    void retryOrGiveUp();
    void leavePage();
    void addGuards(QWebFrame *frame);

    /// One of the five, and its name in pages.
    struct ScriptObject
    {
        const char *name;
        QObject *object;
    };

    KavroJS::StbMedia *media;
    KavroJS::StbDisplay *display;
    KavroJS::StbPVR *pvr;
    KavroJSDeprecated::stb_media *deprecatedMedia;
    KavroJSDeprecated::stb_display *deprecatedDisplay;
    QList<ScriptObject> scriptObjects;
    CaBundle *caBundle;
    PageEvents *pageEvents; ///< of the current page; null before the first
    PageGuards *pageGuards; ///< of the current page; null before the first, and where pages need none
    QString jsCallbackCode; ///< script to run after each platform event
    QTimer *reloadTimer;
    QTimer *errorPageTimer; ///< runs out when a load makes no progress
    QUrl errorPageUrl;
    int retryCount;     ///< failed loads so far; never reset
    bool errorPageMode; ///< the error page has been asked for; never cleared
    QFileSystemWatcher *debugFileWatcher;
    QTime lastKeyTime; ///< of the last key press that reached the page
    int lastKey;
    int keyDelay; ///< least time in ms between presses of one key; 0 lets all through
};
