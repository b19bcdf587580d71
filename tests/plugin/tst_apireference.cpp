// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptApi.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/ListDifference.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QtTest>

#include <algorithm>
#include <memory>

namespace {

// All first captures of a pattern whose ^ and $ are those of lines.
QStringList captures(const QString &text, const QString &pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList result;
    for (auto matches = expression.globalMatch(text); matches.hasNext();)
        result += matches.next().captured(1);
    return result;
}

// "Name" of "int Name(int id, QString url)", and of "Name(id, url)".
QString nameOf(const QString &method)
{
    return method.section('(', 0, 0).section(' ', -1);
}

QStringList namesOf(QStringList methods)
{
    std::transform(methods.begin(), methods.end(), methods.begin(), nameOf);
    return methods;
}

QStringList parametersOf(const QString &method)
{
    return method.section('(', 1).section(')', 0, 0).split(", ", Qt::SkipEmptyParts);
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

// The references in docs/api, against the interface that they describe.
class TestApiReference : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanupTestCase();

    void itHasEachMethodOnce();
    void itHasEachParameter();
    void itHasEachPropertyOnce();
    void itNamesNothingElse();
    void itsExamplesAreScripts();
    void itHasEachEvent();

private:
    const ScriptApi::Object &object() const;
    QStringList describedMethods() const;

    std::unique_ptr<HostedPlugin> m_plugin;
    QString m_reference;
};

void TestApiReference::initTestCase_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < ScriptApi::objects().size(); ++i)
        QTest::newRow(qPrintable(ScriptApi::objects()[i].name)) << i;
}

void TestApiReference::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml("<!DOCTYPE html><title>References</title>"));
}

void TestApiReference::init()
{
    QFile file(QCoreApplication::applicationDirPath() + "/docs/api/" + object().name + ".md");
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName() + ": " + file.errorString()));
    m_reference = QString::fromUtf8(file.readAll());
}

void TestApiReference::cleanupTestCase()
{
    m_plugin.reset();
}

const ScriptApi::Object &TestApiReference::object() const
{
    QFETCH_GLOBAL(const int, index);
    return ScriptApi::objects()[index];
}

// In headings, and in first cells of tables.
QStringList TestApiReference::describedMethods() const
{
    return captures(m_reference, R"(^(?:#### |\| )`(\w+\([^`]*\))`)");
}

void TestApiReference::itHasEachMethodOnce()
{
    const QStringList described = namesOf(describedMethods());
    QStringList expected = namesOf(object().methods + object().additions);
    // Without the method again that has arguments that may be left out.
    expected.removeDuplicates();
    QCOMPARE(listDifference(sorted(described), sorted(expected)), QString());
}

// By their names, if they have any.
void TestApiReference::itHasEachParameter()
{
    QMap<QString, QStringList> described;
    const QStringList methods = describedMethods();
    for (const QString &method : methods)
        described[nameOf(method)] = parametersOf(method);
    for (const QString &method : object().methods) {
        // Behind a method comes the same without the arguments that may be left out.
        if (!described.contains(nameOf(method)))
            continue;
        const QStringList names = described.take(nameOf(method));
        const QStringList parameters = parametersOf(method);
        QVERIFY2(names.size() == parameters.size(), qPrintable(method));
        for (int i = 0; i < names.size(); ++i) {
            const QString name = parameters[i].section(' ', 1);
            QVERIFY2(name.isEmpty() || name == names[i], qPrintable(method));
        }
    }
}

// Under a heading of its own, or in the table at the beginning of a section.
void TestApiReference::itHasEachPropertyOnce()
{
    static const QRegularExpression heading("\n##+ (?=The box\n|Properties\n)");
    const QStringList sections = m_reference.split(heading).mid(1);
    QStringList found = captures(m_reference, R"(^### The property `(\w+)`$)");
    for (const QString &section : sections)
        found += captures(section.section("\n##", 0, 0), R"(^\| `(\w+)` \|)");
    QCOMPARE(listDifference(found, object().properties), QString());
}

// Wherever it uses a script object, the object has that member. What looks so too is files, and what a page stores.
void TestApiReference::itNamesNothingElse()
{
    QStringList uses = captures(
        m_reference, R"(\b((?:stb_media|stb_display|StbMedia|StbDisplay|StbPVR)\.(?!(?:md|eventCallback)\b)\w+))");
    uses.removeDuplicates();
    QVERIFY(!uses.isEmpty());
    for (const QString &use : uses) {
        const QString script = QString("'%2' in %1").arg(use.section('.', 0, 0), use.section('.', 1));
        QVERIFY2(m_plugin->evaluate(script).toBool(), qPrintable(use));
    }
}

void TestApiReference::itsExamplesAreScripts()
{
    static const QRegularExpression block(
        "^```js\n(.*?)^```", QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    int count = 0;
    for (auto matches = block.globalMatch(m_reference); matches.hasNext(); ++count) {
        const QString example = matches.next().captured(1);
        const QString quoted = QJsonDocument(QJsonArray{example}).toJson(QJsonDocument::Compact);
        // What a method answers is a value, not a script.
        const QString script =
            (example.startsWith('{') ? "new Function('return ' + " : "new Function(") + quoted + "[0])";
        QVERIFY2(m_plugin->evaluate("typeof " + script) == "function", qPrintable(example));
    }
    QCOMPARE(count, captures(m_reference, "^```(js)$").size());
}

void TestApiReference::itHasEachEvent()
{
    QCOMPARE(captures(m_reference.section("## Events", 1), R"(^\| (\d+) \|)").join(' '), object().events);
}

QTEST_MAIN(TestApiReference)

#include "tst_apireference.moc"
