// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

/// Stands for a script object in one page: has its members, passes calls on to it and its signals back. The engine
/// keeps what it makes of an object as long as the object lives, and would give the next page functions and lists of
/// this one.
class ScriptRelay : public QObject
{
public:
    /// The object must outlive its relay.
    ScriptRelay(QObject *object, QObject *parent);
    /// No page hears of its end.
    ~ScriptRelay() override;

    const QMetaObject *metaObject() const override;
    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QObject *m_object;
    const QMetaObject *m_members;
};
