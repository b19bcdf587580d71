// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"

#include <QCoreApplication>
#include <QDir>
#include <QMetaEnum>
#include <QPainter>
#include <QTest>
#include <QWebElement>
#include <QWebFrame>
#include <QWebView>

QUrl PortalPage::url()
{
    const QString page = QCoreApplication::applicationDirPath() + "/../share/kavro/portal/index.html";
    return QUrl::fromLocalFile(QDir::cleanPath(page));
}

bool PortalPage::open(const QSize &size)
{
    close();
    PluginManifest manifest;
    manifest.resolution = size;
    HostedPlugin::writeManifest(manifest);
    qputenv("KAVRO_ENGINE", "box");
    m_plugin = std::make_unique<HostedPlugin>();
    m_plugin->application()->show();
    if (!m_plugin->start() || !m_plugin->load(url()))
        return false;
    evaluate(
        "errors = []; onerror = function (message, file, line) { errors.push(file + ':' + line + ': ' + message); }");
    return screen() == "home";
}

void PortalPage::forget()
{
    evaluate("localStorage.clear()");
}

void PortalPage::close()
{
    m_plugin.reset();
}

void PortalPage::press(const QString &keys)
{
    const QMetaEnum names = QMetaEnum::fromType<Qt::Key>();
    const QStringList presses = keys.split(' ', Qt::SkipEmptyParts);
    for (const QString &press : presses) {
        const QStringList parts = press.split('*');
        bool known = false;
        const int key = names.keyToValue(("Key_" + parts.first()).toLatin1(), &known);
        if (!known)
            qFatal("There is no key %s", qPrintable(press));
        for (int times = parts.size() == 2 ? parts.last().toInt() : 1; times > 0; --times)
            QTest::sendKeyEvent(QTest::Click, m_plugin->browser(), Qt::Key(key), QString(), Qt::NoModifier);
    }
}

QVariant PortalPage::evaluate(const QString &script)
{
    return m_plugin->evaluate(script);
}

QString PortalPage::text(const QString &selector)
{
    return texts(selector).value(0);
}

QStringList PortalPage::texts(const QString &selector)
{
    QStringList texts;
    const QWebElementCollection elements = m_plugin->browser()->page()->mainFrame()->findAllElements(selector);
    for (const QWebElement &element : elements)
        texts += element.toPlainText().simplified();
    return texts;
}

QString PortalPage::screen()
{
    return evaluate("document.body.getAttribute('data-screen')").toString();
}

QString PortalPage::focused()
{
    return evaluate("[].map.call(document.querySelectorAll('.focused'), function (e) { return e.id; }).join(' and ')")
        .toString()
        .remove("row-");
}

QStringList PortalPage::rows()
{
    return texts(".row");
}

bool PortalPage::isShown(const QString &selector)
{
    return !place(selector).isEmpty();
}

// Not asked by script, which this engine answers in pixels of the style sheets; but only a script's question brings the
// layout up to date.
QRect PortalPage::place(const QString &selector)
{
    evaluate("document.body.offsetWidth");
    return m_plugin->browser()->page()->mainFrame()->findFirstElement(selector).geometry();
}

QImage PortalPage::painted()
{
    QImage image(m_plugin->browser()->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    m_plugin->browser()->page()->mainFrame()->render(&painter);
    return image;
}

QStringList PortalPage::errors()
{
    return evaluate("errors").toStringList();
}

void PortalPage::playerIs(int state, long long position, long long duration)
{
    RecordingPlatform::answer("KVR_GetPlayerState", state);
    RecordingPlatform::answer("KVR_GetPosition", position);
    RecordingPlatform::answer("KVR_GetDuration", duration);
}

QByteArrayList PortalPage::takeCalls(const QByteArray &beginning)
{
    QByteArrayList found;
    const QByteArrayList calls = RecordingPlatform::takeCalls();
    for (const QByteArray &call : calls) {
        if (call.startsWith(beginning))
            found += call;
    }
    return found;
}

QByteArray PortalPage::takeLastCall(const QByteArray &beginning)
{
    const QByteArrayList calls = takeCalls(beginning);
    return calls.isEmpty() ? QByteArray() : calls.last();
}
