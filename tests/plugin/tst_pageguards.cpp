// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "WrappersBeside.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"

#include "jsapi/StbDisplay.h"
#include "jsapi/StbPVR.h"
#include "shell/CStbApplication.h"

#include <QWebFrame>
#include <QWebPage>
#include <QWebView>
#include <QtTest>

#include <memory>

// Pages see guards in place of the script objects. They cannot tell them from what the box's engine makes of the
// objects, nor, but for what only boxes do, from what today's engine makes of them, in a page beside.
class TestPageGuards : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void guardsAreAsOnABox_data();
    void guardsAreAsOnABox();
    void refusalsAreToldAtThePagesPlace();
    void guardsLookLikeTheirObjects_data();
    void guardsLookLikeTheirObjects();
    void guardsAreUsedLikeWrappers_data();
    void guardsAreUsedLikeWrappers();
    void listsAreThoseThatWrappersTake_data();
    void listsAreThoseThatWrappersTake();
    void whatAPageAddsStaysUntilTheNextPage();
    void answersAreThePagesOwn();

private:
    QString asJson(const QString &script) { return m_plugin->evaluateToJson(script); }
    // The same in the page without guards.
    QString bareAsJson(const QString &script);

    std::unique_ptr<HostedPlugin> m_plugin;
    WrappersBeside m_wrappers;
    std::unique_ptr<KavroJS::StbDisplay> m_display;
    std::unique_ptr<QWebPage> m_barePage;
};

void TestPageGuards::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml("<title>guards</title>"));
    m_display = std::make_unique<KavroJS::StbDisplay>();
    m_barePage = std::make_unique<QWebPage>();
    m_barePage->mainFrame()->addToJavaScriptWindowObject("StbDisplay", m_display.get());
    m_barePage->mainFrame()->addToJavaScriptWindowObject("StbPVR", KavroJS::StbPVR::instance());
}

void TestPageGuards::cleanupTestCase()
{
    m_barePage.reset();
    m_display.reset();
    KavroJS::StbPVR::destroyInstance();
    m_plugin.reset();
}

QString TestPageGuards::bareAsJson(const QString &script)
{
    return m_barePage->mainFrame()
        ->evaluateJavaScript("JSON.stringify((function () { return " + script + "; })())")
        .toString();
}

void TestPageGuards::guardsAreAsOnABox_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("expected"); // as JSON
    QTest::addColumn<QByteArray>("calls");
    const auto row = [](const char *script, const char *expected, const char *calls = "") {
        QTest::newRow(script) << QString(script) << QString(expected) << QByteArray(calls);
    };
    row("Object.prototype.toString.call(StbMedia)", R"js("[object QtRuntimeObject]")js");
    row("Object.prototype.toString.call(stb_display)", R"js("[object QtRuntimeObject]")js");
    row("String(StbMedia)", R"js("KavroJS::StbMedia(name = \"\")")js");
    row("names(StbMedia).slice(0, 7)",
        R"js(["objectName","onEvent","destroyed(QObject*)","destroyed()","deleteLater()","jsCallback(QString)",)js"
        R"js("CreatePlayer()"])js");
    row("[names(StbMedia).length, Object.keys(StbMedia).length, Object.getOwnPropertyNames(StbMedia).length]",
        "[58,58,58]");
    row("names(StbMedia).join() === Object.keys(StbMedia).join()", "true");
    row("names(StbMedia).join() === Object.getOwnPropertyNames(StbMedia).join()", "true");
    row("['SetEventCallback' in StbMedia, Object.keys(StbMedia).indexOf('SetEventCallback')]", "[true,-1]");
    row("Object.getPrototypeOf(StbMedia) === Object.prototype", "true");
    row("typeof StbMedia.objectNameChanged", R"js("undefined")js");

    row("(StbMedia.xx = 5, StbMedia.xx)", "5");
    row("(StbMedia.xx = 5, delete StbMedia.xx)", "false");
    row("(StbMedia.xx = 5, delete StbMedia.xx, StbMedia.xx)", "5");
    row("(StbMedia.xx = 5, names(StbMedia).indexOf('xx'))", "-1");
    row("[delete StbMedia.Stop, typeof StbMedia.Stop]", R"js([false,"function"])js");
    row("(Object.defineProperty(StbDisplay, 'zz', {value: 3}), StbDisplay.zz)", "3");
    row("(StbMedia.GetPlayersCount = function () { return 77; }, StbMedia.GetPlayersCount())", "0",
        "KVR_GetPlayersCount()");
    row("(function () { 'use strict'; StbMedia.GetPlayersCount = 5; return StbMedia.GetPlayersCount(); })()", "0",
        "KVR_GetPlayersCount()");
    row("(StbDisplay.APIVersion = 'mine', StbDisplay.APIVersion)", R"js("v1.2")js");
    row("(function () { var mine = Object.create(StbDisplay); mine.Log = 5; mine.APIVersion = 6;"
        "return [mine.Log, mine.APIVersion, typeof StbDisplay.Log, StbDisplay.APIVersion]; })()",
        R"js([5,6,"function","v1.2"])js");
    row("(function () { function Player() { this.Stop = function () { return 'mine'; }; } Player.prototype = StbMedia;"
        "return new Player().Stop(-5); })()",
        R"js("mine")js");

    row("refusal(function () { StbMedia.Stop(); })",
        R"js(["SyntaxError","too few arguments in call to Stop(); candidates are\n    Stop(int)",true])js");
    row("refusal(function () { StbMedia['Stop(int)'](); })",
        R"js(["SyntaxError","too few arguments in call to Stop(int)(); candidates are\n    Stop(int)",true])js");
    row("refusal(function () { StbMedia.Stop(NaN); })",
        R"js(["TypeError","incompatible type of argument(s) in call to Stop(); candidates were\n    Stop(int)",true])js");
    row("refusal(function () { StbDisplay.SetOrder(undefined); })",
        R"js(["TypeError","incompatible type of argument(s) in call to SetOrder(); candidates were\n)js"
        R"js(    SetOrder(QVariantList)",true])js");
    row("refusal(function () { StbDisplay.SetOrder([NaN]); })",
        R"js(["TypeError","incompatible type of argument(s) in call to SetOrder(); candidates were\n)js"
        R"js(    SetOrder(QVariantList)",true])js");
    row("refusal(function () { StbPVR.AddRecord('u', 'f', NaN, 1); })",
        R"js(["TypeError","incompatible type of argument(s) in call to AddRecord(); candidates were\n)js"
        R"js(    AddRecord(QString,QString,QDateTime,int)",true])js");
    row("refusal(function () { StbPVR.SetRecordStartTime(1, NaN); })",
        R"js(["TypeError","incompatible type of argument(s) in call to SetRecordStartTime(); candidates were\n)js"
        R"js(    SetRecordStartTime(KVR_ID,QVariant)",true])js");
    row("refusal(function () { StbMedia.jsCallback.connect(undefined, refusal); })",
        R"js(["TypeError","QtMetaMethod.connect: thisObject is not an object",true])js");
    row("refusal(function () { StbMedia.jsCallback.disconnect(null, 'x'); })",
        R"js(["TypeError","QtMetaMethod.disconnect: thisObject is not an object",true])js");
    row("refusal(function () { StbMedia.jsCallback.connect(5); })",
        R"js(["TypeError","QtMetaMethod.connect: target is not a function",true])js");
    row("refusal(function () { StbMedia.jsCallback.connect(); })",
        R"js(["Error","QtMetaMethod.connect: no arguments given",true])js");
    row("refusal(function () { StbDisplay.Log({toString: function () { throw new RangeError('mine'); }}); })",
        R"js(["TypeError","incompatible type of argument(s) in call to Log(); candidates were\n    Log(QString)",true])js");

    row("StbMedia.GetPlayersCount(1, 2, 3)", "0", "KVR_GetPlayersCount()");
    row("StbMedia.GetPlayersCount(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11)", "undefined");
    row("StbMedia.Stop.call(null, 7)", "0", "KVR_Stop(7)");
    row("Function.prototype.apply.call(StbMedia.Stop, window, [7])", "0", "KVR_Stop(7)");
    row("(function (stop) { return stop(7); })(StbMedia.Stop)", "0", "KVR_Stop(7)");
    row("StbMedia.Stop({})", "0", "KVR_Stop(0)");
    row("StbDisplay.SetOrder(['3', 7, 'x'])", "0", "KVR_SetOrder({3, 7, 0}, 3)");
    row("Object.prototype.toString.call(StbPVR.GetRecordsList()[0].start)", R"js("[object Date]")js",
        "KVR_GetRecordsList()");
}

void TestPageGuards::guardsAreAsOnABox()
{
    QFETCH(const QString, script);
    RecordingPlatform::reset();
    RecordingPlatform::answer("KVR_GetRecordsList", RecordingPlatform::Answer::array(QVector<KVR_Record>{{}}));
    m_plugin->evaluate("function names(object) { var all = []; for (var name in object) all.push(name); return all; }"
                       "function refusal(call) { try { call(); } catch (error) {"
                       "return [error.name, error.message, error instanceof Error]; } }");
    QTEST(asJson(script), "expected");
    QTEST(RecordingPlatform::takeCalls().join('\n'), "calls");
}

// Else an author would look for the mistake in the plugin.
void TestPageGuards::refusalsAreToldAtThePagesPlace()
{
    QStringList places;
    connect(m_plugin->browser()->page(), &QWebPage::consoleMessageReceived, this,
            [&places](QWebPage::MessageSource, QWebPage::MessageLevel, const QString &text, int line,
                      const QString &address) {
                places += text.section(':', 0, 0) + ' ' + address + ' ' + QString::number(line);
            });
    HttpServer server;
    server.serve("/",
                 "<script>\nStbMedia.Stop();\n</script>\n<script>StbDisplay.SetOrder(new Array(100001));</script>");
    QVERIFY(m_plugin->load(server.url("/")));
    const QString address = server.url("/").toString();
    QCOMPARE(places, QStringList({"SyntaxError " + address + " 2", "RangeError " + address + " 4"}));
    m_plugin->browser()->page()->disconnect(this);
}

void TestPageGuards::guardsLookLikeTheirObjects_data()
{
    QTest::addColumn<QString>("script");
    const auto row = [](const char *script) { QTest::newRow(script) << QString(script); };
    row("(function () { var n = []; for (var m in StbDisplay) n.push(m); return n; })()");
    row("(function () { var n = []; for (var m in StbPVR) n.push(m); return n; })()");
    row("(function () { var t = []; for (var m in StbDisplay) t.push(m, typeof StbDisplay[m]); return t; })()");
    row("(function () { var t = []; for (var m in StbPVR) t.push(m, typeof StbPVR[m]); return t; })()");
    row("Object.keys(StbPVR)");
    row("[typeof StbDisplay, typeof StbPVR, typeof StbDisplay.Log, typeof StbPVR.AddRecord]");
    row("[String(StbDisplay), StbDisplay + '', String(StbPVR), StbPVR.toString()]");
    row("[!!StbDisplay, StbDisplay == StbDisplay, StbDisplay == StbPVR, StbDisplay.Log == StbDisplay.Log]");
    row("['Log' in StbDisplay, 'Log(QString)' in StbDisplay, 'APIVersion' in StbDisplay, 'none' in StbDisplay]");
    row("[StbDisplay.hasOwnProperty('Log'), StbDisplay.hasOwnProperty('Log(QString)'), "
        "StbDisplay.hasOwnProperty('x')]");
    row("[StbDisplay.none, StbDisplay['Log()'], StbPVR['']]");
    row("[StbDisplay.APIVersion, StbDisplay.DeviceModel, StbDisplay.objectName]");
    row("(StbDisplay.APIVersion = 'mine', StbDisplay.APIVersion)");
    row("(StbDisplay.objectName = 'mine', [StbDisplay.objectName, String(StbDisplay), StbDisplay.objectName = ''])");
    row("(StbDisplay.mine = 5, StbDisplay.mine)");
    row("StbDisplay.SetKeyEventPeriod.call(null, 0)");
    row("typeof StbDisplay.keyDelayChanged.connect");
    row("(function () { var ms; function listen(value) { ms = value; } StbDisplay.keyDelayChanged.connect(listen);"
        "StbDisplay.SetKeyEventPeriod(7); StbDisplay.keyDelayChanged.disconnect(listen);"
        "StbDisplay.SetKeyEventPeriod(0); return ms; })()");
    row("(function () { try { StbPVR.DeleteRecord(); } catch (error) { return error.message; } })()");
    row("(function () { try { StbPVR.DeleteRecord(null); } catch (error) { return error.message; } })()");
    row("(function () { try { StbPVR.AddRecord('', '', 'x', 1); } catch (error) { return error.message; } })()");
    row("(function () { try { StbPVR.AddRecord('', '', {}, 1); } catch (error) { return error.message; } })()");
    row("(function () { try { StbDisplay.SetOrder([undefined]); } catch (error) { return error.message; } })()");
    row("StbDisplay.SetOrder([null, '5', true])");
    row("StbPVR.AddRecord('', '', new Date(0), 1)");
    row("StbPVR.SetRecordStartTime(1, '2012-01-01')");
    row("StbPVR.SetRecordStartTime(1, undefined)");
}

// The engine of today lists a signal that no box has.
void TestPageGuards::guardsLookLikeTheirObjects()
{
    QFETCH(const QString, script);
    RecordingPlatform::reset();
    const QString guarded = asJson(script);
    const QByteArrayList guardedCalls = RecordingPlatform::takeCalls();
    RecordingPlatform::reset();
    static const QRegularExpression newSignal(R"js("objectNameChanged\(QString\)",("function",)?)js");
    QCOMPARE(guarded, bareAsJson(script).remove(newSignal));
    QCOMPARE(guardedCalls, RecordingPlatform::takeCalls());
    QVERIFY(!guarded.startsWith("throws"));
}

void TestPageGuards::guardsAreUsedLikeWrappers_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("script");
    // A member of each kind.
    const struct
    {
        const char *object, *slot, *signature, *property, *argument;
    } objects[] = {{"StbMedia", "Stop", "Stop(int)", "onEvent", "-5"},
                   {"StbDisplay", "Log", "Log(QString)", "APIVersion", "'text'"},
                   {"StbPVR", "DeleteRecord", "DeleteRecord(KVR_ID)", "objectName", "-5"},
                   {"stb_media", "Stop", "Stop(int)", "onEvent", "-5"},
                   {"stb_display", "log", "log(QString)", "browserVersion", "'text'"}};
    const char *const scripts[] = {
        "Object.prototype.toString.call(object)",
        "typeof object",
        "[String(object), object + '', object + 1, +object, isNaN(object), object.toLocaleString()]",
        "[object == object, object === object, object == null, !object, object == other, object.valueOf() === object]",
        "names(object)",
        "names(Object.keys(object), true)",
        "names(Object.getOwnPropertyNames(object), true)",
        "['SLOT' in object, 'SIGNATURE' in object, 'PROPERTY' in object, 'none' in object, 'toString' in object]",
        "['SLOT', 'SIGNATURE', 'PROPERTY', 'none', 'toString'].map(function (n) { return object.hasOwnProperty(n); })",
        "['SLOT', 'SIGNATURE', 'PROPERTY', 'none'].map(function (n) { return object.propertyIsEnumerable(n); })",
        "[object.constructor === Object, Object.getPrototypeOf(object) === Object.prototype, object instanceof Object]",
        "[Object.prototype.isPrototypeOf(object), Array.isArray(object), object.length, object[0]]",
        "[typeof object.SLOT, object.SLOT === object.SLOT, object.SLOT.length]",
        "[object.PROPERTY, object.objectName, object.none]",
        "JSON.stringify([object, {a: object}])",
        "[object.SLOT(ARGUMENT), object['SIGNATURE'](ARGUMENT), object.SLOT.call(null, ARGUMENT)]",

        "(function () { object.SLOT = 5; object.PROPERTY = 'x'; object.none = 6;"
        "return [typeof object.SLOT, object.PROPERTY, object.none]; })()",
        "(function () { 'use strict'; object.SLOT = 5; object['SIGNATURE'] = 5; object.PROPERTY = 'x'; object.none = 6;"
        "return [typeof object.SLOT, typeof object['SIGNATURE'], object.PROPERTY, object.none]; })()",
        "(function () { object[0] = 'a'; object[7] = 'b'; return [object[0], object[7], object.length]; })()",
        "(function () { object.SLOT.x = 5; return object.SLOT.x; })()",
        "(function () { object.none = 5; return [object.hasOwnProperty('none'), 'none' in object,"
        "object.propertyIsEnumerable('none'), names(Object.keys(object), true)]; })()",
        "[delete object.SLOT, delete object.PROPERTY, delete object.none, typeof object.SLOT, typeof object.PROPERTY]",
        "[error(function () { 'use strict'; delete object.SLOT; }), error(function () { 'use strict';"
        "delete object.none; })]",
        "(function () { with (object) { return [typeof SLOT, typeof PROPERTY]; } })()",
        "(function () { with (object) { SLOT = 5; } return [typeof object.SLOT, typeof window.SLOT]; })()",
        "(function () { object.__proto__ = {inherited: 1}; return [object.inherited, typeof object.SLOT]; })()",

        "(function () { function Heir() { this.SLOT = function () { return 'mine'; }; } Heir.prototype = object;"
        "return [new Heir().SLOT(-5), typeof object.SLOT, new Heir() instanceof Heir]; })()",
        "(function () { 'use strict'; function Heir() { this.SLOT = this['SIGNATURE'] = this.PROPERTY = 5; }"
        "Heir.prototype = object; var heir = new Heir(); return [heir.SLOT, heir['SIGNATURE'], heir.PROPERTY,"
        "Object.keys(heir), typeof object.SLOT, typeof object.PROPERTY]; })()",
        "(function () { var heir = Object.create(object); heir.SLOT = 5; heir.PROPERTY = 6; heir.objectName = 7;"
        "heir.none = 8; return [heir, Object.keys(heir), typeof object.SLOT, object.objectName, object.none]; })()",
        "(function () { var heir = Object.create(object, {SLOT: {value: 5}}); return heir.SLOT; })()",
        "(function () { var heir = Object.create(object); heir.SLOT = 5; return [delete heir.SLOT, typeof heir.SLOT]; "
        "})()",
        "(function () { var heir = Object.create(Object.create(object)); heir.SLOT = 5; return heir.SLOT; })()",
        "(function () { var heir = {}; heir.__proto__ = object; heir.SLOT = 5; return heir.SLOT; })()",
        "(function () { var heir = []; heir.__proto__ = object; heir.SLOT = 5; return [heir.SLOT, heir.length]; })()",
        "(function () { var heir = Object.create(object); return [heir.SLOT === object.SLOT, heir.SLOT(ARGUMENT),"
        "heir.PROPERTY, names(heir), Object.keys(heir), Object.prototype.toString.call(heir)]; })()",
        "object.isPrototypeOf(Object.create(object))",

        "error(function () { Object.defineProperty(object, 'SLOT', {value: 5, configurable: true}); })",
        "error(function () { Object.defineProperty(object, 'PROPERTY', {enumerable: false}); })",
        "(function () { Object.defineProperty(object, 'none', {value: 5}); object.none = 6; return object.none; })()",
        "(function () { Object.defineProperty(object, 'none', {get: function () { return this === object; }});"
        "return object.none; })()",
        "(function () { object.__defineGetter__('none', function () { return 5; }); return object.none; })()",
        "[1].concat(object).length",
        "error(function () { object(); })",
        "error(function () { new object(); })",
        "error(function () { ({}) instanceof object; })",
        "error(function () { document.body.appendChild(object); })",
        "error(function () { postMessage(object, '*'); })"};
    const char *const scriptsOfTodaysEngine[] = {
        "[Object.isFrozen(object), Object.isSealed(object), Object.isExtensible(object)]",
        "[Object.freeze(object) === object, Object.isExtensible(object), Object.isSealed(object)]",
        "(function () { Object.freeze(object); object.SLOT = 5; object.none = 6; object.objectName = 'x';"
        "return [typeof object.SLOT, object.none, object.objectName, object.SLOT(ARGUMENT)]; })()",
        "(function () { Object.seal(object); object.none = 6; object.objectName = 'x';"
        "return [object.none, object.objectName, object.SLOT(ARGUMENT)]; })()",
        "(function () { Object.preventExtensions(object); object.none = 6; object.objectName = 'x';"
        "return [object.none, object.objectName]; })()",
        "(function () { var heir = Object.freeze(Object.create(object)); heir.SLOT = 5; heir.PROPERTY = 6;"
        "return [typeof heir.SLOT, heir.PROPERTY, Object.keys(heir)]; })()",
        "(function () { var heir = Object.preventExtensions(Object.create(object)); heir.SLOT = 5;"
        "return typeof heir.SLOT; })()",
        "(function () { class Heir { constructor() { this.SLOT = 5; } } Heir.prototype.__proto__ = object;"
        "return new Heir().SLOT; })()",
        "(function () { Object.setPrototypeOf(object, {inherited: 1}); return [object.inherited, typeof object.SLOT]; "
        "})()",
        "(function () { var map = new Map([[object, 5]]); return [map.get(object), map.has(other), map.size]; })()",
        "(function () { var map = new WeakMap([[object, 5]]); return map.get(object); })()",
        "[new Set([object, object, other]).size, Array.from(new Set([object]))[0] === object]",
        "Object.assign({}, object)",
        "names(Object.keys(Object.assign({}, object)), true)",
        "names(Reflect.ownKeys(object), true)",
        "[Reflect.has(object, 'SLOT'), Reflect.getPrototypeOf(object) === Object.prototype]",
        "`${object}`"};
    for (const auto &object : objects) {
        const auto row = [&object](const char *script) {
            const QString filled = QString(script)
                                       .replace("SLOT", object.slot)
                                       .replace("SIGNATURE", object.signature)
                                       .replace("PROPERTY", object.property)
                                       .replace("ARGUMENT", object.argument);
            QTest::addRow("%s: %s", object.object, qPrintable(filled)) << QString(object.object) << filled;
        };
        for (const char *const script : scripts)
            row(script);
        if (HostedPlugin::hasBoxEngine())
            continue;
        for (const char *const script : scriptsOfTodaysEngine)
            row(script);
    }
}

void TestPageGuards::guardsAreUsedLikeWrappers()
{
    QFETCH(const QString, object);
    QFETCH(const QString, script);
    m_plugin->evaluate(object + ".objectName = ''"); // which outlives its page
    QVERIFY(m_wrappers.load(m_plugin.get(), "<title>both</title>"));
    // But for the one name that no box has. The text of an error names the object as the script does.
    m_plugin->evaluate("var other = {};"
                       "function names(object, areListed) { var all = [];"
                       "if (areListed) all = object; else for (var name in object) all.push(name);"
                       "return all.filter(function (name) { return name !== 'objectNameChanged(QString)'; }); }"
                       "function error(call) { try { call(); } catch (thrown) {"
                       "return thrown instanceof TypeError ? 'TypeError' : String(thrown); } }");
    QString results[2];
    QByteArrayList calls[2];
    const QString sides[] = {object, WrappersBeside::nameBeside(object)};
    for (int i = 0; i < 2; ++i) {
        RecordingPlatform::reset();
        results[i] = asJson("(function (object) { return " + script + "; })(" + sides[i] + ")");
        calls[i] = RecordingPlatform::takeCalls();
    }
    QCOMPARE(results[0], results[1]);
    // Freezing reads a wrapper's properties, which the platform hears of.
    if (!script.contains("Object.freeze(object)") && !script.contains("Object.seal(object)")
        && !script.contains("isFrozen"))
        QCOMPARE(calls[0], calls[1]);
    QVERIFY2(!results[1].startsWith("throws"), qPrintable(results[1]));
}

void TestPageGuards::listsAreThoseThatWrappersTake_data()
{
    QTest::addColumn<QString>("value");
    for (const char *const value : {"undefined",
                                    "null",
                                    "NaN",
                                    "Infinity",
                                    "-Infinity",
                                    "{}",
                                    "{status: 'FAIL', message: 'Unknown error', code: '0'}",
                                    "{length: 1, 0: 5}",
                                    "new Number(NaN)",
                                    "new Number(5)",
                                    "new String('6')",
                                    "new String('x')",
                                    "new Boolean(true)",
                                    "true",
                                    "false",
                                    "5",
                                    "2.6",
                                    "-3",
                                    "1e300",
                                    "'6'",
                                    "''",
                                    "'x'",
                                    "'1,2'",
                                    "[]",
                                    "[[]]",
                                    "[[5]]",
                                    "[undefined]",
                                    "[1, undefined]",
                                    "[,1]",
                                    "[null]",
                                    "[NaN]",
                                    "[1, NaN, 2]",
                                    "[Infinity]",
                                    "[{}]",
                                    "[{a: 1}]",
                                    "[new Number(5)]",
                                    "[new String('6')]",
                                    "[new Number(NaN)]",
                                    "[new Boolean(true)]",
                                    "[new Date(5)]",
                                    "[function () {}]",
                                    "[true]",
                                    "['x']",
                                    "[window]",
                                    "function () {}",
                                    "new Date(5)",
                                    "/x/",
                                    "new Error('x')",
                                    "Object.create(null)",
                                    "object",
                                    "object.SetOrder",
                                    "(function () { return arguments; })(1, 2)",
                                    "document",
                                    "document.childNodes",
                                    "document.all",
                                    "window",
                                    "Math",
                                    "JSON",
                                    "Object.create([1, 2])",
                                    "(function () { var list = [1, 2]; list.x = 5; return list; })()"})
        QTest::newRow(value) << QString(value);
    if (HostedPlugin::hasBoxEngine())
        return;
    for (const char *const value : {"Symbol('s')", "new Uint8Array([1, 2])", "new Uint8Array(2).buffer",
                                    "new Map([[1, 2]])", "new Set([1, 2])", "new Array(3)"})
        QTest::newRow(value) << QString(value);
}

void TestPageGuards::listsAreThoseThatWrappersTake()
{
    QFETCH(const QString, value);
    QVERIFY(m_wrappers.load(m_plugin.get(), "<title>both</title>"));
    QString results[2];
    QByteArrayList calls[2];
    const QString sides[] = {"StbDisplay", WrappersBeside::nameBeside("StbDisplay")};
    for (int i = 0; i < 2; ++i) {
        RecordingPlatform::reset();
        results[i] = asJson("(function (object) { try { return object.SetOrder(" + value
                            + "); } catch (error) { return 'throws ' + error.message; } })(" + sides[i] + ")");
        calls[i] = RecordingPlatform::takeCalls();
    }
    QCOMPARE(results[0], results[1]);
    QCOMPARE(calls[0], calls[1]);
}

void TestPageGuards::whatAPageAddsStaysUntilTheNextPage()
{
    asJson("StbPVR.mine = {a: 1}");
    QCOMPARE(asJson("StbPVR.mine"), QString("{\"a\":1}"));
    QVERIFY(m_plugin->loadHtml("<title>next</title>"));
    QCOMPARE(asJson("typeof StbPVR.mine"), QString("\"undefined\""));
    QCOMPARE(asJson("typeof StbPVR.AddRecord"), QString("\"function\""));
}

// Not those of the page before, which the engine may still know.
void TestPageGuards::answersAreThePagesOwn()
{
    RecordingPlatform::reset();
    asJson("Object.prototype.before = Array.prototype.before = 1; StbPVR.GetRecordsList(), "
           "StbDisplay.GetGraphicsViewport()");
    QVERIFY(m_plugin->loadHtml("<title>next</title>"));
    QCOMPARE(asJson("[StbPVR.GetRecordsList() instanceof Array, StbDisplay.GetGraphicsViewport() instanceof Object,"
                    "StbPVR.GetRecordsList().before, StbDisplay.GetGraphicsViewport().before]"),
             QString("[true,true,null,null]"));
}

QTEST_MAIN(TestPageGuards)

#include "tst_pageguards.moc"
