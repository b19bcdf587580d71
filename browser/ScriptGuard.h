// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

/// What the box's toolkit offers pages of any object; today's offers more. Only its meta-object is of use.
class BoxObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString objectName READ objectName WRITE setObjectName)

signals:
    // For its name; nobody connects to it.
    void destroyed(QObject *object = nullptr); // clazy:exclude=overridden-signal

public slots:
    void deleteLater();
};

/// An object without members of its own. Only its meta-object is of use.
class MemberlessObject : public QObject
{
    Q_OBJECT
};

/// What a page sees in place of a script object: an object of the engine's own kind, so that it behaves as those do on
/// a box, where there are no guards. It lists the script object's members but has none; a script adds them, see
/// resources/page/guards.js.
class ScriptGuard : public QObject
{
public:
    /// The guarded object must outlive its guard.
    ScriptGuard(QObject *guarded, QObject *parent);

    QObject *guarded() const { return m_guarded; }

    /// Has the engine find the script object's names when it lists members. It looks members up where it did first.
    void showMembers();
    /// Takes over the script object's name, which the engine shows in the object's text.
    void copyName();

    const QMetaObject *metaObject() const override;

private:
    QObject *m_guarded;
    QMetaObject m_members;
    bool m_showsMembers;
};
