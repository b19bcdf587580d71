// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

/// Shows on standard error what the plugin's page writes to its console, and its scripts' errors.
class PageConsole : public QObject
{
    Q_OBJECT

public:
    /// Of the page in a web view.
    explicit PageConsole(const QObject *view);

    /// Writes a warning to the page's console only.
    void warn(const QString &text);

private:
    // As in the web engine's QWebPage. The launcher is not linked to the engine, so that it starts faster.
    enum MessageSource : unsigned {};
    enum MessageLevel : unsigned { WarningLevel = 2, ErrorLevel = 3 };

private slots:
    // The engine's signal does not qualify the types, and is connected by their names.
    // clazy:excludeall=fully-qualified-moc-types
    void show(MessageSource, MessageLevel level, const QString &message, int line, const QString &file);

private:
    QPointer<QObject> m_frame;
    QString m_ownMessage;
};
