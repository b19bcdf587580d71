// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/KavroStbBrowser.h"

#include "browser/AddressDialog.h"
#include "browser/CaBundle.h"
#include "browser/PageLoader.h"
#include "browser/ScriptObjects.h"
#include "browser/TraceFile.h"
#include "browser/UserAgentWebPage.h"
#include "browser/bridge/EventNotifier.h"
#include "browser/bridge/JsApiTracer.h"

#include <QApplication>
#include <QDebug>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPluginLoader>
#include <QShortcut>
#include <QSslError>
#include <QWebFrame>
#include <QWebSecurityOrigin>
#include <QWebSettings>

#include <cstdlib>

#include <dlfcn.h>

namespace {

// At the end of the process the toolkit destroys the plugins that nobody holds, when the web engine is no more.
void keepPlugin(QObject *holder)
{
    Dl_info plugin;
    if (dladdr(&KavroStbBrowser::staticMetaObject, &plugin) != 0)
        new QPluginLoader(QFile::decodeName(plugin.dli_fname), holder);
}

} // namespace

KavroStbBrowser::KavroStbBrowser(QWidget *parent)
    : QWebView(parent)
    , bundle(new CaBundle(this))
    , traceFile(new TraceFile(this))
{
    setUpWebSettings();
    addShortcuts();
    scriptObjects.reset(new ScriptObjects(this));
    UserAgentWebPage *const portal = UserAgentWebPage::create(this, bundle);
    setPage(portal);
    connectPage();
    loader.reset(new PageLoader(this, portal));
    connect(this, SIGNAL(loadFinished(bool)), SLOT(pageLoaded(bool)));
    connect(this, SIGNAL(loadProgress(int)), SLOT(onLoadProgress()));
    bundle->connect(this, SIGNAL(loadFinished(bool)), SLOT(begin()));
    connect(scriptObjects->displayObject(), SIGNAL(keyDelayChanged(int)), SLOT(changeKeyDelay(int)));
    installEventFilter(this);
}

KavroStbBrowser::~KavroStbBrowser() = default;

void KavroStbBrowser::setUpWebSettings()
{
    QWebSettings *settings = QWebSettings::globalSettings();
    settings->setAttribute(QWebSettings::XSSAuditingEnabled, false);
    settings->setAttribute(QWebSettings::LocalContentCanAccessFileUrls, true);
    settings->setAttribute(QWebSettings::LocalContentCanAccessRemoteUrls, true);
    QWebSecurityOrigin::addLocalScheme(QLatin1String("http"));
}

void KavroStbBrowser::addShortcuts()
{
    new QShortcut(Qt::CTRL + Qt::Key_R, this, SLOT(reloadPage()));
    new QShortcut(Qt::CTRL + Qt::Key_L, this, SLOT(newUrl()));
    new QShortcut(Qt::CTRL + Qt::SHIFT + Qt::Key_C, this, SLOT(showCursor()));
}

void KavroStbBrowser::connectPage()
{
    connect(page()->networkAccessManager(), SIGNAL(sslErrors(QNetworkReply *, QList<QSslError>)),
            SLOT(sslErrorHandler(QNetworkReply *, QList<QSslError>)));
    connect(EventNotifier::instance(), SIGNAL(eventOccured(int, int)), SLOT(evaluateEvent(int, int)),
            Qt::QueuedConnection);
    connect(page()->mainFrame(), SIGNAL(javaScriptWindowObjectCleared()), SLOT(populateJavaScriptWindowObject()));
    bundle->watchFrames(page());
    connect(scriptObjects->mediaObject(), SIGNAL(jsCallback(QString)), SLOT(setJsCallback(QString)));
    connect(scriptObjects->deprecatedMediaObject(), SIGNAL(jsCallback(QString)), SLOT(setJsCallback(QString)));
}

bool KavroStbBrowser::isTracingEnabled()
{
    return JsApiTracer::isEnabled();
}

void KavroStbBrowser::loadPage(const QUrl &url)
{
    loader->load(url);
}

void KavroStbBrowser::setErrorPageUrl(const QUrl &url)
{
    loader->setErrorPage(url);
}

bool KavroStbBrowser::eventFilter(QObject *watched, QEvent *event)
{
    return watched == this && keyDelay.swallows(event);
}

void KavroStbBrowser::reloadPage()
{
    loader->reload();
}

void KavroStbBrowser::closeBrowser()
{
    keepPlugin(this);
    std::exit(0);
}

void KavroStbBrowser::newUrl()
{
    AddressDialog::ask(this, SLOT(goToUrl()));
}

void KavroStbBrowser::goToUrl()
{
    disconnect(this, SIGNAL(loadFinished(bool)), this, SLOT(pageLoaded(bool)));
    disconnect(this, SIGNAL(loadProgress(int)), this, SLOT(onLoadProgress())); // nothing would stop its timer
    loader->leaveFor(QUrl(AddressDialog::address()));
}

void KavroStbBrowser::loadErrorPage()
{
    loader->showErrorPage();
}

void KavroStbBrowser::populateJavaScriptWindowObject()
{
    QWebFrame *const frame = page()->mainFrame();
    scriptObjects->addTo(frame);
    bundle->addTo(frame);
}

void KavroStbBrowser::evaluateEvent(int argument, int code)
{
    scriptObjects->deliver(argument, code, page()->mainFrame());
}

void KavroStbBrowser::setJsCallback(const QString &code)
{
    scriptObjects->setJsCallback(code);
}

void KavroStbBrowser::pageLoaded(bool isLoaded)
{
    loader->finish(isLoaded);
}

void KavroStbBrowser::changeKeyDelay(int ms)
{
    keyDelay.set(ms);
}

void KavroStbBrowser::showCursor()
{
    QApplication::setOverrideCursor(Qt::ArrowCursor);
}

void KavroStbBrowser::checkDebugFile()
{
    traceFile->check();
}

void KavroStbBrowser::sslErrorHandler(QNetworkReply *reply, const QList<QSslError> &errors)
{
    qDebug() << "--->sslErrorHandler: ";
    for (const QSslError &error : errors)
        qDebug() << "ssl error: " << error;
    reply->ignoreSslErrors();
}

void KavroStbBrowser::onLoadProgress()
{
    loader->noteProgress();
}
