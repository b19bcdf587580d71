// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "shell/PluginWrapper.h"

#include "browser/KavroStbBrowser.h"
#include "common/other/plainfile.h"
#include "config/PluginConfigParser.h"
#include "config/SystemSettings.h"
#include "jsapi/StbDisplay.h"
#include "revision.h"
#include "shell/BoxScreen.h"

#include <QApplication>
#include <QDebug>
#include <QKeyEvent>
#include <QSslSocket>
#include <QTimer>
#include <QWebInspector>
#include <QWebPage>
#include <QWebSettings>

namespace {

const char defaultPluginDir[] = "/sdk/qt/STBGUI_PLUGIN/stbbrowser/";
const char bigIcon[] = ":/images/kavrostbbrowser_b.png";
const char smallIcon[] = ":/images/kavrostbbrowser_s.png";

const int startDelay = 10;        // ms
const int inspectorFontSize = 30; // pixels

const long long largestPicture = 16 * 1024 * 1024; // bytes

void setBrush(QWidget *widget, QPalette::ColorRole role, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setBrush(role, QBrush(color));
    widget->setPalette(palette);
}

// Without this the engine calls the last function of a strict one in its place, and crashes if that happens twice in a
// row and the second one throws: Function.prototype.call.bind(Function.prototype.apply)(Map) in a loop is enough.
// It reads the environment once; the launcher's programs are to have theirs as it was.
void setUpEngine()
{
    const char variable[] = "JSC_useTailCalls";
    const QByteArray former = qgetenv(variable);
    qputenv(variable, "0");
    QWebSettings::globalSettings();
    if (former.isNull())
        QtCompat::unsetEnvironment(variable);
    else
        qputenv(variable, former);
}

// A picture that the manifest names.
QPixmap picture(const QString &path)
{
    return Common::isOdd(path, largestPicture) ? QPixmap() : QPixmap(path);
}

} // namespace

PluginWrapper::PluginWrapper(QWidget *parent)
    : CStbApplication(parent)
    , shuttingDown(false)
    , browser(nullptr)
    , inspector(nullptr)
    , running(false)
    , pluginDir(QLatin1String(defaultPluginDir))
    , manifest(nullptr)
    , splash(this)
{
    setBrush(this, QPalette::Window, Qt::black);
}

PluginWrapper::~PluginWrapper()
{
    if (running)
        teardown();
    cleanupStbApi();
    PluginConfigParser::destroyInstance();
}

QString PluginWrapper::appName()
{
    return manifest && !manifest->briefDescription.isEmpty() ? manifest->briefDescription : tr("JS Browser");
}

QString PluginWrapper::appDescription()
{
    return manifest && !manifest->longDescription.isEmpty() ? manifest->longDescription : tr("Middleware browser");
}

QPixmap PluginWrapper::appLogo()
{
    return icon(manifest ? manifest->bigIcon : QString(), bigIcon);
}

QPixmap PluginWrapper::appLogoSmall()
{
    return icon(manifest ? manifest->smallIcon : QString(), smallIcon);
}

QPixmap PluginWrapper::icon(const QString &file, const char *builtIn) const
{
    return file.isEmpty() ? QPixmap(QLatin1String(builtIn)) : picture(pluginDir.absoluteFilePath(file));
}

QString PluginWrapper::relativePath() const
{
    return QLatin1String("stbbrowser/");
}

QString PluginWrapper::pluginVersion() const
{
    return QLatin1String("1.1.4");
}

QString PluginWrapper::vcsVersion() const
{
    return QLatin1String(KAVRO_REVISION);
}

QString PluginWrapper::compilationTime() const
{
    return QLatin1String(__TIME__ " " __DATE__);
}

bool PluginWrapper::supportsSD() const
{
    return manifest && manifest->supportsSd;
}

void PluginWrapper::setFullPath(const QString &path)
{
    pluginDir.setPath(path);
    manifest = PluginConfigParser::instance(pluginDir);
    if (!manifest->valid)
        qWarning() << "Malformed Manifest";
    QTimer::singleShot(startDelay, this, SLOT(runApplication()));
    // The time until then is used for what the engine and the network set up once.
    setUpEngine();
    QSslSocket::supportsSsl();
}

void PluginWrapper::runApplication()
{
    if (browser) // also while it is being deleted, when running is false
        return;
    connect(this, SIGNAL(resize(QSize)), SLOT(doFixedSize(QSize)));
    BoxScreen::takeOver();
    qApp->installEventFilter(this);
    qDebug() << Common::getDisplayMode();
    const QSize pageSize = chosenPageSize();
    BoxScreen::setResolution(pageSize);
    setFixedSize(BoxScreen::size());
    splash.announce(SLOT(showSplash()));
    createBrowser(pageSize);
    createInspector();
    connect(KavroJS::StbDisplay::instance(), SIGNAL(ExitToMenuSignal()), SLOT(shutdownApplication()));
    running = true;
}

QSize PluginWrapper::chosenPageSize() const
{
    if (!manifest->valid)
        return BoxScreen::size();
    qDebug() << manifest->systemwideResolution;
    if (manifest->systemwideResolution)
        qDebug() << Common::getDisplayMode();
    return manifest->currentResolution();
}

void PluginWrapper::createBrowser(const QSize &size)
{
    browser = new KavroStbBrowser(this);
    makeBackgroundTransparent();
    browser->settings()->setAttribute(QWebSettings::DeveloperExtrasEnabled, true);
    browser->loadPage(QUrl(manifest->homePage));
    browser->setErrorPageUrl(QUrl(manifest->errorPage));
    browser->setFixedSize(size);
    browser->show();
    browser->setFocus(Qt::OtherFocusReason);
    connect(browser, SIGNAL(loadFinished(bool)), SLOT(onPageLoadFinished(bool)));
}

// Video shows through where the page paints nothing.
void PluginWrapper::makeBackgroundTransparent()
{
    browser->setBackgroundRole(QPalette::Dark);
    QPalette palette = browser->palette();
    palette.setBrush(QPalette::Base, QBrush(Qt::transparent));
    browser->page()->setPalette(palette);
    browser->setAttribute(Qt::WA_OpaquePaintEvent, false);
    if (BoxScreen::needsTranslucentWindow())
        setAttribute(Qt::WA_TranslucentBackground);
}

void PluginWrapper::createInspector()
{
    inspector = new QWebInspector;
    inspector->setPage(browser->page());
    QFont font = inspector->font();
    font.setPixelSize(inspectorFontSize);
    inspector->setFont(font);
}

void PluginWrapper::shutdownApplication()
{
    shuttingDown = true;
    emit exit();
}

void PluginWrapper::doFixedSize(QSize size)
{
    setFixedSize(size);
}

void PluginWrapper::onPageLoadFinished(bool ok)
{
    if (ok)
        splash.end();
}

void PluginWrapper::showSplash()
{
    if (!manifest->splashImage.isEmpty())
        splash.show(picture(pluginDir.absoluteFilePath(manifest->splashImage)));
}

bool PluginWrapper::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    if (shuttingDown)
        return true;
    if (static_cast<QKeyEvent *>(event)->key() != Qt::Key_F1)
        return false;
    shutdownApplication();
    return true;
}

void PluginWrapper::keyPressEvent(QKeyEvent *)
{
    // Keys are the page's: what it leaves over goes nowhere, not to the launcher's windows.
}

void PluginWrapper::teardown()
{
    QWebSettings::globalSettings()->setAttribute(QWebSettings::LocalStorageEnabled, false);
    running = false;
    shuttingDown = true; // the launcher need not be told any more
    browser->hide();
    inspector->hide();
    emit resize(BoxScreen::size());
    QCoreApplication::processEvents(); // paints what was hidden, while all objects are still there
    delete browser;
    delete inspector;
    qApp->removeEventFilter(this);
}

void PluginWrapper::cleanupStbApi()
{
    BoxScreen::giveBack();
}

KAVRO_EXPORT_PLUGIN(PluginWrapper)
