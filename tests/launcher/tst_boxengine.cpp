// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/engine/BoxEngine.h"

#include <QSignalSpy>
#include <QWebFrame>
#include <QWebPage>
#include <QtTest>

#include <memory>

namespace {

// A page that keeps its console.
class Page : public QWebPage
{
public:
    QStringList messages;

protected:
    void javaScriptConsoleMessage(const QString &message, int, const QString &) override { messages += message; }
};

} // namespace

// What scripts find of the engine when it is shown as a box's.
class TestBoxEngine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whatABoxLacksIsGone_data();
    void whatABoxLacksIsGone();
    void whatABoxHasStays_data();
    void whatABoxHasStays();
    void interfacesThatMakeNothingThereRefuse_data();
    void interfacesThatMakeNothingThereRefuse();
    void framesAreTheSame_data();
    void framesAreTheSame();
    void missingNamesAreErrors();
    void polyfillsInstallThemselves();
    void eachDocumentIsTheSame();
    void aPagesOwnNamesStay();

private:
    void show(const QString &html);
    QString result(const QString &script) { return m_page->mainFrame()->evaluateJavaScript(script).toString(); }

    std::unique_ptr<Page> m_page;
    std::unique_ptr<BoxEngine> m_engine;
};

void TestBoxEngine::init()
{
    m_page = std::make_unique<Page>();
    m_page->setViewportSize(QSize(640, 480));
    m_page->mainFrame();
    m_engine = std::make_unique<BoxEngine>(m_page.get());
    show("<!DOCTYPE html><title>page</title><body></body>");
}

void TestBoxEngine::cleanup()
{
    m_engine.reset();
    m_page.reset();
}

void TestBoxEngine::show(const QString &html)
{
    QSignalSpy loaded(m_page.get(), &QWebPage::loadFinished);
    m_page->mainFrame()->setHtml(html, QUrl("http://localhost/"));
    QVERIFY(!loaded.isEmpty() || loaded.wait());
}

void TestBoxEngine::whatABoxLacksIsGone_data()
{
    QTest::addColumn<QString>("expression");
    for (const char *name : {"Reflect",
                             "Symbol",
                             "Map",
                             "Set",
                             "WeakMap",
                             "WeakSet",
                             "Promise",
                             "Proxy",
                             "ArrayBuffer",
                             "Uint8Array",
                             "Float64Array",
                             "DataView",
                             "Intl",
                             "requestAnimationFrame",
                             "webkitRequestAnimationFrame",
                             "performance",
                             "MutationObserver",
                             "WebKitMutationObserver",
                             "URL",
                             "webkitURL",
                             "FileReader",
                             "fetch",
                             "Headers",
                             "CSS",
                             "HTMLVideoElement",
                             "HTMLAudioElement",
                             "Audio",
                             "MediaError",
                             "matchMedia",
                             "indexedDB",
                             "Notification",
                             "CustomEvent",
                             "DOMTokenList",
                             "crypto.subtle",
                             "customElements",
                             "TextDecoder",
                             "onerror",
                             "Function.prototype.bind",
                             "Object.freeze",
                             "Object.seal",
                             "Object.isExtensible",
                             "Object.preventExtensions",
                             "Object.assign",
                             "Object.is",
                             "Object.setPrototypeOf",
                             "Object.getOwnPropertySymbols",
                             "Array.from",
                             "Array.of",
                             "Array.prototype.find",
                             "Array.prototype.findIndex",
                             "Array.prototype.fill",
                             "Array.prototype.includes",
                             "Array.prototype.entries",
                             "String.prototype.startsWith",
                             "String.prototype.includes",
                             "String.prototype.repeat",
                             "String.prototype.padStart",
                             "String.raw",
                             "Math.sign",
                             "Math.trunc",
                             "Math.hypot",
                             "Number.isInteger",
                             "Number.parseFloat",
                             "RegExp.prototype.flags",
                             "Element.prototype.classList",
                             "document.body.classList",
                             "document.body.dataset",
                             "document.body.closest",
                             "document.body.matches",
                             "document.body.remove",
                             "document.hidden",
                             "document.currentScript",
                             "navigator.geolocation",
                             "navigator.mediaDevices",
                             "console.table",
                             "document.createElement('video').play",
                             "document.createElement('video').canPlayType",
                             "document.createElement('audio').volume",
                             "document.createElement('template').content"})
        QTest::newRow(name) << name;
}

void TestBoxEngine::whatABoxLacksIsGone()
{
    QFETCH(const QString, expression);
    QCOMPARE(result("typeof " + expression), QString("undefined"));
    const QString object = expression.contains('.') ? expression.section('.', 0, -2) : "window";
    QCOMPARE(
        result("try { String('" + expression.section('.', -1) + "' in " + object + ") } catch (error) { 'false' }"),
        QString("false"));
}

void TestBoxEngine::whatABoxHasStays_data()
{
    QTest::addColumn<QString>("expression");
    for (const char *expression :
         {"Object.create({a: 1}).a === 1",
          "Object.keys(Object.defineProperty({}, 'a', {enumerable: true})).length === 1",
          "Object.getOwnPropertyNames({a: 1})[0] === 'a'",
          "Object.getPrototypeOf([]) === Array.prototype",
          "Object.getOwnPropertyDescriptor({get a() {}}, 'a').get !== undefined",
          "Array.isArray([])",
          "[3, 1].map(String).filter(Boolean).reduce(function (a, b) { return a + b; }) === '31'",
          "[1].every(Boolean) && [1].some(Boolean) && [1].indexOf(1) === 0 && [2].lastIndexOf(2) === 0",
          "' x '.trim() === 'x'",
          "typeof Date.now() === 'number'",
          "new Date(0).toISOString().length === 24",
          "JSON.parse(JSON.stringify({a: [1]})).a[0] === 1",
          "document.querySelector('body') === document.body",
          "typeof WebSocket === 'function'",
          "typeof EventSource === 'function'",
          "typeof Worker === 'function'",
          "document.createElement('canvas').getContext('2d') !== null",
          "'webkitTransform' in document.body.style",
          "'webkitBoxFlex' in document.body.style",
          "document.createEvent('Event') instanceof Event",
          "document.createEvent('MouseEvents') instanceof MouseEvent",
          "new XMLHttpRequest() instanceof XMLHttpRequest",
          "document.body.addEventListener !== undefined",
          "document.body.getBoundingClientRect().width > 0",
          "document.body.click !== undefined",
          "Math.max(1, 2) === 2",
          "Number.MAX_VALUE > 1",
          "Node.ELEMENT_NODE === 1",
          "Event.CAPTURING_PHASE === 1",
          "parseInt('7', 10) === 7",
          "typeof setTimeout === 'function'",
          "history.pushState !== undefined",
          "location.href.length > 0",
          "screen.width > 0 && screen.availHeight > 0",
          "locationbar.visible !== undefined",
          "getSelection().rangeCount === 0 && getSelection().removeAllRanges() === undefined",
          "document.createTreeWalker(document, -1, null, false).nextNode() !== null",
          "document.createNodeIterator(document, -1, null, false).nextNode() !== null",
          "document.createElement('canvas').getContext('2d').createLinearGradient(0, 0, 1, 1).addColorStop(0, 'red') "
          "=== "
          "undefined",
          "document.createExpression('//body', null).evaluate(document, 0, null) !== null",
          "Function.prototype.apply.call(function (a) { return a; }, null, [7]) === 7",
          "(function () { return typeof arguments.callee; })() === 'function'"})
        QTest::newRow(expression) << expression;
}

void TestBoxEngine::whatABoxHasStays()
{
    QFETCH(const QString, expression);
    QCOMPARE(result("String(" + expression + ")"), QString("true"));
}

void TestBoxEngine::interfacesThatMakeNothingThereRefuse_data()
{
    QTest::addColumn<QString>("call");
    for (const char *call : {"new Event('x')", "new MouseEvent('click')", "new KeyboardEvent('keydown')",
                             "new Blob(['x'])", "new Document()", "new Range()", "Event('x')"})
        QTest::newRow(call) << call;
}

void TestBoxEngine::interfacesThatMakeNothingThereRefuse()
{
    QFETCH(const QString, call);
    QCOMPARE(result("try { " + call + "; 'made' } catch (error) { error.name }"), QString("TypeError"));
}

void TestBoxEngine::framesAreTheSame_data()
{
    QTest::addColumn<QString>("html");
    const QString tell = "parent.seen = typeof Symbol + typeof Function.prototype.bind + typeof JSON";
    QTest::newRow("in the page") << "<iframe srcdoc='<script>" + tell + "</script>'></iframe>";
    QTest::newRow("made by script")
        << "<body><script>var frame = document.createElement('iframe'); document.body.appendChild(frame);"
           "frame.contentDocument.write('<script>"
            + tell + "</' + 'script>');</script>";
    QTest::newRow("asked by its parent")
        << "<body><script>var other = document.body.appendChild(document.createElement('iframe')).contentWindow;"
           "seen = typeof other.Symbol + typeof other.Function.prototype.bind + typeof other.JSON;</script>";
    QTest::newRow("in a frame") << "<iframe srcdoc=\"<iframe srcdoc='<script>parent." + QString(tell)
            + "</script>'></iframe>\"></iframe>";
}

void TestBoxEngine::framesAreTheSame()
{
    QFETCH(const QString, html);
    show(html);
    QTRY_COMPARE(result("String(window.seen)"), QString("undefinedundefinedobject"));
}

void TestBoxEngine::missingNamesAreErrors()
{
    show("<script>new Promise(function () {});</script><script>(function () {}).bind(null);</script>");
    QCOMPARE(m_page->messages.size(), 2);
    QVERIFY(m_page->messages.at(0).contains("Can't find variable: Promise"));
    QVERIFY(m_page->messages.at(1).contains("bind is not a function"));
}

void TestBoxEngine::polyfillsInstallThemselves()
{
    show("<script>if (!Function.prototype.bind) Function.prototype.bind = function (self) {"
         "var f = this; return function () { return f.apply(self, arguments); }; };"
         "if (!window.Promise) window.Promise = 'mine';"
         "if (!('classList' in document.createElement('p'))) Object.defineProperty(Element.prototype, 'classList',"
         "{get: function () { return this.className.split(' '); }});</script><body class='a b'>");
    QCOMPARE(
        result("[(function () { return this.a; }).bind({a: 5})(), Promise, document.body.classList.length].join()"),
        QString("5,mine,2"));
    QCOMPARE(m_page->messages, QStringList());
}

void TestBoxEngine::eachDocumentIsTheSame()
{
    show("<script>seen = typeof Map</script>");
    QCOMPARE(result("seen"), QString("undefined"));
    show("<script>seen = 'again ' + typeof Map</script>");
    QCOMPARE(result("seen"), QString("again undefined"));
}

// The engine may tell of a window again that it has told of before.
void TestBoxEngine::aPagesOwnNamesStay()
{
    result("var mine = 1; Promise = 2; Array.prototype.find = 3; Element.prototype.classList = 4");
    QVERIFY(QMetaObject::invokeMethod(m_page->mainFrame(), "javaScriptWindowObjectCleared"));
    QCOMPARE(result("[mine, Promise, [].find, Element.prototype.classList].join()"), QString("1,2,3,4"));
}

QTEST_MAIN(TestBoxEngine)

#include "tst_boxengine.moc"
