// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageLoader.h"

#include "browser/UserAgentWebPage.h"
#include "browser/bridge/JsApiTracer.h"
#include "common/other/plainfile.h"
#include "common/other/qtcompat.h"
#include "common/other/tools.h"
#include "config/PluginConfigParser.h"

#include <QDebug>
#include <QTextStream>
#include <QTimer>
#include <QWebFrame>
#include <QWebView>

#include <iostream>

#include <netinet/in.h>
#include <resolv.h>

namespace {

const char pageDump[] = "/tmp/page.html";

const int reloadDelay = 1000;       // ms
const int noProgressTimeout = 5000; // ms
const int failuresBeforeErrorPage = 6;

QTimer *createTimer(QWebView *view, int interval, const char *slot)
{
    QTimer *timer = new QTimer(view);
    timer->setInterval(interval);
    timer->setSingleShot(true);
    QtCompat::makePrecise(*timer);
    QObject::connect(timer, SIGNAL(timeout()), view, slot);
    return timer;
}

} // namespace

PageLoader::PageLoader(QWebView *view, UserAgentWebPage *page)
    : view(view)
    , page(page)
    , reloadTimer(createTimer(view, reloadDelay, SLOT(reloadPage())))
    , errorPageTimer(createTimer(view, noProgressTimeout, SLOT(loadErrorPage())))
    , retryCount(0)
    , errorPageMode(false)
{
}

void PageLoader::load(const QUrl &url)
{
    qDebug() << "Load url: " << url.toString();
    view->setUrl(url);
    errorPageTimer->start();
}

void PageLoader::setErrorPage(const QUrl &url)
{
    errorPageUrl = url;
}

void PageLoader::leaveFor(const QUrl &url)
{
    reloadTimer->stop();
    errorPageTimer->stop();
    view->stop();
    res_init();
    replacePage(url);
    std::cout << view->url().toString() << std::endl;
}

void PageLoader::noteProgress()
{
    if (!errorPageMode)
        errorPageTimer->start();
}

void PageLoader::finish(bool isLoaded)
{
    if (JsApiTracer::isEnabled())
        dumpPage(isLoaded);
    view->page()->currentFrame()->setTextSizeMultiplier(PluginConfigParser::instance()->textSizeMultiplier);
    if (isLoaded) {
        reloadTimer->stop();
        errorPageTimer->stop();
    } else {
        retryOrGiveUp();
    }
}

void PageLoader::reload()
{
    qDebug() << "Try to load page" << view->url();
    view->stop(); // a load that is given up has failed
    replacePage(view->url());
}

void PageLoader::showErrorPage()
{
    errorPageMode = true;
    view->stop();
    errorPageTimer->stop();
    reloadTimer->stop();
    if (!errorPageUrl.isEmpty())
        replacePage(errorPageUrl);
}

// setUrl ends a document without a word, and what its page has begun, players for one, would go on.
void PageLoader::replacePage(const QUrl &url)
{
    // The empty document in between is no load that anybody waits for.
    const bool wereBlocked = view->blockSignals(true);
    page->leaveDocument();
    view->blockSignals(wereBlocked);
    view->setUrl(url);
}

void PageLoader::dumpPage(bool isLoaded)
{
    qDebug() << "Page loaded: " << isLoaded << "Page: " << view->url() << " Page size[[" << page->totalBytes() << "]]";
    const QString path = QLatin1String(pageDump);
    Common::PlainFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        qDebug() << "Cannot open file to dump html";
        return;
    }
    QTextStream(&file) << page->currentFrame()->toHtml();
}

void PageLoader::retryOrGiveUp()
{
    res_init();
    if (errorPageMode)
        return;
    if (++retryCount < failuresBeforeErrorPage) {
        reloadTimer->start();
        return;
    }
    errorPageMode = true;
    QMetaObject::invokeMethod(view, "loadErrorPage", Qt::QueuedConnection);
}
