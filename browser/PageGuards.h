// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QHash>
#include <QObject>
#include <QString>

class QWebFrame;
class ScriptGuard;

namespace KavroJS {
class StbPVR;
} // namespace KavroJS

/// Puts, in the one page that it is made for, a guard before each of the script objects, under the same name and with
/// the same members. Values that crash the engine on their way to a slot are stopped there, dates arrive as they were
/// sent, and a call costs less, since the guard's members are found faster than those of a QObject.
class PageGuards : public QObject
{
    Q_OBJECT

public:
    /// For a new page.
    PageGuards(QWebFrame *frame, QObject *parent);

    /// Has the page know the object's guard by this name.
    void add(const QString &name, QObject *object);
    /// Gives the guards their members, before the page's first script runs.
    void finish(KavroJS::StbPVR *pvr);

public slots:
    /// A relay to the object that the guard of this name stands for; from here on the guard lists its members.
    QObject *guarded(const QString &name);
    /// The object with the guard of this name has another objectName now.
    void rename(const QString &name);

private:
    QWebFrame *m_frame;
    QHash<QString, ScriptGuard *> m_guards;
};
