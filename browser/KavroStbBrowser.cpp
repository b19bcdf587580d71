// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/KavroStbBrowser.h"

#include "browser/AddressDialog.h"
#include "browser/CaBundle.h"
#include "browser/DeleteLaterFilter.h"
#include "browser/FrameProtection.h"
#include "browser/PageEvents.h"
#include "browser/PageGuards.h"
#include "browser/StbWebNam.h"
#include "browser/UserAgentWebPage.h"
#include "browser/bridge/EventNotifier.h"
#include "browser/bridge/JsApiTracer.h"
#include "common/other/plainfile.h"
#include "common/other/qtcompat.h"
#include "common/other/tools.h"
#include "config/PluginConfigParser.h"
#include "jsapi/LocalStorage.h"
#include "jsapi/StbDisplay.h"
#include "jsapi/StbMedia.h"
#include "jsapi/StbPVR.h"
#include "jsapi/deprecated/stb_display.h"
#include "jsapi/deprecated/stb_media.h"

#include <QApplication>
#include <QDebug>
#include <QFile>
#include <QFileSystemWatcher>
#include <QKeyEvent>
#include <QNetworkReply>
#include <QShortcut>
#include <QSslError>
#include <QTextStream>
#include <QTimer>
#include <QWebFrame>
#include <QWebSecurityOrigin>
#include <QWebSettings>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>

#include <netinet/in.h>
#include <resolv.h>

namespace {

const char debugFileDirectory[] = "/etc";
const char debugFile[] = "/etc/stbjsapi_debug";
const char pageDump[] = "/tmp/page.html";
const char mediaName[] = "StbMedia";

const int reloadDelay = 1000;       // ms
const int noProgressTimeout = 5000; // ms
const int failuresBeforeErrorPage = 6;

QTimer *createTimer(QObject *receiver, int interval, const char *slot)
{
    QTimer *timer = new QTimer(receiver);
    timer->setInterval(interval);
    timer->setSingleShot(true);
    QtCompat::makePrecise(*timer);
    QObject::connect(timer, SIGNAL(timeout()), receiver, slot);
    return timer;
}

// What pages have connected to an object's signals. The engine makes each such connection a child of the object, whose
// only child otherwise is its log file.
void dropScriptConnections(QObject *object)
{
    const QObjectList &children = object->children();
    for (QObject *child : children) {
        // Later, because a page can be replaced from within a signal.
        if (!qobject_cast<QFile *>(child))
            QMetaObject::invokeMethod(child, "deleteLater");
    }
}

} // namespace

KavroStbBrowser::KavroStbBrowser(QWidget *parent)
    : QWebView(parent)
    , pageEvents(nullptr)
    , pageGuards(nullptr)
    , retryCount(0)
    , errorPageMode(false)
    , lastKeyTime(QTime::currentTime())
    , lastKey(0)
    , keyDelay(0)
{
    caBundle = new CaBundle(this);
    watchDebugFile();
    setUpWebSettings();
    addShortcuts();
    createScriptObjects();
    createPage();
    connectPageToPlatform();
    createTimers();
    connect(display, SIGNAL(keyDelayChanged(int)), SLOT(changeKeyDelay(int)));
    installEventFilter(this);
}

KavroStbBrowser::~KavroStbBrowser()
{
    qDeleteAll(findChildren<PageGuards *>()); // before what they stand for, also those of pages before
    // A page that has connected a function to destroyed() would be called with an object that is no more.
    for (const ScriptObject &script : std::as_const(scriptObjects))
        disconnect(script.object, nullptr, nullptr, nullptr);
    KavroJS::StbMedia::destroyInstance();
    KavroJS::StbDisplay::destroyInstance();
    KavroJS::StbPVR::destroyInstance();
    delete deprecatedMedia;
    delete deprecatedDisplay;
}

void KavroStbBrowser::watchDebugFile()
{
    debugFileWatcher = new QFileSystemWatcher(this);
    debugFileWatcher->addPath(QLatin1String(debugFileDirectory));
    debugFileWatcher->addPath(QLatin1String(debugFile));
    connect(debugFileWatcher, SIGNAL(fileChanged(QString)), SLOT(checkDebugFile()));
    connect(debugFileWatcher, SIGNAL(directoryChanged(QString)), SLOT(checkDebugFile()));
    checkDebugFile();
}

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

void KavroStbBrowser::createScriptObjects()
{
    media = KavroJS::StbMedia::instance();
    display = KavroJS::StbDisplay::instance();
    pvr = KavroJS::StbPVR::instance();
    deprecatedMedia = new KavroJSDeprecated::stb_media;
    deprecatedDisplay = new KavroJSDeprecated::stb_display;

    const ScriptObject objects[] = {{mediaName, media},
                                    {"StbDisplay", display},
                                    {"StbPVR", pvr},
                                    {"stb_media", deprecatedMedia},
                                    {"stb_display", deprecatedDisplay}};
    DeleteLaterFilter *guard = new DeleteLaterFilter(this);
    for (const ScriptObject &script : objects) {
        scriptObjects.append(script);
        script.object->installEventFilter(guard);
    }
}

void KavroStbBrowser::createPage()
{
    // The engine decides where a page's storage is kept when it makes the page, before the page can switch it on.
    QWebSettings *settings = QWebSettings::globalSettings();
    const QString storagePath = settings->localStoragePath();
    settings->setLocalStoragePath(QLatin1String(localStorageDirectory));
    setPage(new UserAgentWebPage(this));
    settings->setLocalStoragePath(storagePath);
    StbWebNam *network = new StbWebNam(this, caBundle);
    page()->setNetworkAccessManager(network);
    connect(network, SIGNAL(sslErrors(QNetworkReply *, QList<QSslError>)),
            SLOT(sslErrorHandler(QNetworkReply *, QList<QSslError>)));
}

void KavroStbBrowser::connectPageToPlatform()
{
    connect(EventNotifier::instance(), SIGNAL(eventOccured(int, int)), SLOT(evaluateEvent(int, int)),
            Qt::QueuedConnection);
    connect(page()->mainFrame(), SIGNAL(javaScriptWindowObjectCleared()), SLOT(populateJavaScriptWindowObject()));
    if (QtCompat::engineNeedsProtection)
        new FrameProtection(page());
    connect(media, SIGNAL(jsCallback(QString)), SLOT(setJsCallback(QString)));
    connect(deprecatedMedia, SIGNAL(jsCallback(QString)), SLOT(setJsCallback(QString)));
}

void KavroStbBrowser::createTimers()
{
    connect(this, SIGNAL(loadFinished(bool)), SLOT(pageLoaded(bool)));
    connect(this, SIGNAL(loadProgress(int)), SLOT(onLoadProgress()));
    reloadTimer = createTimer(this, reloadDelay, SLOT(reloadPage()));
    errorPageTimer = createTimer(this, noProgressTimeout, SLOT(loadErrorPage()));
}

bool KavroStbBrowser::isTracingEnabled()
{
    return JsApiTracer::isEnabled();
}

void KavroStbBrowser::loadPage(const QUrl &url)
{
    qDebug() << "Load url: " << url.toString();
    setUrl(url);
    errorPageTimer->start();
}

void KavroStbBrowser::setErrorPageUrl(const QUrl &url)
{
    errorPageUrl = url;
}

void KavroStbBrowser::reloadPage()
{
    qDebug() << "Try to load page" << url();
    setUrl(url());
}

void KavroStbBrowser::loadErrorPage()
{
    errorPageMode = true;
    stop();
    errorPageTimer->stop();
    reloadTimer->stop();
    if (!errorPageUrl.isEmpty())
        setUrl(errorPageUrl);
}

void KavroStbBrowser::onLoadProgress()
{
    if (!errorPageMode)
        errorPageTimer->start();
}

void KavroStbBrowser::pageLoaded(bool isLoaded)
{
    if (isTracingEnabled())
        dumpPage(isLoaded);
    page()->currentFrame()->setTextSizeMultiplier(PluginConfigParser::instance()->textSizeMultiplier);
    if (isLoaded) {
        reloadTimer->stop();
        errorPageTimer->stop();
    } else {
        retryOrGiveUp();
    }
}

void KavroStbBrowser::dumpPage(bool isLoaded)
{
    qDebug() << "Page loaded: " << isLoaded << "Page: " << url() << " Page size[[" << page()->totalBytes() << "]]";
    const QString path = QLatin1String(pageDump);
    Common::PlainFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        qDebug() << "Cannot open file to dump html";
        return;
    }
    QTextStream(&file) << page()->currentFrame()->toHtml();
}

void KavroStbBrowser::retryOrGiveUp()
{
    res_init();
    if (errorPageMode)
        return;
    if (++retryCount < failuresBeforeErrorPage) {
        reloadTimer->start();
        return;
    }
    errorPageMode = true;
    QMetaObject::invokeMethod(this, "loadErrorPage", Qt::QueuedConnection);
}

void KavroStbBrowser::sslErrorHandler(QNetworkReply *reply, const QList<QSslError> &errors)
{
    qDebug() << "--->sslErrorHandler: ";
    for (const QSslError &error : errors)
        qDebug() << "ssl error: " << error;
    reply->ignoreSslErrors();
}

void KavroStbBrowser::closeBrowser()
{
    // At once: the ordinary way out would have the toolkit destroy the plugin after the web engine.
    std::fflush(nullptr);
    std::_Exit(0);
}

void KavroStbBrowser::newUrl()
{
    AddressDialog::ask(this, SLOT(goToUrl()));
}

void KavroStbBrowser::goToUrl()
{
    disconnect(this, SIGNAL(loadFinished(bool)), this, SLOT(pageLoaded(bool)));
    reloadTimer->stop();
    errorPageTimer->stop();
    stop();
    res_init();
    setUrl(QUrl(AddressDialog::address()));
    std::cout << url().toString() << std::endl;
}

void KavroStbBrowser::showCursor()
{
    QApplication::setOverrideCursor(Qt::ArrowCursor);
}

void KavroStbBrowser::checkDebugFile()
{
    int &level = JsApiTracer::debug_level;
    const QString path = QLatin1String(debugFile);
    if (!QFile::exists(path)) {
        // A negative level stays, as it always has.
        if (level >= 0)
            level = -1;
        return;
    }
    // A file that did not exist when the watcher was set up is not watched yet.
    if (level == -1 && !debugFileWatcher->files().contains(path))
        debugFileWatcher->addPath(path);

    Common::PlainFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    JsApiTracer::readLevel(file);
}

void KavroStbBrowser::populateJavaScriptWindowObject()
{
    QWebFrame *frame = page()->mainFrame();
    leavePage();
    pageEvents = new PageEvents(frame, QLatin1String(mediaName), this);
    if (QtCompat::engineNeedsProtection) {
        addGuards(frame);
    } else {
        for (const ScriptObject &script : std::as_const(scriptObjects))
            frame->addToJavaScriptWindowObject(QLatin1String(script.name), script.object);
    }
    frame->evaluateJavaScript(
        QLatin1String("StbMedia.SetEventCallback = function(fun) {StbMedia.eventCallback = fun;};"));
}

// A page can be replaced from within an event or a call.
void KavroStbBrowser::leavePage()
{
    if (pageEvents)
        pageEvents->deleteLater();
    if (pageGuards)
        pageGuards->deleteLater();
    // They would keep the page before from being freed, and call it.
    for (const ScriptObject &script : std::as_const(scriptObjects))
        dropScriptConnections(script.object);
}

void KavroStbBrowser::addGuards(QWebFrame *frame)
{
    pageGuards = new PageGuards(frame, this);
    for (const ScriptObject &script : std::as_const(scriptObjects))
        pageGuards->add(QLatin1String(script.name), script.object);
    pageGuards->finish(pvr);
}

void KavroStbBrowser::setJsCallback(const QString &code)
{
    // The engine converts the value of a script, which must not be one that crashes it.
    jsCallbackCode = code.isEmpty() ? code : code + QLatin1String("\n;0");
}

void KavroStbBrowser::evaluateEvent(int argument, int code)
{
    media->setLastEvent(argument, code);
    deprecatedMedia->lastEventId = argument;
    deprecatedMedia->lastEventType = code;

    if (pageEvents)
        pageEvents->deliver(argument, code);
    if (!jsCallbackCode.isEmpty())
        page()->mainFrame()->evaluateJavaScript(jsCallbackCode);
}

void KavroStbBrowser::changeKeyDelay(int ms)
{
    keyDelay = qMax(ms, 0);
}

bool KavroStbBrowser::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || watched != this)
        return false;
    const int key = static_cast<QKeyEvent *>(event)->key();
    const QTime now = QTime::currentTime();
    // The delay counts from the last press that went through. Across midnight the difference is negative: too soon.
    if (lastKeyTime.msecsTo(now) < keyDelay && key == lastKey && keyDelay > 0)
        return true;
    lastKeyTime = now;
    lastKey = key;
    return false;
}
