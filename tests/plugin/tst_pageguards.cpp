// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HostedPlugin.h"
#include "RecordingPlatform.h"

#include "jsapi/StbDisplay.h"
#include "jsapi/StbPVR.h"
#include "shell/CStbApplication.h"

#include <QWebFrame>
#include <QWebPage>
#include <QtTest>

#include <memory>

// Pages see guards in place of the script objects. What they can tell of them is what the toolkit's own wrappers of the
// same classes show, in a page beside.
class TestPageGuards : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void guardsLookLikeTheirObjects_data();
    void guardsLookLikeTheirObjects();
    void whatAPageAddsStaysUntilTheNextPage();

private:
    QString asJson(const QString &script) { return m_plugin->evaluateToJson(script); }
    // The same in the page without guards.
    QString bareAsJson(const QString &script);

    std::unique_ptr<HostedPlugin> m_plugin;
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

void TestPageGuards::guardsLookLikeTheirObjects_data()
{
    QTest::addColumn<QString>("script");
    const auto row = [](const char *script) { QTest::newRow(script) << QString(script); };
    row("(function () { var n = []; for (var m in StbDisplay) n.push(m); return n; })()");
    row("(function () { var n = []; for (var m in StbPVR) n.push(m); return n; })()");
    row("(function () { var t = {}; for (var m in StbDisplay) t[m] = typeof StbDisplay[m]; return t; })()");
    row("(function () { var t = {}; for (var m in StbPVR) t[m] = typeof StbPVR[m]; return t; })()");
    row("Object.keys(StbPVR)");
    row("[typeof StbDisplay, typeof StbPVR, typeof StbDisplay.Log, typeof StbPVR.AddRecord]");
    row("[String(StbDisplay), StbDisplay + '', String(StbPVR)]");
    row("[!!StbDisplay, StbDisplay == StbDisplay, StbDisplay == StbPVR, StbDisplay.Log == StbDisplay.Log]");
    row("['Log' in StbDisplay, 'Log(QString)' in StbDisplay, 'APIVersion' in StbDisplay, 'none' in StbDisplay]");
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
    row("(function () { try { StbPVR.DeleteRecord(); } catch (error) { return String(error); } })()");
    row("(function () { try { StbPVR.DeleteRecord(null); } catch (error) { return String(error); } })()");
    row("(function () { try { StbPVR.AddRecord('', '', 'x', 1); } catch (error) { return String(error); } })()");
    row("(function () { try { StbPVR.AddRecord('', '', {}, 1); } catch (error) { return String(error); } })()");
    row("StbPVR.AddRecord('', '', new Date(0), 1)");
    row("StbPVR.SetRecordStartTime(1, '2012-01-01')");
}

void TestPageGuards::guardsLookLikeTheirObjects()
{
    QFETCH(const QString, script);
    RecordingPlatform::reset();
    const QString guarded = asJson(script);
    const QByteArrayList guardedCalls = RecordingPlatform::takeCalls();
    RecordingPlatform::reset();
    QCOMPARE(guarded, bareAsJson(script));
    QCOMPARE(guardedCalls, RecordingPlatform::takeCalls());
    QVERIFY(!guarded.startsWith("throws"));
}

void TestPageGuards::whatAPageAddsStaysUntilTheNextPage()
{
    asJson("StbPVR.mine = {a: 1}");
    QCOMPARE(asJson("StbPVR.mine"), QString("{\"a\":1}"));
    QVERIFY(m_plugin->loadHtml("<title>next</title>"));
    QCOMPARE(asJson("typeof StbPVR.mine"), QString("\"undefined\""));
    QCOMPARE(asJson("typeof StbPVR.AddRecord"), QString("\"function\""));
}

QTEST_MAIN(TestPageGuards)

#include "tst_pageguards.moc"
