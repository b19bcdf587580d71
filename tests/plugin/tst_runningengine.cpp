// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RefusedCalls.h"
#include "ScriptSession.h"

#include <QWebSettings>
#include <QtTest>

#include <memory>

// The plugin in a launcher that has started the web engine before, so that it is too late to set it up as the plugin
// would.
class TestRunningEngine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void guardsMayRefuseAgainAndAgain_data();
    void guardsMayRefuseAgainAndAgain();

private:
    std::unique_ptr<ScriptSession> m_session;
};

void TestRunningEngine::initTestCase()
{
    QWebSettings::globalSettings();
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void TestRunningEngine::guardsMayRefuseAgainAndAgain_data()
{
    QTest::addColumn<QString>("call");
    QTest::newRow("too few arguments") << "StbMedia.PlayFile(0)";
    QTest::newRow("argument that throws") << "StbPVR.AddRecord('u', 'f', posing('String'), 1)";
    if (!HostedPlugin::hasBoxEngine())
        QTest::newRow("argument that throws deep inside") << "StbDisplay.SetOrder([1, posing('Number')])";
    QTest::newRow("list that is too long") << "StbDisplay.SetOrder(tooLong)";
    QTest::newRow("signal") << "StbDisplay.keyDelayChanged()";
    QTest::newRow("connect") << "StbMedia.jsCallback.connect()";
    QTest::newRow("connect to nobody") << "StbMedia.jsCallback.connect(null, 'x')";
    QTest::newRow("disconnect") << "StbDisplay.ExitToMenuSignal.disconnect(1, 2)";
}

void TestRunningEngine::guardsMayRefuseAgainAndAgain()
{
    QFETCH(const QString, call);
    const QStringList ways = RefusedCalls::ways();
    for (const QString &way : ways)
        QCOMPARE(m_session->run(RefusedCalls::script(call, way)).result, QString::number(RefusedCalls::times));
}

QTEST_MAIN(TestRunningEngine)

#include "tst_runningengine.moc"
