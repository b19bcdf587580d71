// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptMetaObject.h"
#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QMetaMethod>
#include <QtTest>

#include <memory>

// The script objects' signals, as pages find them: functions can be connected to them, and nothing else.
class TestPageSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void functionsAreConnectedToEachSignal_data();
    void functionsAreConnectedToEachSignal();
    void nothingElseIsConnected_data();
    void nothingElseIsConnected();
    void listenersHaveTheirReceivers_data();
    void listenersHaveTheirReceivers();
    void pagesMayEmitSignals();
    void pagesThatAreGoneHearNothing();

private:
    QString result(const QString &script) { return m_session->run(script).result; }

    std::unique_ptr<ScriptSession> m_session;
};

void TestPageSignals::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestPageSignals::init()
{
    RecordingPlatform::reset();
    QVERIFY(m_session->plugin().loadHtml("<title>page</title>"));
}

void TestPageSignals::functionsAreConnectedToEachSignal_data()
{
    QTest::addColumn<QString>("object");
    for (const char *object : {"StbMedia", "StbDisplay", "StbPVR", "stb_media", "stb_display"})
        QTest::newRow(object) << QString(object);
}

void TestPageSignals::functionsAreConnectedToEachSignal()
{
    QFETCH(const QString, object);
    const QMetaObject *const metaObject = scriptMetaObject(&m_session->plugin(), object);
    QVERIFY(metaObject);
    for (int i = 0; i < metaObject->methodCount(); ++i) {
        const QMetaMethod method = metaObject->method(i);
        if (method.methodType() != QMetaMethod::Signal || method.name() == "objectNameChanged") // which no box has
            continue;
        const QString fullName = object + "['" + QString::fromLatin1(method.methodSignature()) + "']";
        const QString name = object + "." + QString::fromLatin1(method.name());
        QCOMPARE(result("var listener = function () {}; " + fullName + ".connect(listener)"), QString("undefined"));
        QCOMPARE(result(fullName + ".disconnect(listener)"), QString("undefined"));
        QCOMPARE(result(name + ".connect(null, 'x')"),
                 QString("throws TypeError: QtMetaMethod.connect: thisObject is not an object"));
    }
}

void TestPageSignals::nothingElseIsConnected_data()
{
    QTest::addColumn<QString>("receiver");
    for (const char *receiver : {"",
                                 "null",
                                 "undefined",
                                 "1",
                                 "'x'",
                                 "{}",
                                 "new Date(NaN)",
                                 "StbMedia",
                                 "null, null",
                                 "null, {}",
                                 "null, function () {}",
                                 "null, 'x'",
                                 "null, new Date(NaN)",
                                 "undefined, undefined",
                                 "undefined, null",
                                 "undefined, {}",
                                 "undefined, 'x'",
                                 "document.all, 'x'",
                                 "1, StbMedia",
                                 "'x', {}",
                                 "true, []",
                                 "{}, {}",
                                 "{}, null",
                                 "{}, 'x'",
                                 "{}, new Date(NaN)",
                                 "StbMedia, 'x'",
                                 "StbMedia, {}",
                                 "Object.create(null), {toString: function () { throw 1; }}",
                                 "window, window",
                                 "document, 'body'"})
        QTest::newRow(receiver) << receiver;
    if (HostedPlugin::hasBoxEngine())
        return;
    for (const char *receiver : {"Symbol('s')", "undefined, Symbol('s')", "{}, Symbol('s')"})
        QTest::newRow(receiver) << receiver;
}

// Of members that are no signals, either.
void TestPageSignals::nothingElseIsConnected()
{
    QFETCH(const QString, receiver);
    QCOMPARE(result(QString("var tried = 0, taken = [];"
                            "[StbMedia, StbDisplay, StbPVR, stb_media, stb_display].forEach(function (object) {"
                            "for (var name in object) {"
                            "[name, name.split('(')[0]].forEach(function (member) {"
                            "['connect', 'disconnect'].forEach(function (action) { ++tried;"
                            "try { object[member][action](%1); taken.push(member); } catch (refused) {} });"
                            "}); } }); (tried > 500) + taken.join()")
                        .arg(receiver)),
             QString("\"true\""));
}

void TestPageSignals::listenersHaveTheirReceivers_data()
{
    QTest::addColumn<QString>("listener");
    QTest::addColumn<QString>("heard");
    QTest::newRow("function") << "hear"
                              << "[[true,5]]";
    QTest::newRow("function of a receiver") << "receiver, hear"
                                            << "[[\"mine\",5]]";
    QTest::newRow("receiver's function by its name") << "receiver, 'hear'"
                                                     << "[[\"mine\",5]]";
}

void TestPageSignals::listenersHaveTheirReceivers()
{
    QFETCH(const QString, listener);
    QFETCH(const QString, heard);
    const QString signal = "StbDisplay.keyDelayChanged.";
    result("var heard = []; function hear(value) { heard.push([this === window || this.name, value]); }"
           "var receiver = {name: 'mine', hear: hear};"
           + signal + "connect(" + listener + "); StbDisplay.SetKeyEventPeriod(5);");
    QCOMPARE(result("heard"), heard);
    result(signal + "disconnect(" + listener + "); StbDisplay.SetKeyEventPeriod(0);");
    QCOMPARE(result("heard"), heard);
    QCOMPARE(result(signal + "disconnect(" + listener + ")"),
             QString("throws Error: QtMetaMethod.disconnect: failed to disconnect from KavroJS::StbDisplay::"
                     "keyDelayChanged()"));
    // As often as it was connected.
    result("heard = [];" + signal + "connect(" + listener + ");" + signal + "connect(" + listener + ");" + signal
           + "disconnect(" + listener + "); StbDisplay.SetKeyEventPeriod(5)");
    QCOMPARE(result("heard"), heard);
}

// The browser hears them too, and each listener once.
void TestPageSignals::pagesMayEmitSignals()
{
    result("var heard = [], ran = 0; StbMedia.jsCallback.connect(function (text) { heard.push(text); });"
           "StbMedia.CreatePlayer(); StbMedia.jsCallback('++ran')");
    QCOMPARE(result("heard"), QString("[\"++ran\"]"));
    RecordingPlatform::fire(1, KVR_EVENT_STATE);
    RecordingPlatform::waitUntilFired();
    QCoreApplication::processEvents();
    QCOMPARE(result("ran"), QString("1"));
    result("StbMedia.onEvent = ''");
}

void TestPageSignals::pagesThatAreGoneHearNothing()
{
    m_session->run("StbDisplay.keyDelayChanged.connect(function () { StbMedia.Pause(77); })");
    QCOMPARE(m_session->run("StbDisplay.SetKeyEventPeriod(0)").calls, QByteArray("KVR_Pause(77)"));
    QVERIFY(m_session->plugin().loadHtml("<title>next</title>"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(m_session->run("StbDisplay.SetKeyEventPeriod(0)").calls, QByteArray());
}

QTEST_MAIN(TestPageSignals)

#include "tst_pagesignals.moc"
