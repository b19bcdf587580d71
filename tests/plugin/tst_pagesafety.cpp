// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RefusedCalls.h"
#include "ScriptSession.h"
#include "StreamCapture.h"
#include "tests/platform/RecordingPlatform.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QWebSettings>
#include <QtTest>

#include <memory>

namespace {

const char *const helpers = R"js(
    var objects = {StbMedia: StbMedia, StbDisplay: StbDisplay, StbPVR: StbPVR, stb_media: stb_media,
                   stb_display: stb_display};
    var calls = 0;

    // Calls each method of each object, by both of its names, with the value in each place and in all.
    function callEverything(value) {
        function tryCall(object, name, values) {
            ++calls;
            try {
                object[name].apply(object, values);
            } catch (refused) {
            }
        }
        for (var objectName in objects) {
            for (var name in objects[objectName]) {
                if (/^[Rr]eboot/.test(name))
                    continue;
                var names = [name, name.split('(')[0]];
                var count = /\(\)$/.test(name) ? 1 : name.split(',').length;
                for (var place = 0; place <= count; ++place) {
                    var values = [];
                    for (var i = 0; i < count; ++i)
                        values.push(i == place || place == count ? value : 1);
                    tryCall(objects[objectName], names[0], values);
                    tryCall(objects[objectName], names[1], values);
                }
            }
        }
    }

    function writeEverything(value) {
        for (var objectName in objects) {
            for (var name in objects[objectName]) {
                if (name.indexOf('(') > 0)
                    continue;
                try {
                    objects[objectName][name] = value;
                } catch (refused) {
                }
            }
            objects[objectName].objectName = '';
        }
    }

    function nested(depth, inner, wrap) {
        var value = inner;
        for (var i = 0; i < depth; ++i)
            value = wrap(value);
        return value;
    }

    function cyclic() {
        var object = {array: [1]};
        object.self = object;
        object.array.push(object.array, object);
        return object;
    }
)js";

} // namespace

// Nothing that a page passes, changes or calls ends the process or reaches what lies behind the script objects.
class TestPageSafety : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void noValueEndsTheProcess_data();
    void noValueEndsTheProcess();
    void datesWithoutATimeAreNoTime_data();
    void datesWithoutATimeAreNoTime();
    void ordersAreListsOfNumbers_data();
    void ordersAreListsOfNumbers();
    void listsThatAreTooLongAreRefused();
    void listsThatGrowAreTakenAsTheyWere();
    void eventHandlersMayHaveAnyValue_data();
    void eventHandlersMayHaveAnyValue();
    void dialogsShowNoMoreThanFits_data();
    void dialogsShowNoMoreThanFits();
    void guardsWorkOnInALoop_data();
    void guardsWorkOnInALoop();
    void callsMayBeRefusedAgainAndAgain_data();
    void callsMayBeRefusedAgainAndAgain();
    void pagesHaveNoWorkers();
    void changedPrototypesChangeNothing_data();
    void changedPrototypesChangeNothing();
    void aPageBeforeSpoilsNoAnswers_data();
    void aPageBeforeSpoilsNoAnswers();
    void posingObjectsAreNotPassedOn_data();
    void posingObjectsAreNotPassedOn();
    void frameDatesAreDates();
    void pagesCannotDeleteTheObjects_data();
    void pagesCannotDeleteTheObjects();
    void whatGuardsUseIsOutOfReach();
    void nobodyFindsOutWhoAsks_data();
    void nobodyFindsOutWhoAsks();
    void methodsOutliveTheNamesOfTheirObjects();
    void listenersMayClaimAnyNumberOfParameters();

private:
    QString result(const QString &script) { return m_session->run(script).result; }

    std::unique_ptr<ScriptSession> m_session;
};

void TestPageSafety::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

// A new page, because tests spoil theirs.
void TestPageSafety::init()
{
    RecordingPlatform::reset();
    QVERIFY(m_session->plugin().loadHtml("<title>page</title>"));
    QCOMPARE(result(QString(helpers) + "; 0"), QString("0"));
}

void TestPageSafety::noValueEndsTheProcess_data()
{
    QTest::addColumn<QString>("value");
    const auto row = [](const char *name, const char *value) { QTest::newRow(name) << QString(value); };
    row("invalid date", "new Date(NaN)");
    row("invalid date in an array", "[new Date(NaN)]");
    row("invalid date in an object", "({a: new Date(NaN)})");
    row("invalid date deep inside", "[{a: [1, {b: [[new Date('x')]]}]}, 'x']");
    row("invalid date in its own property", "(function () { var d = new Date(0); d.d = new Date(NaN); return d; })()");
    row("last date", "new Date(8640000000000000)");
    row("first date", "new Date(-8640000000000000)");
    row("deep array with an invalid date", "nested(100000, new Date(NaN), function (value) { return [value]; })");
    row("deep object", "nested(100000, 0, function (value) { return {a: value}; })");
    row("cyclic object", "cyclic()");
    row("object that looks at itself",
        "(function () { var o = {}; Object.defineProperty(o, 'x', {get: function () { return o; }, enumerable: true});"
        "return o; })()");
    row("object that grows", "(function grow() { return {get more() { return grow(); }}; })()");
    row("throwing toString", "({toString: function () { throw 1; }, valueOf: function () { throw 2; }})");
    row("toString without a value", "({toString: function () { return {}; }, valueOf: function () { return {}; }})");
    row("throwing getter", "({get a() { throw 1; }, get length() { throw 2; }})");
    row("no prototype", "Object.create(null)");
    if (!HostedPlugin::hasBoxEngine()) {
        row("symbol", "Symbol('s')");
        row("bytes", "new Uint8Array(16)");
        row("map", "new Map([[new Date(NaN), new Date(NaN)]])");
    }
    row("function", "(function () {})");
    row("not a number", "NaN");
    row("infinity", "-Infinity");
    row("null", "null");
    row("undefined", "undefined");
    row("long text", "new Array(1000001).join('x')");
    row("half a letter", "'\\ud83d'");
    row("NUL", "'\\0'");
    row("percent signs", "'%1%2%n%s'");
    row("regular expression", "/(x+x+)+y/");
    row("window", "window");
    row("document", "document");
    row("element", "document.documentElement");
    row("list of nodes", "document.childNodes");
    row("error", "new Error('x')");
    row("arguments", "(function () { return arguments; })(new Date(NaN))");
    row("script object", "StbMedia");
    row("method", "StbMedia.Pause");
    row("signal", "StbDisplay.keyDelayChanged");
}

void TestPageSafety::noValueEndsTheProcess()
{
    QFETCH(const QString, value);
    const StreamCapture output(std::cout); // of Debug
    QCOMPARE(result("var value = " + value + "; callEverything(value); writeEverything(value); calls > 500"),
             QString("true"));
    // With what was posted meanwhile.
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(result("StbDisplay.APIVersion"), QString("\"v1.2\""));
}

void TestPageSafety::datesWithoutATimeAreNoTime_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("call");
    const auto row = [](const char *script, const char *call) {
        QTest::newRow(script) << QString(script) << QByteArray(call);
    };
    const char *const add = "KVR_AddRecord(u, f, 4294967295, 1)";
    const char *const set = "KVR_SetRecordStartTime(1, 4294967295)";
    row("StbPVR.AddRecord('u', 'f', new Date(NaN), 1)", add);
    row("StbPVR['AddRecord(QString,QString,QDateTime,int)']('u', 'f', new Date(NaN), 1)", add);
    row("StbPVR.AddRecord.call(null, 'u', 'f', new Date(NaN), 1)", add);
    row("StbPVR.AddRecord.apply(StbMedia, ['u', 'f', new Date(NaN), 1, new Date(NaN)])", add);
    if (!HostedPlugin::hasBoxEngine())
        row("StbPVR.AddRecord.bind(StbPVR, 'u', 'f')(new Date(NaN), 1)", add);
    row("['u'].map(function (u) { return StbPVR.AddRecord(u, 'f', new Date(NaN), 1); })[0]", add);
    row("StbPVR.SetRecordStartTime(1, new Date(NaN))", set);
    row("StbPVR['SetRecordStartTime(KVR_ID,QVariant)'](1, new Date(NaN))", set);
    row("StbPVR.SetRecordStartTime(1, [new Date(NaN)])", set);
    row("StbPVR.SetRecordStartTime(1, {a: {b: new Date(NaN)}})", set);
    row("StbDisplay.SetOrder([new Date(NaN)])", "KVR_SetOrder({0}, 1)");
    row("StbDisplay['SetOrder(QVariantList)']([[new Date(NaN)], {a: new Date(NaN)}, 2])", "KVR_SetOrder({0, 0, 2}, 3)");
}

void TestPageSafety::datesWithoutATimeAreNoTime()
{
    QFETCH(const QString, script);
    RecordingPlatform::answer("KVR_AddRecord", 0);
    const ScriptSession::Outcome outcome = m_session->run(script);
    QCOMPARE(outcome.result, QString("0"));
    QTEST(outcome.calls, "call");
}

void TestPageSafety::ordersAreListsOfNumbers_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QByteArray>("order");
    const auto row = [](const char *list, const char *order) {
        QTest::newRow(list) << QString(list) << QByteArray(order);
    };
    row("[1, '2', 2.6, -3, true, false]", "{1, 2, 3, -3, 1, 0}, 6");
    row("[2147483647, -2147483648]", "{2147483647, -2147483648}, 2");
    row("[null, '', 'x', {}, [], [5]]", "{0, 0, 0, 0, 0, 0}, 6");
    row("[new Number(5), new String('6'), new Boolean(true)]", "{5, 6, 1}, 3");
    row("[new Date(5), new Date(NaN), function () {}]", "{0, 0, 0}, 3");
    if (!HostedPlugin::hasBoxEngine())
        row("[Symbol('s')]", "{0}, 1");
    row("[{valueOf: function () { throw 1; }, toString: function () { throw 2; }}, 7]", "{0, 7}, 2");
    row("[null, 4,]", "{0, 4}, 2");
    row("5", "{5}, 1");
    row("'6'", "{6}, 1");
}

void TestPageSafety::ordersAreListsOfNumbers()
{
    QFETCH(const QString, list);
    QFETCH(const QByteArray, order);
    QCOMPARE(m_session->run("StbDisplay.SetOrder(" + list + ")").calls, "KVR_SetOrder(" + order + ")");
}

void TestPageSafety::listsThatAreTooLongAreRefused()
{
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay.SetOrder(new Array(4294967295))");
    QCOMPARE(outcome.result, QString("throws RangeError: The list has more than 100000 entries"));
    QCOMPARE(outcome.calls, QByteArray());
    QVERIFY(m_session->run("StbDisplay.SetOrder(new Array(100000).join().split(','))").calls.endsWith(", 0}, 100000)"));
}

void TestPageSafety::listsThatGrowAreTakenAsTheyWere()
{
    QCOMPARE(m_session
                 ->run("var list = [0, 2]; Object.defineProperty(list, 0, {get: function () { list.length = 4294967295;"
                       "return 1; }}); StbDisplay.SetOrder(list)")
                 .calls,
             QByteArray("KVR_SetOrder({1, 2}, 2)"));
}

void TestPageSafety::eventHandlersMayHaveAnyValue_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("invalid date") << "new Date(NaN)";
    QTest::newRow("invalid date deep inside") << "[{a: new Date(NaN)}]";
    QTest::newRow("deep array") << "nested(100000, 0, function (value) { return [value]; })";
    QTest::newRow("object that grows") << "(function grow() { return {get more() { return grow(); }}; })()";
    QTest::newRow("invalid date before a comment") << "new Date(NaN) // comment";
}

void TestPageSafety::eventHandlersMayHaveAnyValue()
{
    QFETCH(const QString, value);
    m_session->run("var events = 0; StbMedia.CreatePlayer();"
                   "StbMedia.onEvent = "
                   + ScriptSession::quoted("++events; " + value));
    for (int i = 1; i <= 2; ++i) {
        RecordingPlatform::fire(1, KVR_EVENT_STATE);
        RecordingPlatform::waitUntilFired();
        QCoreApplication::processEvents();
        QCOMPARE(result("events"), QString::number(i));
    }
    result("StbMedia.onEvent = ''");
}

void TestPageSafety::dialogsShowNoMoreThanFits_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("alert") << "alert(text)";
    QTest::newRow("confirm") << "confirm(text)";
    QTest::newRow("prompt") << "prompt(text, text)";
}

void TestPageSafety::dialogsShowNoMoreThanFits()
{
    QFETCH(const QString, script);
    QStringList shown;
    QTimer closer;
    connect(&closer, &QTimer::timeout, this, [&shown] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (!dialog)
            return;
        const QList<QLabel *> labels = dialog->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            shown += label->text();
        const QList<QLineEdit *> fields = dialog->findChildren<QLineEdit *>();
        for (const QLineEdit *field : fields)
            shown += field->text();
        dialog->close();
    });
    closer.start(10);
    m_session->run("var text = new Array(10000001).join('x'); " + script);
    QVERIFY(!shown.filter("xxxxx").isEmpty());
    for (const QString &text : std::as_const(shown))
        QVERIFY2(text.size() <= 2500, QByteArray::number(text.size()));
}

void TestPageSafety::guardsWorkOnInALoop_data()
{
    QTest::addColumn<QString>("call");
    QTest::newRow("dates") << "StbPVR.AddRecord('u', 'f', [new Date(0), new Date(NaN)][i % 2], 1)";
    QTest::newRow("values")
        << "StbPVR.SetRecordStartTime(1, [{}, new Date(NaN), new Number(5), [], 'x', 1, null][i % 7])";
    QTest::newRow("lists") << "StbDisplay.SetOrder([1, {}, new Date(NaN), new String('2'), []])";
    QTest::newRow("subtitles") << "StbMedia.PlayFile(1, '/a', 0, 0, 0, [{}, new Date(NaN), 's', []][i % 4])";
}

void TestPageSafety::guardsWorkOnInALoop()
{
    QFETCH(const QString, call);
    // Often enough for each stage of the engine's compiler, and in functions of the page's own that catch errors.
    for (int round = 0; round < 20; ++round) {
        const QString script = "(function () { for (var i = 0; i < 1000; ++i) {"
                               "try { "
            + call + "; } catch (error) { return i + ': ' + error; } } return 'done'; })()";
        QCOMPARE(result(script), QString("\"done\""));
    }
}

void TestPageSafety::callsMayBeRefusedAgainAndAgain_data()
{
    QTest::addColumn<QString>("call");
    for (const char *call :
         {"StbMedia.Pause()", "StbMedia.Pause(NaN)", "StbDisplay.Log({toString: function () { throw 1; }})",
          "StbPVR.AddRecord('u', 'f', posing('String'), 1)", "StbDisplay.keyDelayChanged.connect()"})
        QTest::newRow(call) << call;
    if (!HostedPlugin::hasBoxEngine())
        QTest::newRow("Map()") << "Map()";
}

void TestPageSafety::callsMayBeRefusedAgainAndAgain()
{
    QFETCH(const QString, call);
    const QStringList ways = RefusedCalls::ways();
    for (const QString &way : ways)
        QCOMPARE(result(RefusedCalls::script(call, way)), QString::number(RefusedCalls::times));
}

void TestPageSafety::pagesHaveNoWorkers()
{
    QVERIFY(m_session->plugin().loadHtml("<script>var inHead = typeof Worker</script>"
                                         "<iframe srcdoc='<script>parent.inFrame = typeof Worker</script>'></iframe>"));
    QCOMPARE(result("[inHead, inFrame, 'Worker' in window].join()"), QString("\"undefined,undefined,false\""));
    QCOMPARE(result("var frame = document.createElement('iframe'); document.body.appendChild(frame);"
                    "frame.contentDocument.write('<script>var written = typeof Worker</' + 'script>');"
                    "[typeof frame.contentWindow.Worker, frame.contentWindow.written].join()"),
             QString("\"undefined,undefined\""));
    m_session->plugin().evaluate("location = 'about:blank'");
    QTRY_COMPARE(result("typeof frame + typeof Worker"), QString("\"undefinedundefined\""));
}

void TestPageSafety::changedPrototypesChangeNothing_data()
{
    QTest::addColumn<QString>("change");
    const auto row = [](const char *name, const char *change) { QTest::newRow(name) << QString(change); };
    row("getTime", "Date.prototype.getTime = function () { return NaN; }");
    row("getTime that returns a date", "Date.prototype.getTime = function () { return new Date(NaN); }");
    row("valueOf",
        "Date.prototype.valueOf = Object.prototype.valueOf = function () { return new Date(NaN); };"
        "Number.prototype.valueOf = String.prototype.valueOf = Date.prototype.valueOf");
    row("toString",
        "Object.prototype.toString = function () { return '[object Array]'; };"
        "Date.prototype.toString = Object.prototype.toString");
    row("no Date", "Date = undefined");
    row("another Date", "Date = function () { this.x = 1; }");
    row("call, apply and bind",
        "var evil = function () { return [new Date(NaN)]; };"
        "Function.prototype.call = evil; Function.prototype.apply = evil;"
        "Function.prototype.bind = evil");
    if (!HostedPlugin::hasBoxEngine())
        row("iterators",
            "Array.prototype[Symbol.iterator] = function () {"
            "var done = false; return {next: function () { var d = done; done = true;"
            "return {done: d, value: new Date(NaN)}; }}; }");
    row("arrays", "Array.from = Array.isArray = function () { return [new Date(NaN)]; }; Array = undefined");
    row("setters of indexes",
        "for (var i = 0; i < 5; ++i)"
        "Object.defineProperty(Object.prototype, i, {get: function () { return new Date(NaN); },"
        "set: function () { throw 1; }})");
    row("setters of an array's indexes",
        "for (var i = 0; i < 5; ++i)"
        "Object.defineProperty(Array.prototype, i, {get: function () { return new Date(NaN); },"
        "set: function () { throw 1; }})");
    row("getters of names that guards look up",
        "['get', 'set', 'value', 'enumerable', 'start', '[object Object]', '[object Array]', '[object Date]', 'next',"
        "'done', 'length', 'prototype', 'constructor'].forEach(function (name) {"
        "Object.defineProperty(Object.prototype, name, {get: function () { return function () { return new Date(NaN); "
        "};"
        "}, set: function () { throw 1; }, configurable: true}); })");
    row("defineProperty", "Object.defineProperty = Object.create = Object.keys = function () { throw 1; }");
    row("window's own names", "undefined = NaN = 1; Infinity = 1; Object = String = Number = Boolean = null");
}

void TestPageSafety::changedPrototypesChangeNothing()
{
    QFETCH(const QString, change);
    KVR_Record record = {};
    record.start = 1000;
    RecordingPlatform::answer("KVR_GetRecordsList", RecordingPlatform::Answer::array(QVector<KVR_Record>{record}));
    // The test's own values are made and read without what the page changes.
    m_session->plugin().evaluate("var invalid = new Date(NaN), valid = new Date(5000), when = 0;"
                                 "var list = [3, 1], deep = [[invalid]], one = [0], getTime = Date.prototype.getTime;"
                                 "Object.defineProperty(one, 'map', {value: one.map});"
                                 "function timeOf(date) { return one.map(getTime, date)[0]; }");
    m_session->takeOutcome();
    m_session->plugin().evaluate("(function () {" + change + "})()");
    m_session->plugin().evaluate("StbPVR.AddRecord('u', 'f', invalid, 1)");
    m_session->plugin().evaluate("StbPVR.AddRecord('u', 'f', valid, 1)");
    m_session->plugin().evaluate("StbPVR.SetRecordStartTime(1, invalid)");
    m_session->plugin().evaluate("StbPVR.SetRecordStartTime(1, valid)");
    m_session->plugin().evaluate("StbPVR.SetRecordStartTime(1, deep)");
    m_session->plugin().evaluate("when = timeOf(StbPVR.GetRecordsList()[0].start)");
    QCOMPARE(m_session->takeOutcome().calls,
             QByteArray("KVR_AddRecord(u, f, 4294967295, 1)\n"
                        "KVR_AddRecord(u, f, 5, 1)\n"
                        "KVR_SetRecordStartTime(1, 4294967295)\n"
                        "KVR_SetRecordStartTime(1, 5)\n"
                        "KVR_SetRecordStartTime(1, 4294967295)\n"
                        "KVR_GetRecordsList()"));
    // Lists are the page's own, with the setters that it gives them.
    const bool areEntriesSet = QByteArray(QTest::currentDataTag()).startsWith("setters of");
    QCOMPARE(m_session->plugin().evaluate("when").toDouble(), areEntriesSet ? 0.0 : 1000000.0);
    // What a list holds is the page's to say; it only has to be numbers.
    m_session->plugin().evaluate("StbDisplay.SetOrder(list); StbDisplay.SetOrder(deep)");
}

void TestPageSafety::aPageBeforeSpoilsNoAnswers_data()
{
    QTest::addColumn<QString>("call");
    for (const char *const call :
         {"StbPVR.GetRecordsList()", "StbDisplay.GetOrder()", "StbDisplay.GetGraphicsViewport()",
          "StbDisplay.ListDirs('/')", "StbMedia.GetAudioTrackList(1)", "StbMedia.GetEventDescription()",
          "StbMedia.GetPlayerViewPort(1)"})
        QTest::newRow(call) << QString(call);
}

// The engine makes a list in the page in which it first looked a method up, unless that has been collected since.
void TestPageSafety::aPageBeforeSpoilsNoAnswers()
{
    QFETCH(const QString, call);
    KVR_Record record = {};
    record.start = 1000;
    RecordingPlatform::answer("KVR_GetRecordsList", RecordingPlatform::Answer::array(QVector<KVR_Record>{record}));
    RecordingPlatform::answer("KVR_GetOrder", RecordingPlatform::Answer::array(QVector<int>{3, 1}));
    const QString answer = result(call);
    QVERIFY(m_session->plugin().loadHtml("<title>spoils</title>"));
    QWebSettings::clearMemoryCaches(); // collects garbage
    result(
        "[Array.prototype, Object.prototype].forEach(function (prototype) {"
        "[0, 1, 2, 'start', 'x', 'id', 'PID', 'name'].forEach(function (name) {"
        "Object.defineProperty(prototype, name, {get: function () { return 'spoilt'; }, set: function () {}}); }); });"
        + call);
    QVERIFY(m_session->plugin().loadHtml("<title>next</title>"));
    QCOMPARE(result(call), answer);
    QVERIFY(!answer.contains("spoilt"));
}

void TestPageSafety::posingObjectsAreNotPassedOn_data()
{
    QTest::addColumn<QString>("value");
    const auto row = [](const char *name, const char *value) { QTest::newRow(name) << QString(value); };
    row("date posing as an object", "tagged(new Date(NaN), 'Object')");
    row("date posing as a text", "tagged(new Date(NaN), 'String')");
    row("date posing as a number", "tagged(new Date(NaN), 'Number')");
    row("array posing as a date", "tagged([new Date(NaN)], 'Date')");
    row("object posing as a date", "tagged({a: new Date(NaN)}, 'Date')");
    row("date posing by and by", "changing(new Date(NaN))");
    row("date of another class", "withPrototype(new Date(NaN), Array.prototype)");
    row("date without a class", "withPrototype(new Date(NaN), null)");
    row("date with a time of its own", "own(new Date(NaN))");
    row("object with a date's prototype", "Object.create(Date.prototype)");
    row("object with a date for its prototype", "Object.create(new Date(NaN))");
}

void TestPageSafety::posingObjectsAreNotPassedOn()
{
    QFETCH(const QString, value);
    m_session->run("var tag = typeof Symbol === 'undefined' ? 'tag' : Symbol.toStringTag;"
                   "function tagged(object, text) { object[tag] = text; return object; }"
                   "function changing(object) { var count = 0;"
                   "Object.defineProperty(object, tag,"
                   "{get: function () { return ['Date', 'Object', 'String'][count++ % 3]; }}); return object; }"
                   "function withPrototype(object, prototype) { object.__proto__ = prototype; return object; }"
                   "function own(object) { object.getTime = object.valueOf = function () { return 7000; };"
                   "return object; }");
    for (const char *script : {"StbPVR.AddRecord('u', 'f', %1, 1)", "StbPVR.SetRecordStartTime(1, %1)",
                               "StbPVR.SetRecordStartTime(1, [%1])"}) {
        // A call, or an error; no other time in any case.
        const ScriptSession::Outcome outcome = m_session->run(QString(script).arg(value));
        if (!outcome.calls.isEmpty())
            QVERIFY2(outcome.calls.contains("4294967295"), outcome.calls);
        else
            QVERIFY2(outcome.result.startsWith("throws "), qPrintable(outcome.result));
    }
    m_session->run("StbDisplay.SetOrder([" + value + "])");
    m_session->run("StbMedia.PlayFile(1, '/a', 0, 0, 0, " + value + ")");
    QCOMPARE(result("1"), QString("1"));
}

void TestPageSafety::frameDatesAreDates()
{
    m_session->run("var frame = document.createElement('iframe'); document.documentElement.appendChild(frame);"
                   "var other = frame.contentWindow;");
    QCOMPARE(result("typeof other.Date"), QString("\"function\""));
    QCOMPARE(m_session->run("StbPVR.AddRecord('u', 'f', new other.Date(5000), 1)").calls,
             QByteArray("KVR_AddRecord(u, f, 5, 1)"));
    QCOMPARE(m_session->run("StbPVR.AddRecord('u', 'f', new other.Date(NaN), 1)").calls,
             QByteArray("KVR_AddRecord(u, f, 4294967295, 1)"));
    QCOMPARE(m_session->run("StbPVR.SetRecordStartTime(1, new other.Date(5000))").calls,
             QByteArray("KVR_SetRecordStartTime(1, 5)"));
    QCOMPARE(m_session->run("StbPVR.SetRecordStartTime(1, other.Array(new other.Date(NaN)))").calls,
             QByteArray("KVR_SetRecordStartTime(1, 4294967295)"));
    QCOMPARE(m_session->run("StbDisplay.SetOrder(new other.Array(3, new other.Date(NaN), new other.Number(4)))").calls,
             QByteArray("KVR_SetOrder({3, 0, 4}, 3)"));
    // The frame itself has no script objects, and goes with its dates.
    QCOMPARE(result("typeof other.StbPVR"), QString("\"undefined\""));
    m_session->run("var date = new other.Date(NaN); document.documentElement.removeChild(frame);");
    QCOMPARE(m_session->run("StbPVR.SetRecordStartTime(1, date)").calls,
             QByteArray("KVR_SetRecordStartTime(1, 4294967295)"));
}

void TestPageSafety::pagesCannotDeleteTheObjects_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("use");
    QTest::addColumn<QByteArray>("call");
    QTest::newRow("StbMedia") << "StbMedia"
                              << "StbMedia.Pause(1)" << QByteArray("KVR_Pause(1)");
    QTest::newRow("StbDisplay") << "StbDisplay"
                                << "StbDisplay.GetHdmiState()" << QByteArray("KVR_GetHdmiState()");
    QTest::newRow("StbPVR") << "StbPVR"
                            << "StbPVR.CleanUpRecords()" << QByteArray("KVR_CleanUpRecords()");
    QTest::newRow("stb_media") << "stb_media"
                               << "stb_media.Pause(1)" << QByteArray("KVR_Pause(1)");
    QTest::newRow("stb_display") << "stb_display"
                                 << "stb_display.setAlphaLevel(7)" << QByteArray("KVR_SetGraphicsAlphaLevel(7)");
}

void TestPageSafety::pagesCannotDeleteTheObjects()
{
    QFETCH(const QString, object);
    QFETCH(const QString, use);
    QFETCH(const QByteArray, call);
    for (const char *member : {".deleteLater()", "['deleteLater()']()", ".deleteLater.call(window)", ".destroyed()",
                               "['destroyed(QObject*)'](null)"}) {
        result(object + member);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const ScriptSession::Outcome outcome = m_session->run(use);
        QVERIFY2(!outcome.result.startsWith("throws"), qPrintable(outcome.result));
        QCOMPARE(outcome.calls, call);
    }
    // Nor by forgetting them.
    m_session->run("delete window." + object + "; " + object + " = null; objects = null");
    QVERIFY(m_session->plugin().loadHtml("<title>next</title>"));
    QVERIFY(!m_session->run(use).result.startsWith("throws"));
}

void TestPageSafety::whatGuardsUseIsOutOfReach()
{
    QCOMPARE(result("typeof recordTimes + ('recordTimes' in window)"), QString("\"undefinedfalse\""));
    // What a method reveals when it is called on something else, or looked at.
    QCOMPARE(result("[StbPVR.GetRecordsList.caller, StbPVR.GetRecordsList.arguments]").startsWith("throws TypeError"),
             true);
}

void TestPageSafety::nobodyFindsOutWhoAsks_data()
{
    QTest::addColumn<QString>("script");
    const auto row = [](const char *script) { QTest::newRow(script) << QString(script); };
    row("StbDisplay.Log({toString: ask})");
    row("StbMedia.Pause({valueOf: ask})");
    row("StbMedia.Pause({toString: ask, valueOf: null})");
    row("StbPVR.AddRecord({toString: ask}, 'f', new Date(0), 1)");
    row("StbMedia.onEvent = {toString: ask}");
    row("StbDisplay.keyDelayChanged({valueOf: ask})");
    row("StbDisplay.keyDelayChanged.connect(ask); StbDisplay.SetKeyEventPeriod(0)");
    row("StbDisplay.keyDelayChanged.connect({}, ask); StbDisplay.keyDelayChanged(0)");
    row("StbDisplay.keyDelayChanged.connect({x: 1}, {toString: ask})");
    row("StbDisplay.keyDelayChanged.connect(Object.defineProperty({}, 'q', {get: ask}), 'q')");
    row("StbDisplay.keyDelayChanged.disconnect(Object.defineProperty({}, 'q', {get: ask}), 'q')");
    row("StbDisplay.SetOrder(Object.defineProperty([1], 0, {get: ask}))");
}

// A function tells who called it, and would so give away one that is not guarded.
void TestPageSafety::nobodyFindsOutWhoAsks()
{
    QFETCH(const QString, script);
    result(
        "var asked = 0, found = null; function ask() { ++asked; try { found = ask.caller || found; } catch (refused) {}"
        "return '1'; }");
    result(script);
    QVERIFY(result("asked").toInt() > 0);
    QCOMPARE(result("found === null || found === String"), QString("true"));
}

void TestPageSafety::methodsOutliveTheNamesOfTheirObjects()
{
    result("var stop = StbMedia.Stop, connect = StbMedia.jsCallback.connect; objects = null; delete window.StbMedia;"
           "StbMedia = undefined");
    QWebSettings::clearMemoryCaches(); // collects garbage
    result("for (var i = 0; i < 200000; ++i) ({a: [i]}); 0");
    QWebSettings::clearMemoryCaches();
    QCOMPARE(m_session->run("stop(7); connect(function () {})").calls, QByteArray("KVR_Stop(7)"));
}

void TestPageSafety::listenersMayClaimAnyNumberOfParameters()
{
    QCOMPARE(result("var names = []; for (var i = 0; i < 50000; ++i) names.push('a' + i);"
                    "var heard = 0, listener = Function(names.join(), 'heard = arguments.length');"
                    "StbDisplay.keyDelayChanged.connect(listener); StbDisplay.SetKeyEventPeriod(0); heard"),
             QString("1"));
}

QTEST_MAIN(TestPageSafety)

#include "tst_pagesafety.moc"
