// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OddFile.h"

#include <QElapsedTimer>
#include <QLockFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>
#include <climits>
#include <memory>
#include <unistd.h>

namespace {

const char *const settingsDirectory = "/home/user/config/config_files";
const char *const settingsFile = "/home/user/config/config_files/qtstbapi.conf";
const char *const endlessSaving = "--save-sound-until-killed";
constexpr int firstVolume = 1000000;

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

void closeAPlayer(ScriptSession *session, int volume, int mute)
{
    RecordingPlatform::answer("KVR_GetVolume", volume);
    RecordingPlatform::answer("KVR_IsMute", mute);
    session->run("StbMedia.ClosePlayer(1)");
}

// "volume, mute" of a new player.
QString soundOfANewPlayer(ScriptSession *session)
{
    RecordingPlatform::answer("KVR_CreatePlayer", 3);
    const QByteArray calls = session->run("StbMedia.CreatePlayer()").calls;
    static const QRegularExpression sound(R"(KVR_SetVolume\(3, (-?\d+)\)\nKVR_SetMute\(3, (-?\d+)\)$)");
    const QRegularExpressionMatch match = sound.match(calls);
    return match.captured(1) + ", " + match.captured(2);
}

// What this program does when it is its own child.
int saveUntilKilled()
{
    ScriptSession session;
    if (!session.start())
        return 1;
    for (int volume = firstVolume;; ++volume) {
        closeAPlayer(&session, volume, volume % 2);
        RecordingPlatform::reset();
    }
}

} // namespace

// Volume and mute on their way from one player to the next, through a file that survives everything.
class TestSoundSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();

    void theFirstPlayerIsSilentAndMakesNoFile();
    void theFileReadsAsDocumented_data();
    void theFileReadsAsDocumented();
    void theFileHoldsWhatThePlatformSaid_data();
    void theFileHoldsWhatThePlatformSaid();
    void theSoundOfAClosedPlayerGoesToTheNext();
    void eachNewPlayerSeesTheLatestSound();
    void whatCannotBeWrittenIsNotReported();
    void anOddFileIsSilence_data();
    void anOddFileIsSilence();
    void noRoomForTemporaryFilesIsNoSilence_data();
    void noRoomForTemporaryFilesIsNoSilence();
    void aLockLeftBehindStopsNobody();
    void aKillAtAnyMomentLeavesAWholeFile();

private:
    std::unique_ptr<ScriptSession> m_session;
};

void TestSoundSettings::init()
{
    RecordingPlatform::reset();
    QDir(settingsDirectory).removeRecursively();
    QFile::remove(settingsDirectory);
    if (!m_session) {
        m_session = std::make_unique<ScriptSession>();
        QVERIFY(m_session->start());
    }
}

void TestSoundSettings::cleanupTestCase()
{
    m_session.reset();
}

void TestSoundSettings::theFirstPlayerIsSilentAndMakesNoFile()
{
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("0, 0"));
    QVERIFY(!QFileInfo::exists(settingsDirectory));
}

void TestSoundSettings::theFileReadsAsDocumented_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("sound");
    const auto row = [](const char *name, const QByteArray &file, const char *sound) {
        QTest::newRow(name) << file << QString(sound);
    };
    row("both", "[volume]\nmute=1\nvolumeValue=35\n", "35, 1");
    row("empty", "", "0, 0");
    row("volume only", "[volume]\nvolumeValue=35\n", "35, 0");
    row("mute only", "[volume]\nmute=1\n", "0, 1");
    row("not mute", "[volume]\nmute=0\nvolumeValue=1\n", "1, 0");
    row("other section", "[General]\nmute=1\nvolumeValue=35\n[sound]\nmute=1\nvolumeValue=36\n", "0, 0");
    row("volume in words", "[volume]\nmute=1\nvolumeValue=loud\n", "0, 1");
    row("largest volume", "[volume]\nmute=1\nvolumeValue=2147483647\n", "2147483647, 1");
    row("failure codes", "[volume]\nmute=-127\nvolumeValue=-127\n", "-127, 1");
    row("quoted", "[volume]\nmute=\"1\"\nvolumeValue=\"35\"\n", "35, 1");
    row("boolean words", "[volume]\nmute=true\nvolumeValue=35\n", "35, 1");
    row("boolean words, no", "[volume]\nmute=false\nvolumeValue=35\n", "35, 0");
    row("nothing behind the signs", "[volume]\nmute=\nvolumeValue=\n", "0, 0");
    row("list of two billion", "[volume]\nmute=1\nvolumeValue=@Variant(\\0\\0\\0\\x9\\x7f\\xff\\xff\\xff)\n", "0, 1");
    row("list of two billion in disguise",
        "[volume]\nmute=1\nvolumeValue=\\x40Variant(\\0\\0\\0\\x9\\x7f\\xff\\xff\\xff)\n", "0, 1");
    row("list of two billion in bytes",
        "[volume]\nmute=1\nvolumeValue=@Variant(" + QByteArray("\0\0\0\x09\x7f\xff\xff\xff", 8) + ")\n", "0, 1");
    row("lists in lists",
        "[volume]\nmute=1\nvolumeValue=@Variant(" + QByteArray("\\0\\0\\0\\x9\\0\\0\\0\\x1").repeated(100000) + ")\n",
        "0, 1");
    row("no settings at all", QByteArray("\0\xff\x1b[[[\n=\n\\\n", 10), "0, 0");
}

void TestSoundSettings::theFileReadsAsDocumented()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, sound);
    QVERIFY(write(settingsFile, file));
    QCOMPARE(soundOfANewPlayer(m_session.get()), sound);
    QCOMPARE(content(settingsFile), file);
    // Nor is anything in it in the way of a new sound.
    closeAPlayer(m_session.get(), 41, 1);
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("41, 1"));
}

void TestSoundSettings::theFileHoldsWhatThePlatformSaid_data()
{
    QTest::addColumn<int>("volume");
    QTest::addColumn<int>("mute");
    QTest::addColumn<QString>("nextSound");
    QTest::newRow("silent") << 0 << 0 << "0, 0";
    QTest::newRow("mute") << 35 << 1 << "35, 1";
    QTest::newRow("failure codes") << -127 << -127 << "-127, 1";
    QTest::newRow("extremes") << INT_MIN << INT_MAX << "-2147483648, 1";
}

void TestSoundSettings::theFileHoldsWhatThePlatformSaid()
{
    QFETCH(int, volume);
    QFETCH(int, mute);
    closeAPlayer(m_session.get(), volume, mute);
    QCOMPARE(QString(content(settingsFile)), QString("[volume]\nmute=%1\nvolumeValue=%2\n").arg(mute).arg(volume));
    QCOMPARE(QDir(settingsDirectory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("qtstbapi.conf"));
    QTEST(soundOfANewPlayer(m_session.get()), "nextSound");
}

void TestSoundSettings::theSoundOfAClosedPlayerGoesToTheNext()
{
    QCOMPARE(m_session->run("var id = StbMedia.CreatePlayer(); StbMedia.SetVolume(id, 35); StbMedia.SetMute(id, 1)")
                 .calls.count("KVR_Set"),
             4);
    closeAPlayer(m_session.get(), 35, 1);
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("35, 1"));
    // Also over a restart.
    m_session.reset();
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("35, 1"));
}

// Also when two players are closed in one tick of the file system's clock.
void TestSoundSettings::eachNewPlayerSeesTheLatestSound()
{
    const QDateTime tick = QDateTime::fromSecsSinceEpoch(1700000000);
    for (int volume = 10; volume < 20; ++volume) {
        closeAPlayer(m_session.get(), volume, volume % 2);
        QFile file(settingsFile);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(tick, QFileDevice::FileModificationTime));
        QCOMPARE(soundOfANewPlayer(m_session.get()), QString("%1, %2").arg(volume).arg(volume % 2));
    }
}

void TestSoundSettings::whatCannotBeWrittenIsNotReported()
{
    QVERIFY(write(settingsDirectory, "a file in the directory's place"));
    RecordingPlatform::answer("KVR_GetVolume", 35);
    RecordingPlatform::answer("KVR_ClosePlayer", 4);
    const ScriptSession::Outcome outcome = m_session->run("StbMedia.ClosePlayer(1)");
    QCOMPARE(outcome.result, QString("4"));
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.warnings, QStringList());
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("0, 0"));
}

void TestSoundSettings::anOddFileIsSilence_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QString(row.what);
}

void TestSoundSettings::anOddFileIsSilence()
{
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    QVERIFY(OddFile::put(settingsFile, OddFile::Kind(kind)));
    const QStringList warnings = m_session->run("StbMedia.CreatePlayer()").warnings;
    QCOMPARE(warnings.size(), 1);
    QVERIFY(warnings.constFirst().startsWith(settingsFile + QString(" is ") + what));
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("0, 0"));
    // A file's place is taken by the new one, a folder's is not.
    closeAPlayer(m_session.get(), 35, 1);
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString(kind == OddFile::Folder ? "0, 0" : "35, 1"));
}

void TestSoundSettings::noRoomForTemporaryFilesIsNoSilence_data()
{
    QTest::addColumn<QByteArray>("folder");
    QTest::addColumn<rlim_t>("room");
    QTest::newRow("no folder") << QByteArray("/nowhere") << rlim_t(RLIM_INFINITY);
    QTest::newRow("full") << QByteArray("/tmp") << rlim_t(0);
}

void TestSoundSettings::noRoomForTemporaryFilesIsNoSilence()
{
    QFETCH(const QByteArray, folder);
    QFETCH(const rlim_t, room);
    QVERIFY(write(settingsFile, "[volume]\nvolumeValue=77\nmute=1\n"));
    qputenv("TMPDIR", folder);
    QString sound;
    {
        const FileSizeLimit limit(room);
        sound = soundOfANewPlayer(m_session.get());
    }
    qunsetenv("TMPDIR");
    QCOMPARE(sound, QString("77, 1"));
}

void TestSoundSettings::aLockLeftBehindStopsNobody()
{
    QVERIFY(QDir().mkpath(settingsDirectory));
    // Locks of a living process, as a killed browser leaves them when its number is in use again.
    QLockFile lock(QString(settingsFile) + ".lock");
    QLockFile newLock(QString(settingsFile) + ".new.lock");
    QVERIFY(lock.lock());
    QVERIFY(newLock.lock());
    QElapsedTimer clock;
    clock.start();
    closeAPlayer(m_session.get(), 35, 1);
    QCOMPARE(content(settingsFile), QByteArray("[volume]\nmute=1\nvolumeValue=35\n"));
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("35, 1"));
}

void TestSoundSettings::aKillAtAnyMomentLeavesAWholeFile()
{
    static const QRegularExpression whole(R"(^\[volume\]\n(?:mute=[01]\n)?volumeValue=(\d{7})\n$)");
    for (int round = 0; round < 8; ++round) {
        QFile::remove(settingsFile);
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(), {endlessSaving});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settingsFile), 20000);

        // Whoever looks while it is saved sees it whole, too.
        int last = firstVolume;
        QElapsedTimer clock;
        clock.start();
        const int microseconds = QRandomGenerator::global()->bounded(60000);
        do {
            const QByteArray seen = content(settingsFile);
            const QRegularExpressionMatch match = whole.match(seen);
            QVERIFY2(match.hasMatch(), seen);
            QVERIFY(match.captured(1).toInt() >= last);
            last = match.captured(1).toInt();
        } while (clock.nsecsElapsed() / 1000 < microseconds);

        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        const QByteArray left = content(settingsFile);
        const QRegularExpressionMatch match = whole.match(left);
        QVERIFY2(match.hasMatch(), left);
        QVERIFY(match.captured(1).toInt() >= last);
        QCOMPARE(soundOfANewPlayer(m_session.get()).section(',', 0, 0), match.captured(1));
        closeAPlayer(m_session.get(), round, 1);
        QCOMPARE(QString(content(settingsFile)), QString("[volume]\nmute=1\nvolumeValue=%1\n").arg(round));
    }
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (application.arguments().contains(endlessSaving))
        return saveUntilKilled();
    TestSoundSettings test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_soundsettings.moc"
