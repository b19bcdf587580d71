// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/ScriptRelay.h"

#include <QMetaMethod>

ScriptRelay::ScriptRelay(QObject *object, QObject *parent)
    : QObject(parent)
    , m_object(object)
    , m_members(object->metaObject())
{
    for (int i = 0; i < m_members->methodCount(); ++i) {
        if (m_members->method(i).methodType() == QMetaMethod::Signal)
            QMetaObject::connect(object, i, this, i);
    }
}

ScriptRelay::~ScriptRelay()
{
    disconnect(this, nullptr, nullptr, nullptr);
}

const QMetaObject *ScriptRelay::metaObject() const
{
    return m_members;
}

int ScriptRelay::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    // A page may emit signals too; those are the object's to emit first.
    const bool isEmitted = call == QMetaObject::InvokeMetaMethod && sender() == m_object
        && m_members->method(id).methodType() == QMetaMethod::Signal;
    if (!isEmitted)
        return m_object->qt_metacall(call, id, arguments);
    const QMetaObject *members = m_members;
    while (members->methodOffset() > id)
        members = members->superClass();
    QMetaObject::activate(this, members, id - members->methodOffset(), arguments);
    return -1;
}
