// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/TrackList.h"

#include <QTest>

#include <list>

using namespace Desk;

namespace {

// What the player core tells of its tracks.
class CoreTracks
{
public:
    /// Any number of the core, and the stream's own: 0 for none.
    void add(const char *type, const char *codec, int pid, bool isExternal = false, const char *language = "")
    {
        Entry &entry = m_entries.emplace_back();
        entry.put("type", text(type));
        entry.put("codec", text(codec));
        entry.put("lang", text(language));
        entry.put("id", number(++m_count));
        entry.put("external", flag(isExternal));
        entry.put("ff-index", number(isExternal ? 0 : m_count - 1));
        if (pid > 0)
            entry.put("src-id", number(pid));
    }

    TrackList tracks()
    {
        std::vector<mpv_node> values;
        for (Entry &entry : m_entries)
            values.push_back(entry.node());
        mpv_node_list list = {int(values.size()), values.data(), nullptr};
        mpv_node node = {};
        node.format = MPV_FORMAT_NODE_ARRAY;
        node.u.list = &list;
        return TrackList(node);
    }

private:
    struct Entry
    {
        void put(const char *key, const mpv_node &value)
        {
            keys.push_back(const_cast<char *>(key));
            values.push_back(value);
        }
        mpv_node node()
        {
            list = {int(values.size()), values.data(), keys.data()};
            mpv_node node = {};
            node.format = MPV_FORMAT_NODE_MAP;
            node.u.list = &list;
            return node;
        }

        std::vector<char *> keys;
        std::vector<mpv_node> values;
        mpv_node_list list = {};
    };

    static mpv_node text(const char *text)
    {
        mpv_node node = {};
        node.format = MPV_FORMAT_STRING;
        node.u.string = const_cast<char *>(text);
        return node;
    }
    static mpv_node number(int number)
    {
        mpv_node node = {};
        node.format = MPV_FORMAT_INT64;
        node.u.int64 = number;
        return node;
    }
    static mpv_node flag(bool flag)
    {
        mpv_node node = {};
        node.format = MPV_FORMAT_FLAG;
        node.u.flag = flag ? 1 : 0;
        return node;
    }

    std::list<Entry> m_entries;
    int m_count = 0;
};

QList<int> pids(const TrackList &tracks, TrackKind kind)
{
    QList<int> result;
    for (const KVR_Track &entry : tracks.entries(kind))
        result += entry.id;
    return result;
}

} // namespace

/// The tracks of a player, as their numbers and kinds come from the player core.
class TestTrackList : public QObject
{
    Q_OBJECT

private slots:
    void tracksHaveThePidsOfTheirStream();
    void pidsThatAreMissingOrDoubleAreMadeUp();
    void aFileOfItsOwnHasNoPidsOfTheStream();
    void aPlaylistsSegmentsNameWhatTheCoreDoesNot();
    void ofVariantsThoseOfTheBestStay();
    void subtitlesAreTextOrPictures();
    void otherTracksAreTellable_data();
    void otherTracksAreTellable();
};

void TestTrackList::tracksHaveThePidsOfTheirStream()
{
    CoreTracks core;
    core.add("video", "h264", 512);
    core.add("audio", "mp2", 650);
    core.add("sub", "dvb_teletext", 701);
    core.add("sub", "dvb_subtitle", 700);
    const TrackList tracks = core.tracks();
    QCOMPARE(pids(tracks, TrackKind::Video), QList<int>{512});
    QCOMPARE(pids(tracks, TrackKind::Audio), QList<int>{650});
    QCOMPARE(pids(tracks, TrackKind::Teletext), QList<int>{701});
    QCOMPARE(pids(tracks, TrackKind::Subtitle), QList<int>{700});
    QCOMPARE(tracks.find(TrackKind::Subtitle, 700)->number, 4);
    QVERIFY(!tracks.find(TrackKind::Audio, 512));
}

void TestTrackList::pidsThatAreMissingOrDoubleAreMadeUp()
{
    CoreTracks core;
    core.add("video", "h264", 0);
    core.add("audio", "mp2", 650);
    core.add("sub", "dvb_teletext", 701, false, "deu");
    core.add("sub", "dvb_teletext", 701, false, "fra"); // two pages of one stream
    const TrackList tracks = core.tracks();
    QCOMPARE(pids(tracks, TrackKind::Video), QList<int>{0x2000});
    QCOMPARE(pids(tracks, TrackKind::Audio), QList<int>{650});
    QCOMPARE(pids(tracks, TrackKind::Teletext), QList<int>({0x2002, 0x2003}));
}

void TestTrackList::aFileOfItsOwnHasNoPidsOfTheStream()
{
    CoreTracks core;
    core.add("video", "h264", 1);
    core.add("sub", "subrip", 1, true);
    const TrackList tracks = core.tracks();
    QCOMPARE(pids(tracks, TrackKind::Video), QList<int>{1});
    QCOMPARE(pids(tracks, TrackKind::Subtitle), QList<int>{0x2001});
    QCOMPARE(tracks.external(TrackKind::Subtitle)->number, 2);
    QVERIFY(!tracks.external(TrackKind::Video));
}

void TestTrackList::aPlaylistsSegmentsNameWhatTheCoreDoesNot()
{
    CoreTracks core;
    core.add("video", "h264", 0);
    core.add("audio", "mp2", 0);
    core.add("audio", "mp2", 0, false, "deu");
    core.add("audio", "mp2", 0);
    core.add("sub", "subrip", 0, true);
    const TrackList tracks = core.tracks().named({{256, ""}, {257, "rus"}, {258, "eng"}});
    QCOMPARE(pids(tracks, TrackKind::Video), QList<int>{256});
    QCOMPARE(pids(tracks, TrackKind::Audio), QList<int>({257, 258, 0x2003}));
    QCOMPARE(pids(tracks, TrackKind::Subtitle), QList<int>{0x2004});
    const std::vector<KVR_Track> audio = tracks.entries(TrackKind::Audio);
    QCOMPARE(audio[0].descr, "rus, mp2");
    QCOMPARE(audio[1].descr, "deu, mp2");
    QCOMPARE(audio[2].descr, "mp2");
    QVERIFY(!core.tracks().sameTracks(tracks, TrackKind::Audio));
}

void TestTrackList::ofVariantsThoseOfTheBestStay()
{
    CoreTracks core;
    for (int i = 0; i < 2; ++i) {
        core.add("video", "h264", 0);
        core.add("audio", "mp2", 0);
    }
    core.add("audio", "mp2", 0);
    const TrackList tracks = core.tracks().named({{256, "", 5}, {257, "", 5}, {256, "", 9}, {257, "", 9}, {300, ""}});
    QCOMPARE(pids(tracks, TrackKind::Video), QList<int>{256});
    QCOMPARE(pids(tracks, TrackKind::Audio), QList<int>({257, 300}));
    QCOMPARE(tracks.find(TrackKind::Audio, 257)->number, 4);
}

void TestTrackList::subtitlesAreTextOrPictures()
{
    CoreTracks core;
    core.add("sub", "subrip", 1);
    core.add("sub", "dvb_subtitle", 2);
    const std::vector<KVR_Track> entries = core.tracks().entries(TrackKind::Subtitle);
    QCOMPARE(entries.at(0).encoding, int(KVR_SUBTITLE_TEXT));
    QCOMPARE(entries.at(1).encoding, int(KVR_SUBTITLE_BITMAP));
}

void TestTrackList::otherTracksAreTellable_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<int>("pid");
    QTest::addColumn<bool>("isSame");
    QTest::newRow("the same") << QByteArray("mp2") << QByteArray("rus") << 650 << true;
    QTest::newRow("another PID") << QByteArray("mp2") << QByteArray("rus") << 651 << false;
    QTest::newRow("another language") << QByteArray("mp2") << QByteArray("eng") << 650 << false;
    QTest::newRow("another codec") << QByteArray("aac") << QByteArray("rus") << 650 << false;
    QTest::newRow("a codec that cannot be played") << QByteArray("none") << QByteArray("rus") << 650 << false;
}

void TestTrackList::otherTracksAreTellable()
{
    QFETCH(QByteArray, codec);
    QFETCH(QByteArray, language);
    QFETCH(int, pid);
    QFETCH(bool, isSame);
    CoreTracks before;
    before.add("audio", "mp2", 650, false, "rus");
    CoreTracks after;
    after.add("audio", codec, pid, false, language);
    QCOMPARE(before.tracks().sameTracks(after.tracks(), TrackKind::Audio), isSame);
    QVERIFY(before.tracks().sameTracks(after.tracks(), TrackKind::Video));
    QVERIFY(!before.tracks().sameTracks(TrackList(), TrackKind::Audio));
}

QTEST_GUILESS_MAIN(TestTrackList)

#include "tst_tracklist.moc"
