// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Key.h"

#include <QList>
#include <QObject>
#include <QTimer>

/// The keys of the option --keys, pressed one after the other.
class KeyScript : public QObject
{
    Q_OBJECT

public:
    struct Step
    {
        QString source;         ///< the step alone, as it would be given
        std::optional<Key> key; ///< a pause without
        int pause;              ///< milliseconds until the next step
    };

    /// Nothing, and a text saying what is wrong in error, if the text is not a list of keys.
    static std::optional<QList<Step>> parse(const QString &text, QString *error);

    explicit KeyScript(const QList<Step> &steps, QObject *parent = nullptr);

    /// Only the first call counts.
    void start();
    /// The steps to come, as text.
    QString remaining() const;

signals:
    void pressed(const Key &key);

private:
    void next();

    QList<Step> m_steps;
    QTimer m_timer;
    bool m_started = false;
};
