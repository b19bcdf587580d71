// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageConsole.h"

#include "Report.h"
#include "engine/WebView.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

const int longestText = 2000; // characters

QString clipped(const QString &text)
{
    return text.size() > longestText ? text.left(longestText) + "..." : text;
}

} // namespace

PageConsole::PageConsole(const QObject *view)
{
    const QObject *page = WebView::page(view);
    m_frame = WebView::mainFrame(page);
    connect(page, SIGNAL(consoleMessageReceived(MessageSource, MessageLevel, QString, int, QString)),
            SLOT(show(MessageSource, MessageLevel, QString, int, QString)));
}

void PageConsole::warn(const QString &text)
{
    m_ownMessage = text;
    const QByteArray quoted = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    if (m_frame)
        WebView::evaluate(m_frame, "console.warn(" + QString::fromUtf8(quoted) + "[0])");
    m_ownMessage.clear();
}

void PageConsole::show(MessageSource, MessageLevel level, const QString &message, int line, const QString &file)
{
    if (!m_ownMessage.isEmpty() && message == m_ownMessage)
        return;
    const QString kind = level == ErrorLevel ? "console error" : level == WarningLevel ? "console warning" : "console";
    report(QString("%1: %2 (%3:%4)").arg(kind, clipped(message), clipped(file), QString::number(line)));
}
