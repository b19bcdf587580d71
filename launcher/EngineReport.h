// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "engine/SourceCheck.h"

#include <QObject>
#include <QSet>

class PageConsole;

/// Says what of the page's scripts and style sheets the box's engine does not know, on standard error and in the page's
/// console. What has been said of a text is said again when the text has changed.
class EngineReport : public QObject
{
    Q_OBJECT

public:
    /// For the plugin's view. The console must outlive it.
    EngineReport(const QObject *view, PageConsole *console);

private:
    void say(const QString &address, const QStringList &sentences);

    PageConsole *m_console;
    QSet<QString> m_said;
    SourceCheck m_check;
};
