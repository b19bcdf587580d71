// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptApi.h"
#include "ScriptMetaObject.h"
#include "tests/support/ListDifference.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QtTest>

#include <memory>

namespace {

QString declaration(const QMetaMethod &method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters += QString(method.parameterTypes().at(i) + ' ' + method.parameterNames().at(i)).trimmed();
    return QString("%1 %2(%3)").arg(method.typeName(), QString(method.name()), parameters.join(", "));
}

// A class's own methods of one kind, in their order.
QStringList declarations(const QMetaObject *metaObject, QMetaMethod::MethodType type)
{
    QStringList result;
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        if (metaObject->method(i).methodType() == type)
            result += declaration(metaObject->method(i));
    }
    return result;
}

// "int Name(int id)" is called "Name".
QStringList names(const QStringList &methods)
{
    QStringList result;
    for (const QString &method : methods)
        result += method.section('(', 0, 0).section(' ', -1);
    return result;
}

QStringList sorted(QStringList list)
{
    list.sort();
    list.removeDuplicates();
    return list;
}

} // namespace

// The script objects of the shipped plugin, as the toolkit describes them and as pages find them.
class TestScriptApi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void cleanupTestCase();

    void slotsAreTheseInThisOrder();
    void signalsAreTheseAndComeFirst();
    void allMembersArePublic();
    void propertiesAreTheseInThisOrder();
    void objectsPresentThemselvesByTheirClass();
    void pagesSeeTheMembersInThisOrder();
    void pagesSeeNoOtherMembers();
    void methodsCanBeCalledByTheirNames();
    void propertiesAreTexts();
    void pagesHaveTheseObjectsOnly();

private:
    const ScriptApi::Object &object() const;
    const QMetaObject *metaObject();
    QStringList pageMembers();

    std::unique_ptr<HostedPlugin> m_plugin;
};

void TestScriptApi::initTestCase_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < ScriptApi::objects().size(); ++i)
        QTest::newRow(qPrintable(ScriptApi::objects()[i].name)) << i;
}

void TestScriptApi::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml("<!DOCTYPE html><title>All</title>"));
}

void TestScriptApi::cleanupTestCase()
{
    m_plugin.reset();
}

const ScriptApi::Object &TestScriptApi::object() const
{
    QFETCH_GLOBAL(const int, index);
    return ScriptApi::objects()[index];
}

const QMetaObject *TestScriptApi::metaObject()
{
    return scriptMetaObject(m_plugin.get(), object().name);
}

QStringList TestScriptApi::pageMembers()
{
    const QString script = "(function () { var names = []; for (var name in %1) names.push(name); return names; })()";
    return m_plugin->evaluate(script.arg(object().name)).toStringList();
}

void TestScriptApi::slotsAreTheseInThisOrder()
{
    QVERIFY(metaObject());
    QCOMPARE(listDifference(declarations(metaObject(), QMetaMethod::Slot), object().methods), QString());
}

void TestScriptApi::signalsAreTheseAndComeFirst()
{
    QVERIFY(metaObject());
    QCOMPARE(listDifference(declarations(metaObject(), QMetaMethod::Signal), object().announcements), QString());
    const int offset = metaObject()->methodOffset();
    QCOMPARE(metaObject()->methodCount() - offset, object().announcements.size() + object().methods.size());
    for (int i = 0; i < object().announcements.size(); ++i)
        QCOMPARE(metaObject()->method(offset + i).methodType(), QMetaMethod::Signal);
}

void TestScriptApi::allMembersArePublic()
{
    const QMetaObject *const meta = metaObject();
    QVERIFY(meta);
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        QCOMPARE(meta->method(i).access(), QMetaMethod::Public);
    QCOMPARE(meta->constructorCount(), 0);
    QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
    QCOMPARE(meta->superClass(), &QObject::staticMetaObject);
}

void TestScriptApi::propertiesAreTheseInThisOrder()
{
    const QMetaObject *const meta = metaObject();
    QVERIFY(meta);
    QStringList found;
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        found += property.name();
        QCOMPARE(property.typeName(), "QString");
        QVERIFY2(property.isReadable() && property.isScriptable() && !property.isResettable(), property.name());
        QCOMPARE(property.isWritable(), object().hasWritableProperties);
        // Computed afresh on each read.
        QVERIFY2(!property.isConstant() && !property.hasNotifySignal(), property.name());
    }
    QCOMPARE(listDifference(found, object().properties), QString());
}

void TestScriptApi::objectsPresentThemselvesByTheirClass()
{
    QCOMPARE(m_plugin->evaluate("String(" + object().name + ")").toString(), object().className + "(name = \"\")");
}

void TestScriptApi::pagesSeeTheMembersInThisOrder()
{
    const QMetaObject *const meta = metaObject();
    QVERIFY(meta);
    QStringList expected;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        expected += meta->method(i).methodSignature();
    const QStringList seen = pageMembers().filter("(");
    QCOMPARE(listDifference(seen.mid(seen.size() - expected.size()), expected), QString());
}

void TestScriptApi::pagesSeeNoOtherMembers()
{
    const QStringList inherited = {"objectName", "destroyed", "deleteLater"};
    const QStringList own = object().properties + names(object().announcements + object().methods);
    QCOMPARE(listDifference(sorted(names(pageMembers())), sorted(own + inherited)), QString());
}

void TestScriptApi::methodsCanBeCalledByTheirNames()
{
    const QStringList methods = names(object().methods + object().additions);
    for (const QString &name : methods) {
        const QString member = object().name + '.' + name;
        QVERIFY2(m_plugin->evaluate("typeof " + member) == "function", qPrintable(member));
    }
}

void TestScriptApi::propertiesAreTexts()
{
    for (const QString &name : object().properties) {
        const QString member = object().name + '.' + name;
        QVERIFY2(m_plugin->evaluate("typeof " + member) == "string", qPrintable(member));
    }
}

// Under the window's own names there may be anything.
void TestScriptApi::pagesHaveTheseObjectsOnly()
{
    const QStringList seen = m_plugin->evaluate("Object.keys(window)")
                                 .toStringList()
                                 .filter(QRegExp("^stb|^kvr|^kavro", Qt::CaseInsensitive));
    QStringList objects;
    for (const ScriptApi::Object &object : ScriptApi::objects())
        objects += object.name;
    QCOMPARE(listDifference(sorted(seen), sorted(objects)), QString());
}

QTEST_MAIN(TestScriptApi)

#include "tst_scriptapi.moc"
