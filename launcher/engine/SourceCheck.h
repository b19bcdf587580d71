// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "LoadedTexts.h"

#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

class QJSEngine;

/// Looks at scripts, style sheets and pages for what the box's engine does not know. Well-known parsers do so, in a
/// script engine of their own, on a thread of their own, so that no page waits for it.
class SourceCheck : public QObject
{
    Q_OBJECT

public:
    SourceCheck();
    /// Breaks off what is going on.
    ~SourceCheck() override;

    static constexpr int largestText = LoadedTexts::largestText; // bytes
    /// Texts that may wait to be looked at.
    static constexpr int mostWaiting = 100;

public slots:
    /// Kinds are "script", "style" and "page". A text of more than largestText bytes is not looked at, nor are more
    /// than mostWaiting at a time, which is said.
    void look(const QString &address, const QString &kind, const QByteArray &text);

signals:
    /// A sentence for each thing that was found, with address and line. Once for each text, also if there is none.
    void looked(const QString &address, const QStringList &sentences);

private:
    void loadParsers();
    void dropParsers();
    void lookHere(const QString &address, const QString &kind, const QString &text);

    QThread m_thread;
    QTimer m_idle; // of the thread
    QMutex m_lock; // of what follows
    std::unique_ptr<QJSEngine> m_engine;
    bool m_isEnding = false;
    std::atomic<int> m_waiting = 0;
};
