// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

class QWebFrame;

/// Brings platform events to the one page that it is made for. A function in the page listens to a signal: evaluating a
/// text for each event would cost thirty times as much, and would grow the engine's caches with each text.
class PageEvents : public QObject
{
    Q_OBJECT

public:
    /// For a new page, before its first script runs. The script object of this name is replaced; it is the one whose
    /// eventCallback the page sets.
    PageEvents(QWebFrame *frame, const QString &mediaName, QObject *parent);

    /// Gives the script object that has taken its place the method that sets the eventCallback.
    void addSetter();
    /// Calls the page's eventCallback, if it has one.
    void deliver(int argument, int code);
    /// Whether a text is a whole script, not one that waits for more.
    bool isWhole(const QString &text);

public slots:
    void refuse();

signals:
    void occurred(int argument, int code);
    void shown(const QString &text);

private:
    QWebFrame *m_frame;
    bool m_isWhole;
};
