// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"
#include "PlayerPicture.h"
#include "TestMedia.h"

#include "tests/support/BoxFile.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <libtorrent/add_torrent_params.hpp>
#include <libtorrent/create_torrent.hpp>
#include <libtorrent/magnet_uri.hpp>
#include <libtorrent/session.hpp>
#include <libtorrent/session_params.hpp>
#include <libtorrent/settings_pack.hpp>
#include <libtorrent/torrent_info.hpp>
#include <libtorrent/torrent_status.hpp>

namespace lt = libtorrent;

namespace {

constexpr char root[] = "/mnt/stb";
constexpr char folder[] = "/mnt/stb/collection";
constexpr char downloads[] = "/home/user/torrents";
constexpr int pieceSize = 64 * 1024;
constexpr int longSeconds = 30;
constexpr int shortSeconds = 10;
constexpr int patience = 14000; // milliseconds, to find the swarm and its first pieces

int filesBelow(const QString &path)
{
    int count = 0;
    for (QDirIterator file(path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); file.hasNext(); file.next())
        ++count;
    return count;
}

lt::torrent_info infoOf(const lt::create_torrent &torrent)
{
    std::vector<char> buffer;
    lt::bencode(std::back_inserter(buffer), torrent.generate());
    return lt::torrent_info(buffer, lt::from_span);
}

// The files of a folder below the root.
lt::torrent_info torrentOf(const char *directory)
{
    lt::file_storage files;
    lt::add_files(files, directory);
    lt::create_torrent torrent(files, pieceSize);
    lt::set_piece_hashes(torrent, root);
    return infoOf(torrent);
}

// A file that nobody has.
lt::torrent_info torrentOfSize(std::int64_t size)
{
    constexpr int largestPieceSize = 16 * 1024 * 1024;
    lt::file_storage files;
    files.add_file("vast.ts", size);
    lt::create_torrent torrent(files, largestPieceSize, lt::create_torrent::v1_only);
    for (const lt::piece_index_t piece : torrent.piece_range())
        torrent.set_hash(piece, lt::sha1_hash::max());
    return infoOf(torrent);
}

// Another session, which says that it has all of the torrent.
class Seeder
{
public:
    explicit Seeder(const lt::torrent_info &torrent)
    {
        lt::settings_pack settings;
        settings.set_str(lt::settings_pack::listen_interfaces, "127.0.0.1:0");
        for (const int feature : {lt::settings_pack::enable_dht, lt::settings_pack::enable_lsd,
                                  lt::settings_pack::enable_upnp, lt::settings_pack::enable_natpmp})
            settings.set_bool(feature, false);
        // The player before may not have left yet.
        settings.set_bool(lt::settings_pack::allow_multiple_connections_per_ip, true);
        m_session = std::make_unique<lt::session>(lt::session_params(settings));

        lt::add_torrent_params parameters;
        parameters.ti = std::make_shared<lt::torrent_info>(torrent);
        parameters.save_path = root;
        parameters.flags |= lt::torrent_flags::seed_mode;
        // Ready at once, not when it is its turn.
        parameters.flags &= ~(lt::torrent_flags::auto_managed | lt::torrent_flags::paused);
        m_torrent = m_session->add_torrent(parameters);
    }

    QByteArray magnet() const
    {
        return QByteArray::fromStdString(lt::make_magnet_uri(m_torrent))
            + "&x.pe=127.0.0.1:" + QByteArray::number(m_session->listen_port());
    }

    /// Bytes a second.
    void limit(int rate) { m_torrent.set_upload_limit(rate); }

    std::int64_t uploaded() const { return m_torrent.status().total_payload_upload; }

private:
    std::unique_ptr<lt::session> m_session;
    lt::torrent_handle m_torrent;
};

} // namespace

/// Playback of magnet links, between two sessions on loopback.
class TestDeskMagnet : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void theLargestFilePlaysUnlessOneIsNamed_data();
    void theLargestFilePlaysUnlessOneIsNamed();
    void itPlaysFromAPosition();
    void itPlaysAndSeeksBeforeItIsDownloaded();
    void onlyTheFileThatPlaysIsDownloaded();
    void aFileThatIsNotThereIsAnError();
    void aFileTooLargeForTheBoxIsAnError();
    void theFilesGoWithThePlayer();

private:
    void play(const char *name);
    void checkPlaying();

    std::unique_ptr<Seeder> m_seeder;
    KVR_ID m_id = -1;
};

void TestDeskMagnet::initTestCase()
{
    QVERIFY(QDir().mkpath(QString(folder) + "/extra"));
    QVERIFY(TestMedia::makeBars(QString(folder) + "/long.ts", longSeconds));
    QVERIFY(TestMedia::makeBars(QString(folder) + "/extra/short.ts", shortSeconds));
    QFile text(QString(folder) + "/readme.txt");
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(1000, 'x')) == 1000);
    text.close();
    m_seeder = std::make_unique<Seeder>(torrentOf(folder));
    writeBoxFile(QString(downloads) + "/7/left.ts", "of a process that was killed");
}

void TestDeskMagnet::init()
{
    m_seeder->limit(0);
    m_id = KVR_CreatePlayer();
}

void TestDeskMagnet::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskMagnet::play(const char *name)
{
    QCOMPARE(KVR_PlayMagnet(m_id, m_seeder->magnet(), name, 0, 0, 0, 0, -1, -1, -1), int(KVR_OK));
}

void TestDeskMagnet::checkPlaying()
{
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING), patience);
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    const long long begin = KVR_GetPosition(m_id);
    QTRY_VERIFY(KVR_GetPosition(m_id) > begin + 500);
}

void TestDeskMagnet::theLargestFilePlaysUnlessOneIsNamed_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("seconds");
    QTest::newRow("no name") << QByteArray() << longSeconds;
    QTest::newRow("by its name") << QByteArray("short.ts") << shortSeconds;
    QTest::newRow("by its path") << QByteArray("collection/extra/short.ts") << shortSeconds;
}

void TestDeskMagnet::theLargestFilePlaysUnlessOneIsNamed()
{
    QFETCH(QByteArray, name);
    QFETCH(int, seconds);
    play(name);
    checkPlaying();
    QTRY_VERIFY(qAbs(KVR_GetDuration(m_id) - seconds * 1000) < 500);
    QCOMPARE(KVR_GetVideoPid(m_id), TestMedia::videoPid);
}

void TestDeskMagnet::itPlaysFromAPosition()
{
    QCOMPARE(KVR_PlayMagnet(m_id, m_seeder->magnet(), "", 0, 20000, 0, 0, -1, -1, -1), int(KVR_OK));
    checkPlaying();
    QVERIFY(KVR_GetPosition(m_id) > 20000);
}

void TestDeskMagnet::itPlaysAndSeeksBeforeItIsDownloaded()
{
    const qint64 size = QFileInfo(QString(folder) + "/long.ts").size();
    m_seeder->limit(int(size / (longSeconds / 3))); // three times as fast as it plays
    const std::int64_t before = m_seeder->uploaded();
    play("");
    checkPlaying();
    QCOMPARE(KVR_SetPosition(m_id, 27000), int(KVR_OK));
    QTRY_VERIFY_WITH_TIMEOUT(KVR_GetPosition(m_id) > 27300, patience);
    const std::int64_t uploaded = m_seeder->uploaded() - before;
    QVERIFY2(uploaded < size * 8 / 10, qPrintable(QString("%1 of %2").arg(uploaded).arg(size)));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED), patience);
}

void TestDeskMagnet::onlyTheFileThatPlaysIsDownloaded()
{
    const std::int64_t before = m_seeder->uploaded();
    play("short.ts");
    checkPlaying();
    // All of it, although nobody reads on.
    QCOMPARE(KVR_Pause(m_id), int(KVR_OK));
    const qint64 size = QFileInfo(QString(folder) + "/extra/short.ts").size();
    QTRY_VERIFY(m_seeder->uploaded() - before >= size);
    KVR_Continue(m_id);
    QCOMPARE(KVR_SetPosition(m_id, shortSeconds * 1000 - 1000), int(KVR_OK));
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ENDED), patience);
    QVERIFY(m_seeder->uploaded() - before <= size + 3 * pieceSize);
}

void TestDeskMagnet::aFileThatIsNotThereIsAnError()
{
    const ErrorOutput log;
    play("other.ts");
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR), patience);
    QVERIFY2(log.text().contains("no file other.ts"), qPrintable(log.text()));
}

void TestDeskMagnet::aFileTooLargeForTheBoxIsAnError()
{
    const Seeder vast(torrentOfSize(33LL << 30));
    const ErrorOutput log;
    KVR_PlayMagnet(m_id, vast.magnet(), "", 0, 0, 0, 0, -1, -1, -1);
    QTRY_COMPARE_WITH_TIMEOUT(KVR_GetPlayerState(m_id), int(KVR_PLAYER_ERROR), patience);
    QVERIFY2(log.text().contains("more than this box can keep"), qPrintable(log.text()));
    QCOMPARE(filesBelow(downloads), 0);
}

void TestDeskMagnet::theFilesGoWithThePlayer()
{
    play("");
    checkPlaying();
    QVERIFY(filesBelow(downloads) > 0);
    KVR_ClosePlayer(m_id);
    QTRY_COMPARE_WITH_TIMEOUT(QDir(downloads).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList(), 10000);
}

QTEST_GUILESS_MAIN(TestDeskMagnet)
#include "tst_deskmagnet.moc"
