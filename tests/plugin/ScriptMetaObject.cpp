// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptMetaObject.h"

#include <QCoreApplication>
#include <QEvent>
#include <QtTest>

namespace {

/// Sees what objects of a class are to be deleted later.
class DeletionWatch : public QObject
{
public:
    explicit DeletionWatch(const QByteArray &className)
        : m_className(className)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // Not all that gets events has a class that this program knows.
        if (event->type() == QEvent::DeferredDelete
            && QByteArray(watched->metaObject()->className()).endsWith(m_className))
            m_found = watched->metaObject();
        return false;
    }

    const QMetaObject *found() const { return m_found; }

private:
    const QByteArray m_className;
    const QMetaObject *m_found = nullptr;
};

} // namespace

// An event filter sees the effect of a page's call of the inherited deleteLater, which has no other effect.
const QMetaObject *scriptMetaObject(HostedPlugin *plugin, const QString &object)
{
    const DeletionWatch watch("::" + object.toLatin1());
    plugin->evaluate(object + ".deleteLater()");
    return QTest::qWaitFor([&] { return watch.found(); }) ? watch.found() : nullptr;
}
