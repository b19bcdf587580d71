// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/desktop/RecordedFile.h"
#include "tests/desktop/TestMedia.h"

#include "launcher/PageServer.h"

#include "platform/stbapi.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <chrono>
#include <thread>

namespace {

constexpr char web[] = "/mnt/stb/web";
constexpr char bars[] = "/mnt/stb/web/bars.ts";
constexpr int usualKills = 8;    // of each kind
constexpr int longestLife = 300; // milliseconds
constexpr int patience = 20000;

using Kept = QMap<QByteArray, QByteArray>;

int fromEnvironment(const char *name, int usual)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? number : usual;
}

// What a process said before it was killed.
struct Report
{
    Kept written;         // what was reported as written
    QByteArray keyInWork; // of the write during which it was killed, if there was one
    QByteArray valueInWork;
};

Report reportOf(const QByteArray &words)
{
    Report report;
    const QList<QByteArray> lines = words.split('\n');
    for (const QByteArray &line : lines) {
        if (line == "did") {
            report.written[report.keyInWork] = report.valueInWork;
            report.keyInWork.clear();
        } else if (line.startsWith("will ")) {
            report.keyInWork = line.split(' ').value(1);
            report.valueInWork = line.split(' ').value(2);
        }
    }
    return report;
}

QByteArray textOf(const Kept &kept)
{
    QByteArray text;
    for (auto entry = kept.begin(); entry != kept.end(); ++entry)
        text += entry.key() + ": " + entry.value().left(40) + "; ";
    return text;
}

void put(Kept &kept, const QByteArray &key, const QByteArray &value)
{
    if (value == "nothing")
        kept.remove(key);
    else
        kept[key] = value;
}

QString keeper()
{
    return QCoreApplication::applicationDirPath() + "/keeper";
}

} // namespace

/// Kills a process that writes what the box keeps, at random moments, and looks what the next start finds. More kills
/// and the same moments again: KAVRO_KILLS, of each kind, and KAVRO_SEED, as the test has told it.
class TestKill : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whatWasReportedAsWrittenIsThere_data();
    void whatWasReportedAsWrittenIsThere();
    void whatWasRecordedIsThereAndPlays();

private:
    Report killedWriter(const QByteArray &kind, int round);
    Kept next(const QByteArray &kind, int round);

    const int m_kills = fromEnvironment("KAVRO_KILLS", usualKills);
    const int m_seed = fromEnvironment("KAVRO_SEED", int(QRandomGenerator::global()->bounded(1000000)));
    QRandomGenerator m_random{quint32(m_seed)};
    PageServer m_server;
    int m_inWork = 0; // kills during a write
};

void TestKill::initTestCase()
{
    qInfo("%d kills of each kind, KAVRO_SEED=%d", m_kills, m_seed);
    QVERIFY(QDir().mkpath(web));
    QVERIFY(TestMedia::makeBars(bars, 5));
    QString error;
    QVERIFY2(m_server.start(web, 0, &error), qPrintable(error));
}

// Every other life is counted from the process's start, so that the writer dies while it starts, too.
Report TestKill::killedWriter(const QByteArray &kind, int round)
{
    QStringList arguments = {"write", kind, QString::number(round)};
    if (kind == "recordings")
        arguments.append(m_server.address("bars.ts").toEncoded());
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(keeper(), arguments);
    process.waitForStarted();
    const int life = m_random.bounded(longestLife * 1000);
    if (round % 2 == 0)
        process.waitForReadyRead(patience);
    QTest::qWait(life / 1000);
    std::this_thread::sleep_for(std::chrono::microseconds(life % 1000));
    const bool lived = process.state() == QProcess::Running;
    process.kill();
    process.waitForFinished();
    if (!lived || process.exitStatus() != QProcess::CrashExit)
        QTest::qFail("the writer ended before it was killed", __FILE__, __LINE__);
    Report report = reportOf(process.readAllStandardOutput());
    m_inWork += report.keyInWork.isEmpty() ? 0 : 1;
    return report;
}

Kept TestKill::next(const QByteArray &kind, int round)
{
    QProcess process;
    process.start(keeper(), {"read", kind, QString::number(round)});
    const bool ended = process.waitForFinished(patience);
    const QByteArray problems = process.readAllStandardError();
    if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        QTest::qFail("the next start reads nothing: " + problems, __FILE__, __LINE__);
    Kept kept;
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty())
            kept[line.left(line.indexOf(' '))] = line.mid(line.indexOf(' ') + 1);
    }
    return kept;
}

void TestKill::whatWasReportedAsWrittenIsThere_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::newRow("sound settings") << QByteArray("sound");
    QTest::newRow("boot parameters") << QByteArray("boot");
    QTest::newRow("recording schedule") << QByteArray("schedule");
}

void TestKill::whatWasReportedAsWrittenIsThere()
{
    QFETCH(QByteArray, kind);
    m_inWork = 0;
    int writes = 0;
    Kept kept = next(kind, 0);
    for (int round = 1; round <= m_kills; ++round) {
        const Report report = killedWriter(kind, round);
        for (auto entry = report.written.begin(); entry != report.written.end(); ++entry)
            put(kept, entry.key(), entry.value());
        writes += report.written.size();
        Kept keptToo = kept;
        if (!report.keyInWork.isEmpty())
            put(keptToo, report.keyInWork, report.valueInWork);
        const Kept found = next(kind, round);
        QVERIFY2(found == kept || found == keptToo,
                 "round " + QByteArray::number(round) + "\nwritten: " + textOf(kept) + "\nfound: " + textOf(found));
        kept = found;
    }
    QVERIFY2(writes > 0, "nothing was written between the kills");
    qInfo("%d of %d kills during a write", m_inWork, m_kills);
}

void TestKill::whatWasRecordedIsThereAndPlays()
{
    const QByteArray kind = "recordings";
    const double bytesPerPicture = double(QFileInfo(bars).size()) / RecordedFile(bars).pictures;
    int recorded = 0;
    for (int round = 1; round <= m_kills; ++round) {
        const Report report = killedWriter(kind, round);
        const Kept found = next(kind, round);
        for (auto entry = report.written.begin(); entry != report.written.end(); ++entry) {
            const QList<QByteArray> columns = found.value(entry.key()).split(',');
            const QByteArray told = "round " + QByteArray::number(round) + ", " + entry.key() + ": at least "
                + entry.value() + " bytes; found " + found.value(entry.key());
            QVERIFY2(columns.size() == 3, told);
            QVERIFY2(columns[0].toInt() == KVR_RECORD_INTERRUPTED, told);
            QVERIFY2(columns[1].toLongLong() >= entry.value().toLongLong(), told);
            // All but the pictures that were on their way.
            QVERIFY2(columns[2].toInt() >= int(double(columns[1].toLongLong()) / bytesPerPicture / 2) - 3, told);
            recorded += columns[2].toInt();
        }
    }
    QVERIFY2(recorded > 0, "nothing was recorded between the kills");
    qInfo("%d pictures recorded", recorded);
}

QTEST_GUILESS_MAIN(TestKill)
#include "tst_kill.moc"
