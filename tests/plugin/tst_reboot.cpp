// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"

#include <QElapsedTimer>
#include <QtTest>

#include <csignal>
#include <memory>

#include <unistd.h>

namespace {

volatile std::sig_atomic_t restarts = 0;

void countRestart(int)
{
    restarts = restarts + 1;
}

const char *const deskBox = "KAVRO_BOX_PID";

} // namespace

// StbDisplay.Reboot in a box, whose command "reboot" restarts the desk box. This program stands for the desk box.
class TestReboot : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void theDeskBoxIsRestartedOnce();
    void theTraceComesFirst();
    void withoutADeskBoxNobodyLearnsOfIt();
    void theCommandIsFoundByItsName();
    void itsExitStatusIsIgnored_data();
    void itsExitStatusIsIgnored();

private:
    /// Puts a command of this name before the box's own.
    bool writeCommand(const QByteArray &script);

    std::unique_ptr<ScriptSession> m_session;
    QByteArray m_path;
};

void TestReboot::initTestCase()
{
    signal(SIGHUP, countRestart);
    m_path = qgetenv("PATH");
    m_session = std::make_unique<ScriptSession>(); // ends the program outside a box
    QVERIFY(m_session->start());
}

void TestReboot::init()
{
    restarts = 0;
    qputenv("PATH", m_path);
    qputenv(deskBox, QByteArray::number(getpid()));
}

void TestReboot::cleanupTestCase()
{
    qunsetenv(deskBox);
    m_session.reset();
}

bool TestReboot::writeCommand(const QByteArray &script)
{
    qputenv("PATH", "/tmp/bin:" + m_path);
    QFile command("/tmp/bin/reboot");
    return QDir().mkpath("/tmp/bin") && command.open(QIODevice::WriteOnly) && command.write("#!/bin/sh\n" + script) > 0
        && command.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void TestReboot::theDeskBoxIsRestartedOnce()
{
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay.Reboot()");
    QCOMPARE(int(restarts), 1); // the command has ended when the method returns
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(outcome.calls, QByteArray());
    QCOMPARE(outcome.warnings, QStringList());
}

void TestReboot::theTraceComesFirst()
{
    QVERIFY(m_session->setTracing(true));
    QCOMPARE(m_session->run("StbDisplay.Reboot()").traces, QString("\"StbDisplay.Reboot()\""));
    QCOMPARE(int(restarts), 1);
    QVERIFY(m_session->setTracing(false));
}

void TestReboot::withoutADeskBoxNobodyLearnsOfIt()
{
    qunsetenv(deskBox);
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay.Reboot()");
    QCOMPARE(int(restarts), 0);
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(outcome.warnings, QStringList());
    QCOMPARE(outcome.messages, QStringList());
}

void TestReboot::theCommandIsFoundByItsName()
{
    // The page waits for a slow one.
    QVERIFY(writeCommand("sleep 0.3\necho \"arguments: $#\" > /tmp/rebooted\n"));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(m_session->run("StbDisplay.Reboot()").result, QString("0"));
    QVERIFY(clock.elapsed() >= 300);
    QFile rebooted("/tmp/rebooted");
    QVERIFY(rebooted.open(QIODevice::ReadOnly));
    QCOMPARE(rebooted.readAll(), QByteArray("arguments: 0\n"));
    QCOMPARE(int(restarts), 0);
}

void TestReboot::itsExitStatusIsIgnored_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("command");
    for (const char *script : {"StbDisplay.Reboot()", "stb_display.reboot()"}) {
        QTest::addRow("%s: 0", script) << script << QByteArray("exit 0\n");
        QTest::addRow("%s: 1", script) << script << QByteArray("exit 1\n");
        QTest::addRow("%s: 127", script) << script << QByteArray("exit 127\n");
        QTest::addRow("%s: killed", script) << script << QByteArray("kill -KILL $$\n");
    }
}

void TestReboot::itsExitStatusIsIgnored()
{
    QFETCH(const QString, script);
    QFETCH(const QByteArray, command);
    QVERIFY(writeCommand(command));
    const ScriptSession::Outcome outcome = m_session->run(script);
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(outcome.warnings, QStringList());
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(int(restarts), 0);
}

QTEST_MAIN(TestReboot)

#include "tst_reboot.moc"
