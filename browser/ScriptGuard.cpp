// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/ScriptGuard.h"

#include "common/other/qtcompat.h"

namespace {

QMetaObject derivedFrom(const QMetaObject *base, const QMetaObject &metaObject)
{
    QMetaObject derived = metaObject;
    QtCompat::setSuperClass(derived, base);
    return derived;
}

} // namespace

void BoxObject::deleteLater() { }

ScriptGuard::ScriptGuard(QObject *guarded, QObject *parent)
    : QObject(parent)
    , m_guarded(guarded)
    , m_showsMembers(false)
{
    // Each of the script objects' classes is derived from QObject itself.
    static const QMetaObject anyObject = derivedFrom(nullptr, BoxObject::staticMetaObject);
    m_members = derivedFrom(&anyObject, *guarded->metaObject());
    copyName();
}

void ScriptGuard::showMembers()
{
    m_showsMembers = true;
}

void ScriptGuard::copyName()
{
    setObjectName(m_guarded->objectName());
}

const QMetaObject *ScriptGuard::metaObject() const
{
    // The engine keeps what it makes of it, so it must last.
    static const QMetaObject noMembers = derivedFrom(nullptr, MemberlessObject::staticMetaObject);
    return m_showsMembers ? &m_members : &noMembers;
}
