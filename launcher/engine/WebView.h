// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QVariant>

/// What the desk box does with the plugin's web view, by name: it is not linked to the web engine, which comes with the
/// plugin only, so that it starts faster.
namespace WebView {

inline QObject *childOf(const QObject *parent, const char *className)
{
    const QObjectList &children = parent->children();
    for (QObject *child : children) {
        if (child->inherits(className))
            return child;
    }
    return nullptr;
}

/// The view's QWebPage.
inline QObject *page(const QObject *view)
{
    return childOf(view, "QWebPage");
}

/// The page's own QWebFrame.
inline QObject *mainFrame(const QObject *page)
{
    return childOf(page, "QWebFrame");
}

inline void evaluate(QObject *frame, const QString &script)
{
    QMetaObject::invokeMethod(frame, "evaluateJavaScript", Q_ARG(QString, script));
}

} // namespace WebView
