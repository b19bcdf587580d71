// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/HlsPlaylist.h"

#include <QTest>

using namespace Desk;

namespace {

constexpr char base[] = "http://example.com/a/list.m3u8?key=1";

HlsPlaylist playlist(const char *text)
{
    return {std::string("#EXTM3U\n") + text, base};
}

using Texts = std::vector<std::string>;

} // namespace

/// What a playlist of HTTP Live Streaming says.
class TestHlsPlaylist : public QObject
{
    Q_OBJECT

private slots:
    void segmentsAreFoundFromTheListsAddress();
    void aListOfTheBoxHasPaths();
    void aListThatEndsSaysSo();
    void playlistsComeInTheirOrderWithTheirBitrates();
    void theHeaderIsAFileOfItsOwn();
    void encryptionCountsUntilItIsTakenBack();
    void whatIsNoListHasNothing();
};

void TestHlsPlaylist::segmentsAreFoundFromTheListsAddress()
{
    const HlsPlaylist list = playlist("#EXTINF:2,\r\n1.ts?x=y\r\n\n#EXTINF:2,title\n#\n/b/2.ts\n"
                                      "#EXTINF:2,\nhttps://example.org/3.ts\n#EXTINF:2,\n../4 a.ts");
    const Texts expected = {"http://example.com/a/1.ts?x=y", "http://example.com/b/2.ts", "https://example.org/3.ts",
                            "http://example.com/4%20a.ts"};
    QCOMPARE(list.segments, expected);
    QVERIFY(list.playlists.empty());
}

void TestHlsPlaylist::aListOfTheBoxHasPaths()
{
    const HlsPlaylist list("#EXTM3U\n1 %20.ts\n/b/2.ts\nhttp://example.org/3.ts\n", "/mnt/stb/a b/list.m3u8");
    QCOMPARE(list.segments, Texts({"/mnt/stb/a b/1 %20.ts", "/b/2.ts", "http://example.org/3.ts"}));
}

void TestHlsPlaylist::aListThatEndsSaysSo()
{
    QVERIFY(!playlist("#EXTINF:2,\n1.ts\n").hasEnded);
    QVERIFY(playlist("#EXTINF:2,\n1.ts\n#EXT-X-ENDLIST\r\n").hasEnded);
}

void TestHlsPlaylist::playlistsComeInTheirOrderWithTheirBitrates()
{
    const HlsPlaylist list =
        playlist("#EXT-X-MEDIA:TYPE=AUDIO,NAME=\"a, URI=\",URI=\"rus.m3u8\"\n"
                 "#EXT-X-MEDIA:TYPE=AUDIO,NAME=\"in the variants\"\n"
                 "#EXT-X-MEDIA:TYPE=SUBTITLES,URI=\"text.m3u8\"\n"
                 "#EXT-X-STREAM-INF:CODECS=\"a,b\", BANDWIDTH=500000,AVERAGE-BANDWIDTH=1\nlow.m3u8\n"
                 "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"frames.m3u8\"\n"
                 "#EXT-X-STREAM-INF:BANDWIDTH=900000\n# a comment\nhigh.m3u8\n");
    const Texts expected = {"http://example.com/a/rus.m3u8", "http://example.com/a/low.m3u8",
                            "http://example.com/a/high.m3u8"};
    QCOMPARE(list.playlists, expected);
    QCOMPARE(list.bitrates, std::vector<int>({0, 500000, 900000}));
    QVERIFY(list.segments.empty());
}

void TestHlsPlaylist::theHeaderIsAFileOfItsOwn()
{
    QCOMPARE(playlist("#EXT-X-MAP:URI=\"head.mp4\",BYTERANGE=\"1@0\"\n#EXTINF:2,\n1.m4s\n").header,
             std::string("http://example.com/a/head.mp4"));
    QCOMPARE(playlist("#EXTINF:2,\n1.ts\n").header, std::string());
}

void TestHlsPlaylist::encryptionCountsUntilItIsTakenBack()
{
    QVERIFY(playlist("#EXT-X-KEY:METHOD=AES-128,URI=\"key\"\n#EXTINF:2,\n1.ts\n").isEncrypted);
    QVERIFY(!playlist("#EXT-X-KEY:METHOD=NONE\n#EXTINF:2,\n1.ts\n").isEncrypted);
    QVERIFY(!playlist("#EXTINF:2,\n1.ts\n").isEncrypted);
}

void TestHlsPlaylist::whatIsNoListHasNothing()
{
    for (const char *text : {"", "#EXT-X-MEDIA:", "#EXT-X-MEDIA:TYPE", "#EXT-X-MEDIA:TYPE=AUDIO,URI=\"",
                             "#EXT-X-STREAM-INF:BANDWIDTH=", "#EXT-X-MEDIA:,,,=,=\"\"", "\n\n\r\n"}) {
        QVERIFY2(playlist(text).playlists.empty(), text);
        QVERIFY2(playlist(text).segments.empty(), text);
    }
}

QTEST_GUILESS_MAIN(TestHlsPlaylist)

#include "tst_hlsplaylist.moc"
