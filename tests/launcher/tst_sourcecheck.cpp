// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/engine/SourceCheck.h"

#include <QSignalSpy>
#include <QtTest>

#include <ctime>
#include <malloc.h>
#include <memory>

namespace {

constexpr int patience = 60000;         // ms
constexpr qint64 smallestParsers = 700; // KiB, of the least that they take

// The sanitizers keep what is freed for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool freedMemoryIsKept = true;
#else
constexpr bool freedMemoryIsKept = false;
#endif

// Memory of this process in KiB, without what only waits to be used again.
qint64 memoryInUse()
{
    malloc_trim(0);
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    return QString::fromLatin1(status.readAll()).section("RssAnon:", 1).section("kB", 0, 0).trimmed().toLongLong();
}

} // namespace

// What is found in scripts, style sheets and pages that the box's engine does not know.
class TestSourceCheck : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void scripts_data();
    void scripts();
    void styles_data();
    void styles();
    void pages_data();
    void pages();
    void knownThingsAreNotMentioned_data();
    void knownThingsAreNotMentioned();
    void eachThingIsSaidOnceWithItsFirstLine();
    void textsThatAreTooLargeAreNamed();
    void pagesCannotHaveItKeepMoreAndMore();
    void itGivesItsMemoryBackAndGoesOnAfterARest();
    void itCanBeEndedWhileItLooks();

private:
    QStringList sentences(const QString &kind, const QString &text);

    std::unique_ptr<SourceCheck> m_check;
};

void TestSourceCheck::initTestCase()
{
    m_check = std::make_unique<SourceCheck>();
}

void TestSourceCheck::cleanupTestCase()
{
    m_check.reset();
}

// Without the address, and without "the box's engine".
QStringList TestSourceCheck::sentences(const QString &kind, const QString &text)
{
    QSignalSpy looked(m_check.get(), &SourceCheck::looked);
    m_check->look("http://host/file", kind, text.toUtf8());
    if (looked.isEmpty() && !looked.wait(patience))
        return {"no answer"};
    QStringList sentences = looked.first().at(1).toStringList();
    for (QString &sentence : sentences)
        sentence.remove("http://host/file:").remove("the box's engine ");
    return sentences;
}

void TestSourceCheck::scripts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *text, const char *sentence) {
        QTest::newRow(text) << QString(text) << QString(sentence);
    };
    row("f = a => a", "1: reads no script with an arrow function; write function () { ... }");
    row("\n\nlet a = 1", "3: reads no script with let; write var");
    row("const a = 1", "1: takes const for the whole function, and later values without a word; write var");
    row("class A {}", "1: reads no script with a class; write a function and its prototype");
    row("a = class {}", "1: reads no script with a class; write a function and its prototype");
    row("a = `b`", "1: reads no script with a template text; write '...' + value");
    row("a = `b${c}`", "1: reads no script with a template text; write '...' + value");
    row("f(...a)", "1: reads no script with ...; write apply or concat");
    row("function f(...a) {}", "1: reads no script with ...; write arguments");
    row("function f(a = 1) {}", "1: reads no script with a default value; write a test for undefined");
    row("var {a} = b", "1: reads no script with a pattern of variables; write one variable after the other");
    row("var [a] = b", "1: reads no script with a pattern of variables; write one variable after the other");
    row("for (var a of b) {}", "1: reads no script with for ... of; write forEach or an index");
    row("function* f() {}", "1: reads no script with a generator; write a function that is called again");
    row("async function f() {}", "1: reads no script with async; write a function that is called when it is done");
    row("a = b?.c", "1: reads no script with ?.; write a && a.b");
    row("a = b ?? c", "1: reads no script with the operator ??; write a test for undefined");
    row("a = b ** c", "1: reads no script with the operator **; write Math.pow");
    row("a **= c", "1: reads no script with the operator **=; write Math.pow");
    row("import a from 'b'", "1: reads no script with a module; write a script element for each file");
    row("export default 1", "1: reads no script with a module; write a script element for each file");
    row("import('a')", "1: reads no script with a module; write a script element for each file");
    row("a = {b}", "1: reads no script with a short or computed property; write name: value");
    row("a = {b() {}}", "1: reads no script with a short or computed property; write name: value");
    row("a = {[b]: 1}", "1: reads no script with a short or computed property; write name: value");
    row("a = {class: 1}", "1: reads no script with the reserved word class as a name; write 'class'");
    row("a.catch(b)", "1: reads no script with the reserved word catch as a name; write ['catch']");
    row("a = /b/u", "1: leaves flags as in /.../u out of account; write g, i and m only");
    row("a = 0b1", "1: reads no script with the number 0b1; write a decimal or 0x number");
    row("a = 10n", "1: reads no script with the number 10n; write a decimal or 0x number");
    row("a = 1_000", "1: reads no script with the number 1_000; write a decimal or 0x number");
    row("a = '\\u{1f600}'", "1: reads no script with \\u{...}; write \\u and four digits");
    row("try { a } catch { b }", "1: reads no script with catch without a name; write catch (error)");
    row("a.addEventListener('b', c)",
        "1: wants the third argument of addEventListener; write addEventListener(type, listener, false)");
    row("a.removeEventListener('b', c)",
        "1: wants the third argument of removeEventListener; write removeEventListener(type, listener, false)");
    row("f(a,)", "1: reads no script with this: Unexpected token; write ECMAScript 5");
}

void TestSourceCheck::scripts()
{
    QFETCH(const QString, text);
    QTEST(sentences("script", text).value(0), "sentence");
}

void TestSourceCheck::styles_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *text, const char *sentence) {
        QTest::newRow(text) << QString(text) << QString(sentence);
    };
    row("a {\n display: flex }", "2: does not know display: flex; write display: -webkit-box");
    row("a { display: grid }", "1: does not know display: grid; write another display");
    row("a { flex: 1 }", "1: does not know the property flex; write -webkit-box-flex");
    row("a { justify-content: center }", "1: does not know the property justify-content; write -webkit-box-pack");
    row("a { grid-gap: 1px }", "1: does not know the property grid-gap; write something else, or nothing");
    row("a { transition: top 1s }", "1: does not know the property transition; write -webkit-transition");
    row("a { transform: none }", "1: does not know the property transform; write -webkit-transform");
    row("a { animation: b 1s }", "1: does not know the property animation; write -webkit-animation");
    row("a { box-shadow: none }", "1: does not know the property box-shadow; write -webkit-box-shadow");
    row("a { box-sizing: border-box }", "1: does not know the property box-sizing; write -webkit-box-sizing");
    row("a { object-fit: cover }", "1: does not know the property object-fit; write something else, or nothing");
    row("a { width: calc(1px + 2px) }", "1: does not know calc(); write a plain value");
    row("a { color: var(--b) }", "1: does not know var(); write a plain value");
    row("a { margin: 0 -1.5rem }", "1: does not know the unit rem; write px or em");
    row("a { width: 50vw }", "1: does not know the unit vw; write px or em");
    row("a { -webkit-transform: translate(1vh, 0) }", "1: does not know the unit vh; write px or em");
    row("a { background: linear-gradient(red, blue) }",
        "1: does not know linear-gradient(); write -webkit-gradient(linear, ...)");
    row("a { position: sticky }", "1: does not know position: sticky; write a plain value");
    row("a:not(.b, .c) { top: 0 }",
        "1: skips rules with the selector :not() with more than one simple selector; write another selector, or a "
        "class");
    row("a:not(.b.c) { top: 0 }",
        "1: skips rules with the selector :not() with more than one simple selector; write another selector, or a "
        "class");
    row("a, b:focus-within { top: 0 }",
        "1: skips rules with the selector :focus-within; write another selector, or a class");
    row("a::placeholder { top: 0 }",
        "1: skips rules with the selector ::placeholder; write another selector, or a class");
    row("a[b=c i] { top: 0 }", "1: skips rules with the selector [... i]; write another selector, or a class");
    row("@supports (display: grid) { a { top: 0 } }", "1: skips @supports with all in it; write rules without it");
    row("@keyframes a { from { top: 0 } }", "1: does not know @keyframes; write @-webkit-keyframes");
    row("@media (min-width: 1px) {\n a { flex: 1 } }", "2: does not know the property flex; write -webkit-box-flex");
    row("@-webkit-keyframes a { from { top: 1rem } }", "1: does not know the unit rem; write px or em");
}

void TestSourceCheck::styles()
{
    QFETCH(const QString, text);
    QTEST(sentences("style", text).value(0), "sentence");
}

void TestSourceCheck::pages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("sentences");
    const auto row = [](const char *name, const char *text, const QStringList &sentences) {
        QTest::newRow(name) << QString(text) << sentences;
    };
    const QString let = ": reads no script with let; write var";
    const QString flex = ": does not know the property flex; write -webkit-box-flex";
    row("script", "<title>a</title>\n<script>\nvar a;\nlet b;\n</script>", {"4" + let});
    row("script with attributes", "<script type=\"text/javascript\" async>let b</script>", {"1" + let});
    row("script with other line ends", "<p>\r\n<script>\r\nlet b\r\n</script>", {"3" + let});
    row("style", "<style>\na { flex: 1 }\n</style>", {"2" + flex});
    row("attribute", "<p>\n<b\n style=\"flex: 1\">", {"2" + flex});
    row("two scripts", "<script>let a</script>\n<script>var f = () => 1</script>",
        {"1" + let, "2: reads no script with an arrow function; write function () { ... }"});
    row("template", "<script type=\"text/x-template\">let b</script>", {});
    row("script in a comment", "<!-- <script>let b</script> -->", {});
    row("elsewhere", "<script src=\"a.js\"></script><link rel=\"stylesheet\" href=\"a.css\">", {});
}

void TestSourceCheck::pages()
{
    QFETCH(const QString, text);
    QTEST(sentences("page", text), "sentences");
}

void TestSourceCheck::knownThingsAreNotMentioned_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *kind, const char *text) { QTest::newRow(text) << QString(kind) << QString(text); };
    row("script", "'use strict'; var a = {get b() { return 1; }, 'class': [1, 2,]}; a['default'] = /b/gi; // let");
    row("script", "a.addEventListener('b', c, false); addEventListener('b', c)");
    row("script", "var let_ = 'const', s = \"`${a}`\", n = 0x1f + 1e3 + 08; label: for (var i in n) break label;");
    row("script", "");
    row("script", "not a script (");
    row("style", "a { display: -webkit-box; display: flex; -webkit-box-flex: 1; flex: 1 }");
    row("style", "a { -webkit-transition: top 1s; transition: top 1s; -moz-box-shadow: none; *zoom: 1; --b: c }");
    row("style", "a { background: red; background: linear-gradient(red, blue) }");
    row("style", "a { width: 100px; width: calc(100% - 1px); color: #fff !important; background: url(a1px.png) }");
    row("style", "a:not(.b):hover > c + d ~ e[f^='g']::before, h:nth-child(2n+1) { content: '1rem'; opacity: .5 }");
    row("style", "@-webkit-keyframes a { from { top: 0 } } @keyframes a { from { top: 0 } }");
    row("style", "@font-face { font-family: a; src: url(a.ttf) } @media screen { a { border-radius: 1px } }");
    row("style", "a::-moz-selection { color: red }");
    row("style", "");
}

void TestSourceCheck::knownThingsAreNotMentioned()
{
    QFETCH(const QString, kind);
    QFETCH(const QString, text);
    QCOMPARE(sentences(kind, text), QStringList());
}

void TestSourceCheck::eachThingIsSaidOnceWithItsFirstLine()
{
    QCOMPARE(sentences("script", "var a;\nlet b;\nlet c;\n\nlet d; f = () => 1; g = () => 2"),
             QStringList({"2: reads no script with let (and 2 times more); write var",
                          "5: reads no script with an arrow function (and once more); write function () { ... }"}));
}

void TestSourceCheck::textsThatAreTooLargeAreNamed()
{
    const QStringList said = sentences("script", QString(SourceCheck::largestText + 1, ' '));
    QCOMPARE(said.size(), 1);
    QVERIFY2(said.first().contains("more than 2097152 bytes"), qPrintable(said.first()));
}

void TestSourceCheck::pagesCannotHaveItKeepMoreAndMore()
{
    const QStringList usual = sentences("script", "let a");
    QSignalSpy looked(m_check.get(), &SourceCheck::looked);
    const QByteArray text = QByteArray("f(function () { return [1, 2, 3]; });\n").repeated(50);
    const int count = SourceCheck::mostWaiting + 50;
    for (int i = 0; i < count; ++i)
        m_check->look("http://host/file", "script", text);
    const int refused = looked.count();
    QVERIFY(refused > 0);
    QVERIFY(looked.first().at(1).toStringList().value(0).endsWith("there are too many others"));
    QTRY_COMPARE_WITH_TIMEOUT(looked.count(), count, patience);
    QCOMPARE(sentences("script", "let a"), usual);
}

void TestSourceCheck::itGivesItsMemoryBackAndGoesOnAfterARest()
{
    QCOMPARE(sentences("script", "let a").size(), 1);
    const qint64 memory = memoryInUse();
    QTRY_VERIFY_WITH_TIMEOUT(freedMemoryIsKept || memoryInUse() < memory - smallestParsers, patience);
    QCOMPARE(sentences("script", "let a").size(), 1);
}

// Its end does not wait for a text of half a minute.
void TestSourceCheck::itCanBeEndedWhileItLooks()
{
    auto check = std::make_unique<SourceCheck>();
    QSignalSpy looked(check.get(), &SourceCheck::looked);
    check->look("short", "script", "let a");
    QVERIFY(looked.wait(patience));
    check->look("long", "script", QByteArray("f(function () { return [1, 2, 3]; });\n").repeated(50000));
    const std::clock_t begin = std::clock();
    QTRY_VERIFY(std::clock() - begin > CLOCKS_PER_SEC / 10); // it has begun to
    check.reset();
    QCoreApplication::processEvents();
    QCOMPARE(looked.count(), 1);
}

QTEST_MAIN(TestSourceCheck)

#include "tst_sourcecheck.moc"
