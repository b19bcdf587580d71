// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <memory>

// The script that gives a test program a box, run as CTest runs it.
class TestInFreshBox : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theExitStatusIsPassedOn();
    void everyBoxIsNewAndGoneAfterwards();
    void aBoxIsGoneAfterASignal_data();
    void aBoxIsGoneAfterASignal();

private:
    QStringList boxes() const { return QDir(m_temporary->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }
    void start(QProcess *process, const QString &command) const;

    std::unique_ptr<QTemporaryDir> m_temporary;
};

void TestInFreshBox::init()
{
    m_temporary = std::make_unique<QTemporaryDir>();
}

void TestInFreshBox::start(QProcess *process, const QString &command) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", m_temporary->path());
    process->setProcessEnvironment(environment);
    process->start(QCoreApplication::applicationDirPath() + "/in-fresh-box", {"sh", "-c", command});
}

void TestInFreshBox::theExitStatusIsPassedOn()
{
    QProcess process;
    start(&process, "exit 37");
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 37);
}

void TestInFreshBox::everyBoxIsNewAndGoneAfterwards()
{
    for (int round = 0; round < 2; ++round) {
        QProcess process;
        start(&process, "test -d /box && test ! -e /etc/mine && echo mine > /etc/mine && cat /etc/mine");
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardOutput(), QByteArray("mine\n"));
        QCOMPARE(boxes(), QStringList());
    }
}

void TestInFreshBox::aBoxIsGoneAfterASignal_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("hang up") << SIGHUP;
}

void TestInFreshBox::aBoxIsGoneAfterASignal()
{
    QFETCH(const int, signal);
    QProcess process;
    start(&process, "echo started; exec sleep 100");
    QVERIFY(process.waitForReadyRead());
    QCOMPARE(boxes().size(), 1);
    QCOMPARE(kill(pid_t(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished());
    QVERIFY(process.exitCode() != 0);
    QCOMPARE(boxes(), QStringList());
}

QTEST_GUILESS_MAIN(TestInFreshBox)

#include "tst_infreshbox.moc"
