// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HttpServer.h"

#include <QApplication>
#include <QTimer>
#include <QWebPage>
#include <QWebView>
#include <QtTest>
#include <climits>
#include <memory>

namespace {

// A page that keeps what it hears in "seen", and the number of its uncaught errors in "errors".
const char *const page = R"(<!DOCTYPE html><title>Page</title><script>
var seen = [], errors = 0;
onerror = function () { ++errors; };
function hear(argument, code) { seen.push([argument, code]); }
</script>)";

} // namespace

// Events on their way from the platform's threads to the page: the page's callback, its handler text, and the record of
// the latest event.
class TestPlayerEvents : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();

    void nothingHasHappenedAtFirst(); // hence the first test
    void eachCodeReachesThePage_data();
    void eachCodeReachesThePage();
    void argumentsArriveUnchanged_data();
    void argumentsArriveUnchanged();
    void theRecordIsNewerThanTheCallback();
    void nothingElseIsCalledOrTraced();

    void theCallbackMayBeSetDirectly();
    void theCallbackIsAMethodOfTwoNumbers();
    void theCallbackIsLookedUpAnewEachTime();
    void theLatestCallbackIsCalled();
    void aPageThatForbidsEvaluationHearsEvents_data();
    void aPageThatForbidsEvaluationHearsEvents();
    void aPageThatBreaksTheLanguageHearsEvents();
    void aPageWithoutCallbackHasNoErrors();
    void aCallbackThatIsNoFunctionHarmsNobody_data();
    void aCallbackThatIsNoFunctionHarmsNobody();
    void aNewPageHasNoCallback();

    void theHandlerTextRunsAfterTheCallback();
    void theHandlerTextRunsWithoutACallback();
    void theHandlerTextReadsAsEmpty();
    void theHandlerTextSurvivesThePage();
    void theHandlerTextCanBeReplacedAndRemoved_data();
    void theHandlerTextCanBeReplacedAndRemoved();
    void bothObjectsSetTheOneHandlerText();
    void aBrokenHandlerTextHarmsNobody_data();
    void aBrokenHandlerTextHarmsNobody();

    void aCallbackThatThrowsHearsTheNextEventToo();
    void whatACallbackThrowsIsReportedAsThatOfAListener_data();
    void whatACallbackThrowsIsReportedAsThatOfAListener();
    void whatACallbackLeavesIsDoneAsAfterAText_data();
    void whatACallbackLeavesIsDoneAsAfterAText();
    void aCallbackCannotStopTheEventsToCome();
    void eventsArriveWhileACallbackShowsADialog();
    void aPageThatIsWrittenAnewHearsEvents();
    void aCallbackThatNavigatesLosesNoEvent();
    void aCallbackThatMakesThePlatformFireIsNotEnteredAgain();
    void aCallbackMayCloseItsPlayer();
    void closedPlayersFallSilent();
    void eventsWithoutABrowserAreDropped();

private:
    void fire(int argument, int code) { RecordingPlatform::fire(1, code, argument); }
    void countConsoleErrors();
    /// Lets events that have been fired arrive.
    void deliver();
    QString evaluate(const QString &script) { return m_session->plugin().evaluateToJson(script); }

    std::unique_ptr<ScriptSession> m_session;
};

void TestPlayerEvents::init()
{
    RecordingPlatform::reset();
    if (!m_session) {
        m_session = std::make_unique<ScriptSession>();
        QVERIFY(m_session->start());
        if (HostedPlugin::hasBoxEngine())
            countConsoleErrors();
    }
    QVERIFY(m_session->plugin().loadHtml(page));
    evaluate("StbMedia.onEvent = ''");
    QCOMPARE(evaluate("StbMedia.CreatePlayer()"), QString("1"));
}

// Pages on a box have no error handler.
void TestPlayerEvents::countConsoleErrors()
{
    connect(m_session->plugin().browser()->page(), &QWebPage::consoleMessageReceived, this,
            [this](QWebPage::MessageSource, QWebPage::MessageLevel level) {
                if (level == QWebPage::ErrorMessageLevel)
                    m_session->plugin().evaluate("++errors");
            });
}

void TestPlayerEvents::cleanupTestCase()
{
    m_session.reset();
}

void TestPlayerEvents::deliver()
{
    RecordingPlatform::waitUntilFired();
    QCoreApplication::processEvents();
}

void TestPlayerEvents::eachCodeReachesThePage_data()
{
    QTest::addColumn<QString>("creation");
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("argument");
    for (const int code : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 14, 15})
        QTest::addRow("StbMedia %d", code) << "StbMedia.CreatePlayer()" << 2 << code << 2;
    for (const int code : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11})
        QTest::addRow("stb_media %d", code) << "stb_media.CreatePlayer()" << 2 << code << 2;
    QTest::newRow("synchronised") << "2" << KVR_BOX << 137 << -128;
    QTest::newRow("recordings") << "2" << KVR_BOX << 139 << 17;
    QTest::newRow("HDMI") << "2" << KVR_BOX << 144 << 1;
}

void TestPlayerEvents::eachCodeReachesThePage()
{
    QFETCH(QString, creation);
    QFETCH(int, id);
    QFETCH(int, code);
    QFETCH(int, argument);
    QCOMPARE(evaluate(creation), QString("2"));
    evaluate("StbMedia.SetEventCallback(hear)");
    RecordingPlatform::fire(id, code, argument);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[%1,%2]]").arg(argument).arg(code));
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString("{\"id\":%1,\"type\":%2}").arg(argument).arg(code));
}

void TestPlayerEvents::argumentsArriveUnchanged_data()
{
    QTest::addColumn<int>("argument");
    for (const int argument : {0, 1, -1, -128, INT_MAX, INT_MIN})
        QTest::addRow("%d", argument) << argument;
}

void TestPlayerEvents::argumentsArriveUnchanged()
{
    QFETCH(int, argument);
    evaluate("StbMedia.SetEventCallback(hear)");
    fire(argument, KVR_EVENT_POSITION);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[%1,3]]").arg(argument));
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString("{\"id\":%1,\"type\":3}").arg(argument));
}

void TestPlayerEvents::nothingHasHappenedAtFirst()
{
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString(R"({"id":0,"type":0})"));
}

void TestPlayerEvents::theRecordIsNewerThanTheCallback()
{
    evaluate("StbMedia.SetEventCallback(function (argument, code) {"
             "var event = StbMedia.GetEventDescription(); seen.push([argument, code, event.id, event.type]); })");
    fire(2, 3);
    fire(5, 1);
    fire(7, 15);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[2,3,2,3],[5,1,5,1],[7,15,7,15]]"));
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString(R"({"id":7,"type":15})"));
}

void TestPlayerEvents::nothingElseIsCalledOrTraced()
{
    QVERIFY(m_session->setTracing(true));
    evaluate("StbMedia.SetEventCallback(hear)");
    m_session->takeOutcome();
    fire(2, 3);
    deliver();
    QCOMPARE(evaluate("seen.length"), QString("1"));
    const ScriptSession::Outcome outcome = m_session->takeOutcome();
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(outcome.traces, QString());
    QCOMPARE(outcome.messages, QStringList());
    QVERIFY(m_session->setTracing(false));
}

void TestPlayerEvents::theCallbackMayBeSetDirectly()
{
    evaluate("StbMedia.eventCallback = hear");
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[1,2]]"));
}

void TestPlayerEvents::theCallbackIsAMethodOfTwoNumbers()
{
    evaluate("StbMedia.SetEventCallback(function () {"
             "seen.push(this === StbMedia, arguments.length, typeof arguments[0], typeof arguments[1]); })");
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("seen"), QString(R"([true,2,"number","number"])"));
}

// Such a policy stops pages, not the box.
void TestPlayerEvents::aPageThatForbidsEvaluationHearsEvents_data()
{
    QTest::addColumn<QByteArray>("policy");
    for (const char *const policy : {"script-src 'unsafe-inline'", "default-src 'none'; script-src 'unsafe-inline'",
                                     "script-src 'unsafe-inline'; sandbox allow-scripts"})
        QTest::newRow(policy) << QByteArray(policy);
}

void TestPlayerEvents::aPageThatForbidsEvaluationHearsEvents()
{
    QFETCH(QByteArray, policy);
    HttpServer server;
    HttpServer::Page strict = {QByteArray(page) + "<script>StbMedia.SetEventCallback(hear);</script>"};
    strict.headers = {{"Content-Security-Policy", policy}};
    server.serve("/", strict);
    QVERIFY(m_session->plugin().load(server.url("/")));
    HostedPlugin &plugin = m_session->plugin();
    QCOMPARE(plugin.evaluate("try { eval('1') } catch (error) { 'refused' }").toString(), QString("refused"));
    plugin.evaluate("StbMedia.onEvent = 'seen.push(StbMedia.GetPlayersCount())'");
    fire(1, 2);
    deliver();
    QCOMPARE(plugin.evaluate("JSON.stringify([seen, errors])").toString(), QString("[[[1,2],0],0]"));
}

void TestPlayerEvents::aPageThatBreaksTheLanguageHearsEvents()
{
    m_session->plugin().evaluate(
        "StbMedia.SetEventCallback(function (argument, code) { seen[seen.length] = code; throw new Error('x'); });"
        "Function.prototype.call = Function.prototype.apply = Function.prototype.bind = null; Function = null;"
        "document.createElement = document.createEvent = null; Node.prototype.dispatchEvent = null;"
        "EventTarget = null; Array.prototype.push = null; Object.defineProperty = null;"
        "StbMedia.occurred = StbMedia.deliver = null");
    fire(1, 2);
    fire(1, 3);
    deliver();
    QCOMPARE(m_session->plugin().evaluate("seen.join() + ';' + errors").toString(), QString("2,3;2"));
    QVERIFY(m_session->plugin().loadHtml(page));
}

// A page may put an object of its own in the place of the box's.
void TestPlayerEvents::theCallbackIsLookedUpAnewEachTime()
{
    evaluate("StbMedia.SetEventCallback(hear)");
    fire(1, 1);
    deliver();
    evaluate("boxMedia = StbMedia; StbMedia = {eventCallback: function () { seen.push(this === StbMedia); }}");
    fire(1, 2);
    deliver();
    evaluate("StbMedia = boxMedia");
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[1,1],true,[1,3]]"));
}

void TestPlayerEvents::theLatestCallbackIsCalled()
{
    evaluate("StbMedia.SetEventCallback(function () { seen.push('first'); })");
    evaluate("StbMedia.SetEventCallback(hear)");
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[1,2]]"));
    evaluate("StbMedia.SetEventCallback(undefined)");
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[[1,2]],0]"));
}

void TestPlayerEvents::aPageWithoutCallbackHasNoErrors()
{
    fire(4, 5);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[],0]"));
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString(R"({"id":4,"type":5})"));
}

void TestPlayerEvents::aCallbackThatIsNoFunctionHarmsNobody_data()
{
    QTest::addColumn<QString>("callback");
    for (const char *const callback : {"null", "5", "'hear'", "{}", "[]"})
        QTest::newRow(callback) << QString(callback);
}

void TestPlayerEvents::aCallbackThatIsNoFunctionHarmsNobody()
{
    QFETCH(QString, callback);
    evaluate("StbMedia.SetEventCallback(" + callback + "); StbMedia.onEvent = 'seen.push(0)'");
    fire(4, 5);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[0],1]"));
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString(R"({"id":4,"type":5})"));
}

void TestPlayerEvents::aNewPageHasNoCallback()
{
    evaluate("StbMedia.SetEventCallback(hear)");
    QVERIFY(m_session->plugin().loadHtml(page));
    QCOMPARE(evaluate("typeof StbMedia.eventCallback"), QString("\"undefined\""));
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[],0]"));
    evaluate("StbMedia.SetEventCallback(hear)");
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[1,3]]"));
}

void TestPlayerEvents::theHandlerTextRunsAfterTheCallback()
{
    evaluate("StbMedia.onEvent = 'seen.push(StbMedia.GetEventDescription().type)'");
    evaluate("StbMedia.SetEventCallback(hear)");
    QCOMPARE(evaluate("seen"), QString("[]"));
    fire(1, 2);
    fire(1, 3);
    RecordingPlatform::fire(KVR_BOX, KVR_EVENT_HDMI, 0);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[1,2],2,[1,3],3,[0,144],144]"));
}

void TestPlayerEvents::theHandlerTextRunsWithoutACallback()
{
    evaluate("StbMedia.onEvent = 'seen.push(StbMedia.GetEventDescription())'");
    fire(9, 7);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString(R"([[{"id":9,"type":7}],0])"));
}

void TestPlayerEvents::theHandlerTextReadsAsEmpty()
{
    QVERIFY(m_session->setTracing(true));
    const ScriptSession::Outcome setting = m_session->run("StbMedia.onEvent = 'привіт(\"%1\")'; 0");
    QCOMPARE(setting.traces, ScriptSession::quoted("StbMedia.onEvent(привіт(\"%1\"))"));
    QCOMPARE(setting.calls, QByteArray());
    const ScriptSession::Outcome reading = m_session->run("StbMedia.onEvent");
    QCOMPARE(reading.result, QString("\"\""));
    QCOMPARE(reading.traces, ScriptSession::quoted("StbMedia.onEvent"));
    QCOMPARE(reading.calls, QByteArray());
    QVERIFY(m_session->setTracing(false));
}

void TestPlayerEvents::theHandlerTextSurvivesThePage()
{
    evaluate("StbMedia.onEvent = 'seen.push(1)'");
    QVERIFY(m_session->plugin().loadHtml(page));
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[1]"));
}

void TestPlayerEvents::theHandlerTextCanBeReplacedAndRemoved_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("seen");
    QTest::newRow("other text") << "StbMedia.onEvent = 'seen.push(2)'"
                                << "[2]";
    QTest::newRow("empty") << "StbMedia.onEvent = ''"
                           << "[]";
    QTest::newRow("null") << "StbMedia.onEvent = null"
                          << "[]";
    QTest::newRow("undefined") << "StbMedia.onEvent = undefined"
                               << "[]";
    QTest::newRow("the signal itself") << "StbMedia.jsCallback('seen.push(3)')"
                                       << "[3]";
}

void TestPlayerEvents::theHandlerTextCanBeReplacedAndRemoved()
{
    QFETCH(QString, script);
    evaluate("StbMedia.onEvent = 'seen.push(1)'");
    evaluate(script);
    fire(1, 2);
    deliver();
    QTEST(evaluate("seen"), "seen");
}

void TestPlayerEvents::bothObjectsSetTheOneHandlerText()
{
    evaluate("StbMedia.onEvent = 'seen.push(1)'; stb_media.onEvent = 'seen.push(2)'");
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[2]"));
    evaluate("StbMedia.onEvent = 'seen.push(3)'");
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[2,3]"));
}

void TestPlayerEvents::aBrokenHandlerTextHarmsNobody_data()
{
    QTest::addColumn<QString>("text");
    for (const char *const text :
         {"throw new Error('x')", "no such syntax(", "noSuchFunction()", "%1 %2", "hear(7, 7); if (true)", "for (;;)",
          "hear(7, 7); while (seen.length < 3)", "if (false) hear(7, 7); else",
          "hear(7, 7); label:", "return hear(7, 7)", "}; hear(7, 7); {", "/* hear(7, 7)", "seen ="})
        QTest::newRow(text) << QString(text);
}

void TestPlayerEvents::aBrokenHandlerTextHarmsNobody()
{
    QFETCH(QString, text);
    evaluate("StbMedia.SetEventCallback(hear)");
    evaluate("StbMedia.onEvent = " + ScriptSession::quoted(text));
    fire(1, 2);
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[[1,2],[1,3]],2]"));
}

void TestPlayerEvents::aCallbackThatThrowsHearsTheNextEventToo()
{
    evaluate("StbMedia.onEvent = 'seen.push(0)'");
    evaluate("StbMedia.SetEventCallback(function (argument, code) { hear(argument, code); throw new Error('x'); })");
    fire(1, 2);
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[[1,2],0,[1,3],0],2]"));
}

void TestPlayerEvents::whatACallbackThrowsIsReportedAsThatOfAListener_data()
{
    QTest::addColumn<QByteArray>("script");
    for (const char *const script : {"throw 'text';",
                                     "throw '';",
                                     "throw 5;",
                                     "throw {a: 1};",
                                     "throw {toString: function () { return 'mine'; }};",
                                     "throw [1, 2];",
                                     "throw null;",
                                     "throw undefined;",
                                     "throw function () {};",
                                     "throw document;",
                                     "throw StbMedia;",
                                     "throw new Error('x');",
                                     "throw new TypeError('x');",
                                     "throw kept;",
                                     "null.x;",
                                     "noSuchFunction();",
                                     "StbMedia.Stop();",
                                     "StbDisplay.SetOrder(null);",
                                     "decodeURI('%');",
                                     "inner();",
                                     "(function () { throw 'x'; })();",
                                     "[1].forEach(function () { throw 'x'; });",

                                     "document.appendChild(null);",
                                     "(function deeper() { deeper(); })();"})
        QTest::newRow(script) << QByteArray(script);
}

void TestPlayerEvents::whatACallbackThrowsIsReportedAsThatOfAListener()
{
    QFETCH(const QByteArray, script);
    HttpServer server;
    server.serve("/",
                 "<!DOCTYPE html><title>Page</title>\n<script>\nvar told = [], errors = 0, kept = new Error('kept');\n"
                 "onerror = function () { told.push([].slice.call(arguments).map(String)); };\n"
                 "function inner() {\nthrow 'inner';\n}\n"
                 "function fail() {\n"
                     + script
                     + "\n}\nvar own = document.createElement('i'); own.addEventListener('own', fail, false);\n"
                       "function dispatch() { var event = document.createEvent('Event');\n"
                       "event.initEvent('own', false, false); own.dispatchEvent(event); }\n</script>");
    HostedPlugin &plugin = m_session->plugin();
    QStringList lines;
    const auto connection =
        connect(plugin.browser()->page(), &QWebPage::consoleMessageReceived, this,
                [&lines](QWebPage::MessageSource source, QWebPage::MessageLevel level, const QString &text, int line,
                         const QString &address) {
                    lines += QString("%1 %2 %3 %4 %5").arg(source).arg(level).arg(text, address).arg(line);
                });
    QVERIFY(plugin.load(server.url("/")));
    QStringList reports;
    for (const bool isCallback : {false, true}) {
        if (isCallback) {
            plugin.evaluate("StbMedia.SetEventCallback(fail)");
            fire(1, 2);
            deliver();
        } else {
            plugin.evaluate("dispatch()");
        }
        reports += lines.join('\n') + '\n' + plugin.evaluate("JSON.stringify(told)").toString();
        lines.clear();
        plugin.evaluate("told = []");
    }
    disconnect(connection);
    QCOMPARE(reports[1], reports[0]);
    QVERIFY2(reports[0].contains(server.url("/").toString()), qPrintable(reports[0]));
}

void TestPlayerEvents::whatACallbackLeavesIsDoneAsAfterAText_data()
{
    QTest::addColumn<QString>("callback");
    QTest::newRow("nothing") << "";
    if (HostedPlugin::hasBoxEngine())
        return;
    QTest::newRow("promise") << "Promise.resolve('kept').then(note);";
    QTest::newRow("promises") << "Promise.resolve('first').then(note); Promise.resolve('second').then(note);";
    QTest::newRow("promise of a promise")
        << "Promise.resolve().then(function () { return Promise.resolve('kept'); }).then(note);";
    QTest::newRow("broken promise") << "Promise.reject('broken').catch(note);";
    QTest::newRow("promise before an error") << "Promise.resolve('kept').then(note); throw new Error('x');";
    QTest::newRow("observed change") << "new MutationObserver(note).observe(document.body, {attributes: true});"
                                        "document.body.id = code;";
}

// That is, before the handler text.
void TestPlayerEvents::whatACallbackLeavesIsDoneAsAfterAText()
{
    QFETCH(const QString, callback);
    const QString text = "seen.push('text')";
    evaluate("function note() { seen.push('later'); } StbMedia.SetEventCallback(function (argument, code) {"
             "seen.push(code); "
             + callback + " })");
    for (int code = 2; code <= 3; ++code) {
        m_session->plugin().evaluate(QString("if (typeof StbMedia.eventCallback != 'undefined')"
                                             "StbMedia.eventCallback(1, %1);")
                                         .arg(code));
        m_session->plugin().evaluate(text);
    }
    const QString expected = evaluate("[seen, errors]");
    QVERIFY(m_session->plugin().loadHtml(page));
    evaluate("function note() { seen.push('later'); } StbMedia.SetEventCallback(function (argument, code) {"
             "seen.push(code); "
             + callback + " })");
    evaluate("StbMedia.onEvent = " + ScriptSession::quoted(text));
    fire(1, 2);
    fire(1, 3);
    RecordingPlatform::waitUntilFired();
    // Only what has been posted: the engine's timers come later.
    QCoreApplication::sendPostedEvents();
    QCOMPARE(evaluate("[seen, errors]"), expected);
}

void TestPlayerEvents::aCallbackCannotStopTheEventsToCome()
{
    evaluate("StbMedia.SetEventCallback(function (argument, code) { hear(argument, code); if (window.event) {"
             "event.stopImmediatePropagation(); event.preventDefault(); event.initEvent('other', true, true); } })");
    fire(1, 2);
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[[1,2],[1,3]],0]"));
}

void TestPlayerEvents::eventsArriveWhileACallbackShowsADialog()
{
    evaluate("StbMedia.SetEventCallback(function (argument, code) { hear(argument, code);"
             "if (code === 2) alert('wait'); hear(arguments[0], -arguments[1]); })");
    QTimer timer;
    bool isFired = false;
    connect(&timer, &QTimer::timeout, this, [this, &isFired] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (!dialog)
            return;
        if (!isFired)
            fire(7, 3);
        else if (evaluate("seen.length") == "3")
            dialog->close();
        isFired = true;
    });
    timer.start(10);
    fire(1, 2);
    QTRY_COMPARE(evaluate("[seen, errors]"), QString("[[[1,2],[7,3],[7,-3],[1,-2]],0]"));
}

void TestPlayerEvents::aPageThatIsWrittenAnewHearsEvents()
{
    evaluate("var before = seen; document.open(); document.write('<p>anew</p>'); document.close();"
             "StbMedia.SetEventCallback(function (argument, code) { before.push(code); })");
    fire(1, 2);
    deliver();
    QCOMPARE(evaluate("before"), QString("[2]"));
}

void TestPlayerEvents::aCallbackThatNavigatesLosesNoEvent()
{
    HttpServer server;
    server.serve("/first", page);
    server.serve("/second",
                 "<!DOCTYPE html><title>Second</title><script>var seen = [];"
                 "StbMedia.SetEventCallback(function (argument, code) { seen.push([argument, code]); });"
                 "</script>");
    QVERIFY(m_session->plugin().load(server.url("/first")));
    // What every page hears is told to the platform, which outlives pages.
    evaluate(
        "StbMedia.onEvent = 'var event = StbMedia.GetEventDescription(); StbMedia.SetSpeed(event.id, event.type)'");
    evaluate("StbMedia.SetEventCallback(function () { location.href = '/second'; })");
    m_session->takeOutcome();
    for (int i = 0; i < 20; ++i)
        fire(i, 1);
    QTRY_COMPARE(evaluate("document.title"), QString("\"Second\""));
    for (int i = 20; i < 40; ++i)
        fire(i, 2);
    deliver();
    QByteArrayList expected;
    for (int i = 0; i < 40; ++i)
        expected += QString("KVR_SetSpeed(%1, %2)").arg(i).arg(i < 20 ? 1 : 2).toUtf8();
    QCOMPARE(m_session->takeOutcome().calls, expected.join('\n'));
    QCOMPARE(evaluate("[seen.length, seen[0], seen[19]]"), QString("[20,[20,2],[39,2]]"));
}

void TestPlayerEvents::aCallbackThatMakesThePlatformFireIsNotEnteredAgain()
{
    evaluate("var depth = 0, deepest = 0;"
             "StbMedia.SetEventCallback(function (argument, code) {"
             "deepest = Math.max(deepest, ++depth);"
             "hear(argument, code);"
             "if (argument < 50) { StbMedia.Pause(argument + 1); StbMedia.Stop(1); }"
             "--depth; })");
    int next = 1;
    // From a thread of the platform, and, as a platform that breaks the contract would, from inside the call.
    RecordingPlatform::onCall("KVR_Pause", [&] { RecordingPlatform::fire(1, KVR_EVENT_STATE, next++); });
    RecordingPlatform::onCall("KVR_Stop", [] { RecordingPlatform::fireHere({1, KVR_EVENT_POSITION, 1000}); });
    fire(0, KVR_EVENT_STATE);
    QTRY_COMPARE(evaluate("seen.length"), QString("101"));
    QCOMPARE(evaluate("seen.filter(function (event) { return event[1] === 1; })"
                      ".every(function (event, i) { return event[0] === i; })"),
             QString("true"));
    QCOMPARE(evaluate("seen.filter(function (event) { return event[0] === 1000; }).length"), QString("50"));
    QCOMPARE(evaluate("[deepest, errors]"), QString("[1,0]"));
}

void TestPlayerEvents::aCallbackMayCloseItsPlayer()
{
    evaluate("StbMedia.SetEventCallback(function (argument, code) {"
             "hear(argument, code); StbMedia.ClosePlayer(argument); })");
    RecordingPlatform::fire(1, 1);
    deliver();
    QCOMPARE(evaluate("[seen, errors]"), QString("[[[1,1]],0]"));
    QVERIFY(RecordingPlatform::calls().contains("KVR_ClosePlayer(1)"));
}

void TestPlayerEvents::closedPlayersFallSilent()
{
    evaluate("StbMedia.SetEventCallback(hear); StbMedia.CreatePlayer(); StbMedia.ClosePlayer(1)");
    RecordingPlatform::fire(1, 1);
    RecordingPlatform::fire(2, 1);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[2,1]]"));
}

void TestPlayerEvents::eventsWithoutABrowserAreDropped()
{
    // What closes no player leaves its callbacks with the platform.
    RecordingPlatform::answer("KVR_ClosePlayer", -1);
    fire(1, 1);
    RecordingPlatform::waitUntilFired();
    m_session.reset();
    const int delivered = RecordingPlatform::deliveredEvents();
    fire(1, 2);
    deliver();
    QCOMPARE(RecordingPlatform::deliveredEvents(), delivered + 1);

    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    QVERIFY(m_session->plugin().loadHtml(page));
    QCOMPARE(evaluate("StbMedia.GetEventDescription()"), QString(R"({"id":0,"type":0})"));
    evaluate("StbMedia.SetEventCallback(hear)");
    fire(1, 3);
    deliver();
    QCOMPARE(evaluate("seen"), QString("[[1,3]]"));
}

QTEST_MAIN(TestPlayerEvents)
#include "tst_playerevents.moc"
