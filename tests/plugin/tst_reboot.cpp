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
    void withoutADeskBoxThePageLearnsNothing();
    void theCommandIsFoundByItsName();

private:
    std::unique_ptr<ScriptSession> m_session;
};

void TestReboot::initTestCase()
{
    signal(SIGHUP, countRestart);
    m_session = std::make_unique<ScriptSession>(); // ends the program outside a box
    QVERIFY(m_session->start());
}

void TestReboot::init()
{
    restarts = 0;
    qputenv(deskBox, QByteArray::number(getpid()));
}

void TestReboot::cleanupTestCase()
{
    qunsetenv(deskBox);
    m_session.reset();
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

void TestReboot::withoutADeskBoxThePageLearnsNothing()
{
    qunsetenv(deskBox);
    const ScriptSession::Outcome outcome = m_session->run("StbDisplay.Reboot()");
    QCOMPARE(int(restarts), 0);
    QCOMPARE(outcome.result, QString("0"));
    QCOMPARE(outcome.warnings, QStringList("reboot failed"));
}

void TestReboot::theCommandIsFoundByItsName()
{
    // A slow command of this name, before the box's own: the page waits for it.
    QFile command("/tmp/bin/reboot");
    QVERIFY(QDir().mkpath("/tmp/bin"));
    QVERIFY(command.open(QIODevice::WriteOnly));
    command.write("#!/bin/sh\nsleep 0.3\necho \"arguments: $#\" > /tmp/rebooted\n");
    command.close();
    QVERIFY(command.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/tmp/bin:" + path);
    QElapsedTimer clock;
    clock.start();
    const QString result = m_session->run("StbDisplay.Reboot()").result;
    qputenv("PATH", path);
    QCOMPARE(result, QString("0"));
    QVERIFY(clock.elapsed() >= 300);
    QFile rebooted("/tmp/rebooted");
    QVERIFY(rebooted.open(QIODevice::ReadOnly));
    QCOMPARE(rebooted.readAll(), QByteArray("arguments: 0\n"));
    QCOMPARE(int(restarts), 0);
}

QTEST_MAIN(TestReboot)

#include "tst_reboot.moc"
