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
#include <atomic>
#include <climits>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::atomic<int> syncs = 0; // in any thread

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

QStringList savedFiles()
{
    return QDir(settingsDirectory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
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

// In place of the C library's, which may take a disk's time.
extern "C" Q_DECL_EXPORT int fsync(int)
{
    ++syncs;
    return 0;
}

extern "C" Q_DECL_EXPORT int fdatasync(int)
{
    ++syncs;
    return 0;
}

extern "C" Q_DECL_EXPORT void sync() noexcept
{
    ++syncs;
}

extern "C" Q_DECL_EXPORT int syncfs(int) noexcept
{
    ++syncs;
    return 0;
}

extern "C" Q_DECL_EXPORT int sync_file_range(int, off64_t, off64_t, unsigned int)
{
    ++syncs;
    return 0;
}

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
    void otherEntriesStay_data();
    void otherEntriesStay();
    void noCallWaitsForTheDisk_data();
    void noCallWaitsForTheDisk();
    void theEndOfThePlayersDoesNotWaitForTheDiskEither();
    void whatCannotBeWrittenIsNotReported();
    void aFullDiskLosesNothing_data();
    void aFullDiskLosesNothing();
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
    QCOMPARE(savedFiles(), QStringList("qtstbapi.conf"));
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

void TestSoundSettings::otherEntriesStay_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const QByteArray sound = "[volume]\nmute=1\nvolumeValue=41\n";
    const auto row = [](const char *name, const QByteArray &before, const QByteArray &after) {
        QTest::newRow(name) << before << after;
    };
    row("no others", "[volume]\nmute=0\nvolumeValue=35\n", sound);
    row("of the section", "[volume]\nzoom=2\nvolumeValue=35\n", "[volume]\nmute=1\nvolumeValue=41\nzoom=2\n");
    row("of other sections", "[a]\nx=1\n\n[volume]\nmute=0\n\n[z]\ny=2\n", "[a]\nx=1\n\n" + sound + "\n[z]\ny=2\n");
    row("of no section", "x=1\nmute=0\n", "[General]\nmute=0\nx=1\n\n" + sound);
    row("of the same name", "[z]\nmute=0\nvolumeValue=35\n", sound + "\n[z]\nmute=0\nvolumeValue=35\n");
    row("texts and lists", "[z]\na=\"x; y\"\nb=1, 2, \"3\"\nc=\nd=@ByteArray(x=y)\n",
        sound + "\n[z]\na=\"x; y\"\nb=1, 2, \"3\"\nc=\nd=@ByteArray(x=y)\n");
    row("a section in two places", "[z]\nx=1\n[volume]\nmute=0\n[z]\nx=2\ny=3\n[volume]\nmute=0\n",
        sound + "\n[z]\nx=2\ny=3\n");
    row("spaces, comments and lines of another system",
        "; sound\r\n [volume] \r\n volumeValue = 35 \r\n[ z ]\r\n x = 1\r\n", sound + "\n[z]\nx=1\n");
    row("lines of an old system", "[volume]\rvolumeValue=35\r[z]\rx=1\r", sound + "\n[z]\nx=1\n");
    row("another name for the same", "[%76olume]\nm%75te=0\n[volume]\nm%75te=0\n[General]\nvolume/mute=0\n",
        "[%76olume]\nm%75te=0\n\n[General]\nvolume/mute=0\n\n[volume]\nm%75te=0\nmute=1\nvolumeValue=41\n");
    // What would take the next lines with it is no entry.
    row("an open quotation mark", "[a]\nx=\"1\ny=2\n[volume]\nmute=0\n", "[a]\ny=2\n\n" + sound);
    row("an open bracket", "[volume\nmute=0\n[z\nx=1\n", sound + "\n[z]\nx=1\n");
    row("no entries", "x\n=\n=1\n;x=1\n[volume]\n", sound);
}

void TestSoundSettings::otherEntriesStay()
{
    QFETCH(QByteArray, before);
    QVERIFY(write(settingsFile, before));
    closeAPlayer(m_session.get(), 41, 1);
    QTEST(content(settingsFile), "after");
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("41, 1"));
}

void TestSoundSettings::noCallWaitsForTheDisk_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("answer");
    for (const char *object : {"StbMedia", "stb_media"}) {
        QTest::addRow("a new player of %s", object) << QString("%1.CreatePlayer()").arg(object) << 3;
        QTest::addRow("a player of %s", object) << QString("%1.ClosePlayer(1)").arg(object) << 0;
        QTest::addRow("an unknown player of %s", object) << QString("%1.ClosePlayer(77)").arg(object) << -127;
    }
}

void TestSoundSettings::noCallWaitsForTheDisk()
{
    QFETCH(QString, call);
    QFETCH(int, answer);
    for (const char *function : {"KVR_CreatePlayer", "KVR_ClosePlayer", "KVR_GetVolume", "KVR_IsMute"})
        RecordingPlatform::answer(function, answer);
    // The file is new first, and then there is one.
    for (int i = 0; i < 2; ++i) {
        syncs = 0;
        QCOMPARE(m_session->run(call).result, QString::number(answer));
        QCOMPARE(syncs.load(), 0);
    }
    QCOMPARE(savedFiles(), call.startsWith("StbMedia.Close") ? QStringList("qtstbapi.conf") : QStringList());
}

void TestSoundSettings::theEndOfThePlayersDoesNotWaitForTheDiskEither()
{
    m_session->run("StbMedia.CreatePlayer(); StbMedia.CreatePlayer(); stb_media.CreatePlayer()");
    RecordingPlatform::answer("KVR_GetVolume", 35);
    syncs = 0;
    m_session.reset();
    QCOMPARE(syncs.load(), 0);
    QCOMPARE(content(settingsFile), QByteArray("[volume]\nmute=0\nvolumeValue=35\n"));
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

void TestSoundSettings::aFullDiskLosesNothing_data()
{
    QTest::addColumn<int>("room");
    for (const int room : {0, 1, 10, 20, 37})
        QTest::addRow("room for %d bytes", room) << room;
}

void TestSoundSettings::aFullDiskLosesNothing()
{
    QFETCH(int, room);
    const QByteArray before = "[volume]\nmute=1\nvolumeValue=1234567890\n";
    QCOMPARE(before.size(), 39);
    QVERIFY(write(settingsFile, before));
    {
        const FileSizeLimit limit(static_cast<rlim_t>(room));
        closeAPlayer(m_session.get(), 2123456789, 1);
    }
    QCOMPARE(content(settingsFile), before);
    QCOMPARE(savedFiles(), QStringList("qtstbapi.conf"));
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("1234567890, 1"));
    // With room again it goes on.
    closeAPlayer(m_session.get(), 2123456789, 0);
    QCOMPARE(soundOfANewPlayer(m_session.get()), QString("2123456789, 0"));
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
