// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BareSubject.h"

#include <QWebFrame>
#include <QWebView>

BareSubject::BareSubject()
    : m_view(new QWebView(&m_screen))
{
    m_screen.setFixedSize(1920, 1080);
    QPalette black = m_screen.palette();
    black.setBrush(QPalette::Window, Qt::black);
    m_screen.setPalette(black);

    QWebSettings *settings = QWebSettings::globalSettings();
    settings->setAttribute(QWebSettings::XSSAuditingEnabled, false);
    settings->setAttribute(QWebSettings::LocalContentCanAccessFileUrls, true);
    settings->setAttribute(QWebSettings::LocalContentCanAccessRemoteUrls, true);
    m_view->settings()->setAttribute(QWebSettings::DeveloperExtrasEnabled, true);
    QPalette palette = m_view->palette();
    palette.setBrush(QPalette::Base, Qt::transparent);
    m_view->page()->setPalette(palette);
    m_view->setAttribute(Qt::WA_OpaquePaintEvent, false);
    m_view->setFixedSize(1280, 720);

    connect(m_view->page()->mainFrame(), &QWebFrame::javaScriptWindowObjectCleared, this, &BareSubject::addMedia);
    connect(this, &BareSubject::fired, this, &BareSubject::evaluateEvent, Qt::QueuedConnection);
}

void BareSubject::start(const QUrl &page)
{
    m_screen.show();
    m_view->load(page);
}

void BareSubject::fire(int argument)
{
    emit fired(argument);
}

void BareSubject::addMedia()
{
    m_view->page()->mainFrame()->addToJavaScriptWindowObject("StbMedia", &m_media);
    m_view->page()->mainFrame()->evaluateJavaScript(
        "StbMedia.SetEventCallback = function (callback) { StbMedia.eventCallback = callback; };");
}

void BareSubject::evaluateEvent(int argument)
{
    const QString text("if (typeof StbMedia.eventCallback != 'undefined') StbMedia.eventCallback(%1, 1);");
    m_view->page()->mainFrame()->evaluateJavaScript(text.arg(argument));
}
