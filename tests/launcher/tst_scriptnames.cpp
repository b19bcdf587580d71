// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/engine/BoxEngine.h"
#include "launcher/engine/NameLists.h"

#include <QDirIterator>
#include <QJSEngine>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QWebFrame>
#include <QWebPage>
#include <QtTest>

#include <memory>

namespace {

// In a page with the box's engine: all names that a script finds there.
const char *const namesInPage = R"js((function () {
    var names = Object.getOwnPropertyNames(window);
    names.slice().forEach(function (name) {
        for (var object = window[name]; object !== null && object !== undefined; object = Object.getPrototypeOf(object)) {
            names = names.concat(Object.getOwnPropertyNames(object));
            if (typeof object === 'function' && object.prototype)
                names = names.concat(Object.getOwnPropertyNames(object.prototype));
        }
    });
    for (var name in document.body)
        names.push(name);
    return names;
})())js";

// With a parser: the names that a script uses, and those that it makes itself, as two arrays.
const char *const namesInScript = R"js((function (text) {
    var used = {}, made = {};
    function make(node) { if (node) made[node.name === undefined ? node.value : node.name] = true; }
    function walk(node) {
        switch (node.type) {
        case 'Identifier': used[node.name] = true; return;
        case 'VariableDeclarator': make(node.id); break;
        case 'FunctionDeclaration':
        case 'FunctionExpression': make(node.id); node.params.forEach(make); break;
        case 'CatchClause': make(node.param); break;
        case 'Property': make(node.key); break;
        case 'LabeledStatement': make(node.label); break;
        case 'AssignmentExpression':
            if (node.left.type === 'MemberExpression' && !node.left.computed) make(node.left.property);
            break;
        }
        Object.keys(node).forEach(function (key) {
            [].concat(node[key]).forEach(function (child) { if (child && child.type) walk(child); });
        });
    }
    walk(acorn.parse(text, {ecmaVersion: 5}));
    return [Object.keys(used), Object.keys(made)];
}))js";

QString textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QSet<QString> setOf(const QVariant &list)
{
    const QStringList names = list.toStringList();
    return {names.begin(), names.end()};
}

} // namespace

// The scripts of our own that run in pages on boxes use names that the box's engine has, the script objects' and their
// own.
class TestScriptNames : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void scriptsUseNamesThatABoxHas_data();
    void scriptsUseNamesThatABoxHas();
    void otherNamesAreFound_data();
    void otherNamesAreFound();

private:
    QStringList unknownNames(const QStringList &texts);
    QVariantList namesIn(const QString &text);

    QJSEngine m_parser;
    QSet<QString> m_known;
};

void TestScriptNames::initTestCase()
{
    QWebPage page;
    page.mainFrame();
    const BoxEngine engine(&page);
    page.mainFrame()->setHtml("<body></body>", QUrl("http://localhost/"));
    m_known = setOf(page.mainFrame()->evaluateJavaScript(namesInPage));
    QVERIFY(m_known.contains("querySelector") && m_known.contains("indexOf") && !m_known.contains("bind"));

    // The properties of an element's style.
    const QJsonObject lists = QJsonDocument::fromJson(NameLists::asJson(":/engine/styles.txt")).object();
    const QStringList properties = lists["properties"].toVariant().toStringList();
    for (const QString &property : properties) {
        QString name;
        const QStringList words = property.split('-', Qt::SkipEmptyParts);
        for (const QString &word : words)
            name += name.isEmpty() ? word : word[0].toUpper() + word.mid(1);
        m_known += name;
    }
    // The script objects and their members, as the reference names them.
    static const QRegularExpression member(R"(\b(\w+)\()");
    QDirIterator files(SOURCE_DIR "/docs/api", {"*.md"}, QDir::Files);
    while (files.hasNext()) {
        const QString text = textOf(files.next());
        m_known += files.fileInfo().baseName();
        for (auto match = member.globalMatch(text); match.hasNext();)
            m_known += match.next().captured(1);
        static const QRegularExpression code("`(\\w+)`");
        for (auto match = code.globalMatch(text); match.hasNext();)
            m_known += match.next().captured(1);
    }
    const QJSValue parser =
        m_parser.evaluate(textOf(":/engine/acorn.js").remove("'use strict';").remove("\"use strict\";"), "acorn.js");
    QVERIFY2(!parser.isError(), qPrintable(parser.toString()));
}

// What a script uses, and what it makes.
QVariantList TestScriptNames::namesIn(const QString &text)
{
    const QJSValue names = m_parser.evaluate(namesInScript).call({text});
    if (names.isError())
        qWarning("%s", qPrintable(names.toString()));
    return names.toVariant().toList();
}

QStringList TestScriptNames::unknownNames(const QStringList &texts)
{
    QSet<QString> used;
    QSet<QString> made;
    for (const QString &text : texts) {
        const QVariantList names = namesIn(text);
        used += setOf(names.value(0));
        made += setOf(names.value(1));
    }
    QStringList unknown = (used - made - m_known).values();
    unknown.sort();
    return unknown;
}

void TestScriptNames::scriptsUseNamesThatABoxHas_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("others"); // of the plugin's objects; errors have a stack where there are guards
    QTest::newRow("plugin") << "resources/page"
                            << QStringList{"members", "occurred", "rename", "require", "shown", "stack"};
    QTest::newRow("portal") << "portal/js" << QStringList{};
}

void TestScriptNames::scriptsUseNamesThatABoxHas()
{
    QFETCH(const QString, folder);
    QFETCH(const QStringList, others);
    QStringList texts;
    QDirIterator files(SOURCE_DIR "/" + folder, {"*.js"}, QDir::Files);
    while (files.hasNext())
        texts += textOf(files.next());
    QVERIFY(texts.size() > 1);
    QStringList unknown = unknownNames(texts);
    for (const QString &name : others)
        QVERIFY2(unknown.removeOne(name), qPrintable(name + " is used no more"));
    QCOMPARE(unknown.join(" "), QString());
}

void TestScriptNames::otherNamesAreFound_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("global") << "Reflect.apply(noName, null, [])" << QStringList{"Reflect", "noName"};
    QTest::newRow("member") << "(function () {}).bind(document)" << QStringList{"bind"};
    QTest::newRow("element") << "document.body.classList.add('a')" << QStringList{"classList"};
    QTest::newRow("own") << "var a = {bind: 1}; a.bind = function f(b) { return f(b); };" << QStringList();
    QTest::newRow("script object") << "StbMedia.PlayStream(StbMedia.CreatePlayer(), '')" << QStringList();
    QTest::newRow("known") << "document.getElementById('a').style.webkitTransform = ''" << QStringList();
}

void TestScriptNames::otherNamesAreFound()
{
    QFETCH(const QString, text);
    QTEST(unknownNames({text}), "names");
}

QTEST_MAIN(TestScriptNames)

#include "tst_scriptnames.moc"
