// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QPointer>

/// Finds a script object itself, which neither pages nor launchers can get hold of: an application's event filter sees
/// the effect of a page's call of its inherited deleteLater, which has no other effect.
class ScriptObjectFinder : public QObject
{
public:
    explicit ScriptObjectFinder(const char *className)
        : m_className(className)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::DeferredDelete && qstrcmp(watched->metaObject()->className(), m_className) == 0)
            m_found = watched;
        return false;
    }

    /// Null until the page has called deleteLater.
    const QObject *found() const { return m_found; }

private:
    const char *m_className;
    QPointer<QObject> m_found;
};
