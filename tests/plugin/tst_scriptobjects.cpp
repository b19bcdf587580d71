// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"

#include <QWebFrame>
#include <QWebView>
#include <QtTest>

namespace {

// What a page sees, when its first script runs, of a method of each object.
const char *const look =
    "<script>var seen = ['StbMedia.CreatePlayer', 'StbDisplay.ExitToMenu', 'StbPVR.AddRecord',"
    "'stb_media.CreatePlayer', 'stb_display.setAlphaLevel'].map(function (name) {"
    "var names = name.split('.'); return typeof (window[names[0]] || {})[names[1]]; }).join(' ');"
    "var names = ['StbMedia', 'StbDisplay', 'StbPVR', 'stb_media', 'stb_display'].filter(function (name) {"
    "return name in window; }).length;"
    "var callback = typeof StbMedia === 'object' ? typeof StbMedia.eventCallback : 'no object';</script>";
const char *const allFive = "function function function function function";

} // namespace

// How the script objects come into each page.
class TestScriptObjects : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theyAreThereBeforeThePagesFirstScript_data();
    void theyAreThereBeforeThePagesFirstScript();
    void framesHaveNone();
    void theyAreTheSameObjectsInEachPage();
    void theGlueStoresThePagesFunction();
    void aNewPageHearsNoEventsUntilItAsks_data();
    void aNewPageHearsNoEventsUntilItAsks();

private:
    HttpServer m_server;
};

void TestScriptObjects::init()
{
    HostedPlugin::writeManifest(PluginManifest());
    RecordingPlatform::reset();
    m_server.serve("/first", QByteArray("<title>First</title>") + look + "<a id='link' href='/second'>on</a>");
    m_server.serve("/second", QByteArray("<title>Second</title>") + look);
    m_server.redirect("/moved", m_server.url("/second"));
}

void TestScriptObjects::theyAreThereBeforeThePagesFirstScript_data()
{
    QTest::addColumn<QString>("step");

    QTest::newRow("first page") << "";
    QTest::newRow("set by its script") << "location.href = '/second'";
    QTest::newRow("replaced by its script") << "location.replace('/second')";
    QTest::newRow("by its link") << "document.getElementById('link').click()";
    QTest::newRow("redirected") << "location.href = '/moved'";
    QTest::newRow("reloaded") << "location.reload()";
    QTest::newRow("after it deleted and replaced them")
        << "delete window.StbMedia; StbDisplay = 1; stb_media = null; location.reload()";
}

void TestScriptObjects::theyAreThereBeforeThePagesFirstScript()
{
    QFETCH(QString, step);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));
    QCOMPARE(plugin.evaluate("seen").toString(), QString(allFive));
    if (step.isEmpty())
        return;
    const QString title = step.contains("reload") ? "First" : "Second";

    plugin.evaluate("window.seen = 'the page before'; " + step);
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(plugin.browser()->title(), title);
    QCOMPARE(plugin.evaluate("seen").toString(), QString(allFive));
}

void TestScriptObjects::framesHaveNone()
{
    m_server.serve("/frames", look + QByteArray("<iframe id='frame' src='/first'></iframe>"));
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/frames")));

    QCOMPARE(plugin.evaluate("seen").toString(), QString(allFive));
    QCOMPARE(plugin.evaluate("document.getElementById('frame').contentWindow.names").toString(), QString("0"));
}

void TestScriptObjects::theyAreTheSameObjectsInEachPage()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));
    const int player = plugin.evaluate("StbMedia.CreatePlayer()").toInt();
    RecordingPlatform::fire(player, KVR_EVENT_VOLUME);
    const QString record = "StbMedia.GetEventDescription().type";
    QTRY_COMPARE(plugin.evaluate(record).toInt(), int(KVR_EVENT_VOLUME));
    RecordingPlatform::takeCalls();

    QVERIFY(plugin.load(m_server.url("/second")));
    QCOMPARE(plugin.evaluate(record).toInt(), int(KVR_EVENT_VOLUME));
    // The page's end has closed nothing; the player is closed with the browser.
    const QByteArray close = "KVR_ClosePlayer(" + QByteArray::number(player) + ")";
    QVERIFY(!RecordingPlatform::calls().contains(close));
    plugin.destroy();
    QCOMPARE(RecordingPlatform::calls().count(close), 1);
}

void TestScriptObjects::theGlueStoresThePagesFunction()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));

    QCOMPARE(plugin.evaluate("callback").toString(), QString("undefined"));
    QVERIFY2(plugin.evaluate("String(StbMedia.SetEventCallback)").toString().contains("StbMedia.eventCallback = fun;"),
             qPrintable(plugin.evaluate("String(StbMedia.SetEventCallback)").toString()));
    QCOMPARE(plugin.evaluateToJson("function f() {} StbMedia.SetEventCallback(f)"), QString("undefined"));
    QCOMPARE(plugin.evaluateToJson("StbMedia.eventCallback === f"), QString("true"));
}

void TestScriptObjects::aNewPageHearsNoEventsUntilItAsks_data()
{
    QTest::addColumn<QString>("set");

    QTest::newRow("by the method") << "StbMedia.SetEventCallback(hear)";
    QTest::newRow("directly") << "StbMedia.eventCallback = hear";
}

void TestScriptObjects::aNewPageHearsNoEventsUntilItAsks()
{
    QFETCH(QString, set);
    const QString prepare = "var heard = []; function hear(argument, code) { heard.push(argument + ' ' + code); }";
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.load(m_server.url("/first")));
    const int player = plugin.evaluate("StbMedia.CreatePlayer()").toInt();
    plugin.evaluate(prepare + set);
    RecordingPlatform::fire(player, KVR_EVENT_STATE);
    QTRY_COMPARE(plugin.evaluate("heard.join()").toString(), QString("%1 1").arg(player));

    plugin.evaluate("document.getElementById('link').click()");
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(plugin.evaluate("callback").toString(), QString("undefined"));
    plugin.evaluate(prepare + "var errors = 0; window.onerror = function () { ++errors; }");
    RecordingPlatform::fire(player, KVR_EVENT_VOLUME);
    QTRY_COMPARE(plugin.evaluate("StbMedia.GetEventDescription().type").toInt(), int(KVR_EVENT_VOLUME));
    QCOMPARE(plugin.evaluate("heard.join()").toString(), QString());

    plugin.evaluate(set);
    RecordingPlatform::fire(player, KVR_EVENT_MUTE);
    QTRY_COMPARE(plugin.evaluate("heard.join()").toString(), QString("%1 9").arg(player));
    QCOMPARE(plugin.evaluate("errors").toInt(), 0);
}

QTEST_MAIN(TestScriptObjects)
#include "tst_scriptobjects.moc"
