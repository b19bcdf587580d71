// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HostedPlugin.h"

#include "BoxFile.h"
#include "launcher/engine/BoxEngine.h"
#include "launcher/engine/WebView.h"

#include <QChildEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPluginLoader>
#include <QSignalSpy>
#include <QTest>
#include <QWebFrame>
#include <QWebView>

namespace {

// As in an installed tree, from the tests' own folder beside it.
const char *const pluginFile = "/../lib/kavro/libkavrostbbrowser.so";

constexpr int loadTimeout = 10000;

QString manifestFile()
{
    return fromOutside(HostedPlugin::pluginDirectory() + "PluginManifest.xml");
}

// Waits for the browser, as the desk box does.
class EngineForBrowser : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ChildPolished) {
            QObject *child = static_cast<QChildEvent *>(event)->child();
            if (child->inherits("QWebView"))
                m_engine = std::make_unique<BoxEngine>(WebView::page(child));
        }
        return false;
    }

private:
    std::unique_ptr<BoxEngine> m_engine;
};

bool finishedWell(QSignalSpy *loadFinished)
{
    if (loadFinished->isEmpty() && !loadFinished->wait(loadTimeout))
        return false;
    return loadFinished->last().at(0).toBool();
}

} // namespace

bool HostedPlugin::hasBoxEngine()
{
    return qgetenv("KAVRO_ENGINE") == "box";
}

QString HostedPlugin::pluginDirectory()
{
    return "/sdk/qt/STBGUI_PLUGIN/stbbrowser/";
}

void HostedPlugin::writeManifest(const PluginManifest &manifest)
{
    writeManifest(manifest.toXml());
}

void HostedPlugin::writeManifest(const QByteArray &text)
{
    QFile file(manifestFile());
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("Cannot write %s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
}

void HostedPlugin::removeManifest()
{
    QFile::remove(manifestFile());
}

HostedPlugin::HostedPlugin()
{
    QPluginLoader loader(QCoreApplication::applicationDirPath() + pluginFile);
    auto *plugin = qobject_cast<StbInterface *>(loader.instance());
    if (!plugin)
        qFatal("The plugin cannot be loaded: %s", qPrintable(loader.errorString()));
    m_application = static_cast<CStbApplication *>(plugin);
    if (hasBoxEngine()) {
        m_engine = std::make_unique<EngineForBrowser>();
        m_application->installEventFilter(m_engine.get());
    }
}

HostedPlugin::~HostedPlugin()
{
    destroy();
}

bool HostedPlugin::start()
{
    m_application->setFullPath(pluginDirectory());
    return QTest::qWaitFor([this] { return browser() != nullptr; });
}

QWebView *HostedPlugin::browser() const
{
    const QList<QWebView *> views = m_application ? m_application->findChildren<QWebView *>() : QList<QWebView *>();
    for (QWebView *view : views) {
        if (qstrcmp(view->metaObject()->className(), "KavroStbBrowser") == 0)
            return view;
    }
    return nullptr;
}

void HostedPlugin::destroy()
{
    delete m_application;
}

bool HostedPlugin::load(const QUrl &url)
{
    browser()->load(url);
    // Made afterwards, because the end of a load that was still going on has just been told.
    QSignalSpy loadFinished(browser(), SIGNAL(loadFinished(bool)));
    return finishedWell(&loadFinished);
}

bool HostedPlugin::loadHtml(const QString &html, const QUrl &baseUrl)
{
    QSignalSpy loadFinished(browser(), SIGNAL(loadFinished(bool)));
    browser()->setHtml(html, baseUrl);
    return finishedWell(&loadFinished);
}

bool HostedPlugin::waitForLoad(int milliseconds)
{
    return QSignalSpy(browser(), SIGNAL(loadFinished(bool))).wait(milliseconds);
}

QVariant HostedPlugin::evaluate(const QString &script)
{
    return browser()->page()->mainFrame()->evaluateJavaScript(script);
}

QString HostedPlugin::evaluateToJson(const QString &script)
{
    const QString quoted = QJsonDocument(QJsonArray{script}).toJson(QJsonDocument::Compact);
    return evaluate("(function () { try { var value = (0, eval)(" + quoted
                    + "[0]);"
                      "return typeof value === 'number' || value === undefined ? String(value) : JSON.stringify(value);"
                      "} catch (error) { return 'throws ' + error; } })()")
        .toString();
}
