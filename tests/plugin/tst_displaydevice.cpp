// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HttpServer.h"

#include <QSignalSpy>
#include <QWebSettings>
#include <QWebView>
#include <QtTest>

#include <memory>

namespace {

const char *const storageDirectory = "/home/user/config/html5localstorage";

bool localStorageEnabled()
{
    return QWebSettings::globalSettings()->testAttribute(QWebSettings::LocalStorageEnabled);
}

} // namespace

// What StbDisplay does with the browser itself: leaving it, its keys and its storage.
class TestDisplayDevice : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theMenuIsReachedWithinTheCall();
    void keysAreThinnedOutAsThePageAsks();
    void localStorageIsSwitched_data();
    void localStorageIsSwitched();
    void whatAPageStoresStays();

private:
    QString result(const QString &script) { return m_session->run(script).result; }
    void press(int key) { QTest::keyClick(m_session->plugin().browser(), Qt::Key(key)); }

    std::unique_ptr<ScriptSession> m_session;
};

void TestDisplayDevice::init()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestDisplayDevice::cleanup()
{
    m_session.reset();
}

void TestDisplayDevice::theMenuIsReachedWithinTheCall()
{
    QSignalSpy left(m_session->plugin().application(), SIGNAL(exit()));
    QCOMPARE(result("StbDisplay.ExitToMenu()"), QString("0"));
    QCOMPARE(left.size(), 1);
}

void TestDisplayDevice::keysAreThinnedOutAsThePageAsks()
{
    result("var keys = []; document.onkeydown = function (event) { keys.push(event.keyCode); }");
    QCOMPARE(result("StbDisplay.SetKeyEventPeriod(60000)"), QString("0"));
    for (const int key : {Qt::Key_A, Qt::Key_A, Qt::Key_B, Qt::Key_B, Qt::Key_A})
        press(key);
    QCOMPARE(result("keys"), QString("[65,66,65]"));
    for (const char *off : {"0", "-1"}) {
        QCOMPARE(
            result(
                QString("keys = []; StbDisplay.SetKeyEventPeriod(60000); StbDisplay.SetKeyEventPeriod(%1)").arg(off)),
            QString("0"));
        for (const int key : {Qt::Key_A, Qt::Key_A})
            press(key);
        QCOMPARE(result("keys"), QString("[65,65]"));
    }
}

void TestDisplayDevice::localStorageIsSwitched_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<bool>("on");
    QTest::newRow("true") << "true" << true;
    QTest::newRow("1") << "1" << true;
    QTest::newRow("text") << "'no'" << true;
    QTest::newRow("false") << "false" << false;
    QTest::newRow("0") << "0" << false;
    QTest::newRow("empty text") << "''" << false;
}

void TestDisplayDevice::localStorageIsSwitched()
{
    QFETCH(const QString, argument);
    QFETCH(const bool, on);
    QWebSettings *const settings = QWebSettings::globalSettings();
    const QString path = "/tmp/elsewhere";
    settings->setLocalStoragePath(path);
    settings->setAttribute(QWebSettings::LocalStorageEnabled, !on);
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay.EnableHtml5LocalStorage(" + argument + ")");
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(localStorageEnabled(), on);
    QCOMPARE(settings->localStoragePath(), on ? QString(storageDirectory) : path);
}

void TestDisplayDevice::whatAPageStoresStays()
{
    HttpServer server;
    server.serve("/", "<title>storage</title>");
    QVERIFY(m_session->plugin().load(server.url()));
    QCOMPARE(result("window.localStorage"), QString("null"));
    result("StbDisplay.EnableHtml5LocalStorage(true)");
    QVERIFY(m_session->plugin().load(server.url()));
    result("localStorage.setItem('channel', '7')");
    QTRY_COMPARE(QDir(storageDirectory).entryList({"*.localstorage"}).size(), 1);

    m_session.reset();
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    result("StbDisplay.EnableHtml5LocalStorage(true)");
    QVERIFY(m_session->plugin().load(server.url()));
    QCOMPARE(result("localStorage.getItem('channel')"), QString("\"7\""));
}

QTEST_MAIN(TestDisplayDevice)

#include "tst_displaydevice.moc"
