// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Broadcast.h"
#include "DeskEvents.h"
#include "PlayerPicture.h"
#include "TestMedia.h"

#include <QTest>

#include <utility>

namespace {

constexpr char picture[] = "/mnt/stb/picture.ts";
constexpr char broadcast[] = "/mnt/stb/broadcast.ts";
constexpr int sparsePage = 101;
constexpr int densePage = 103;

QString onlyTrack(int (*list)(KVR_ID, KVR_Track **, int *), KVR_ID id)
{
    KVR_Track *tracks = nullptr;
    int count = 0;
    QString result = "not one track";
    if (list(id, &tracks, &count) == KVR_OK && count == 1)
        result = QString("%1 %2 %3 %4")
                     .arg(tracks->id)
                     .arg(QString::fromLatin1(tracks->descr))
                     .arg(tracks->supported)
                     .arg(tracks->encoding);
    free(tracks);
    return result;
}

} // namespace

/// DVB subtitles and teletext of a broadcast.
class TestDeskTeletext : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void theTracksAreTheBroadcasts();
    void bitmapSubtitlesAreShownAndHidden();
    void aTeletextPageIsShownTurnedAndHidden();
    void teletextCanBeSwitchedOff();
    void aNewPlayerShowsTheTeletextThatWasAskedForBefore();

private:
    KVR_ID m_id = -1;
};

void TestDeskTeletext::initTestCase()
{
    QVERIFY(TestMedia::makeColor(picture, QColor(0x10, 0x20, 0x40), "640x360", 20));
    QVERIFY(Broadcast::addSubtitlesAndTeletext(picture, broadcast, {sparsePage, densePage}));
}

void TestDeskTeletext::init()
{
    m_id = KVR_CreatePlayer();
    const KVR_Rect window = {0, 0, 640, 360};
    KVR_SetPlayerViewPort(m_id, &window);
    KVR_PlayFile(m_id, broadcast, 0, 0, 0, "", -1, -1, -1);
    QTRY_COMPARE(KVR_GetPlayerState(m_id), int(KVR_PLAYER_PLAYING));
    QTRY_VERIFY(!playerPicture(m_id).isNull());
    QCOMPARE(whitePixels(playerPicture(m_id)), 0);
}

void TestDeskTeletext::cleanup()
{
    KVR_ClosePlayer(m_id);
}

void TestDeskTeletext::theTracksAreTheBroadcasts()
{
    QCOMPARE(onlyTrack(KVR_GetSubtitleTrackList, m_id), QString("700 deu, dvb_subtitle 1 1"));
    QCOMPARE(onlyTrack(KVR_GetTeletextTrackList, m_id), QString("701 fra, dvb_teletext 1 0"));
    QCOMPARE(KVR_GetSubtitlePid(m_id), int(KVR_ERR_FAILED));
    QCOMPARE(KVR_GetTeletextPid(m_id), Broadcast::teletextPid);
    QCOMPARE(KVR_GetTeletextPage(m_id), 100);
    QCOMPARE(KVR_IsTeletextVisible(m_id), 0);
    QCOMPARE(KVR_SetSubtitlePid(m_id, Broadcast::teletextPid), int(KVR_ERR_INVALID_ARGUMENT));
    QCOMPARE(KVR_SetTeletextPid(m_id, Broadcast::subtitlePid), int(KVR_ERR_INVALID_ARGUMENT));
}

void TestDeskTeletext::bitmapSubtitlesAreShownAndHidden()
{
    QCOMPARE(KVR_SetSubtitlePid(m_id, Broadcast::subtitlePid), int(KVR_OK));
    constexpr int area = Broadcast::subtitleWidth * Broadcast::subtitleHeight;
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > area * 8 / 10);
    QVERIFY(whitePixels(playerPicture(m_id)) < area * 12 / 10);
    QVERIFY(qGray(playerPicture(m_id).pixel(320, 180)) > 220);
    KVR_SetSubtitlesVisible(m_id, 0);
    QTRY_COMPARE(whitePixels(playerPicture(m_id)), 0);
}

void TestDeskTeletext::aTeletextPageIsShownTurnedAndHidden()
{
    const DeskEvents events(m_id);
    QCOMPARE(KVR_SetTeletextPage(m_id, sparsePage), int(KVR_OK));
    QCOMPARE(KVR_SetTeletextVisible(m_id, 1), int(KVR_OK));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_TELETEXT_PAGE), 2);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 1000);
    int sparse = 0; // of a whole page
    const auto isWhole = [&] {
        const int before = std::exchange(sparse, whitePixels(playerPicture(m_id)));
        return sparse > 1000 && sparse == before;
    };
    QTRY_VERIFY(isWhole());
    QCOMPARE(KVR_SetTeletextPage(m_id, densePage), int(KVR_OK));
    QCOMPARE(KVR_GetTeletextPage(m_id), densePage);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 2 * sparse);
    QCOMPARE(KVR_SetTeletextVisible(m_id, 0), int(KVR_OK));
    QTRY_COMPARE(whitePixels(playerPicture(m_id)), 0);
}

void TestDeskTeletext::teletextCanBeSwitchedOff()
{
    KVR_SetTeletextPage(m_id, densePage);
    KVR_SetTeletextVisible(m_id, 1);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 1000);
    const DeskEvents events(m_id);
    QCOMPARE(KVR_SetTeletextPid(m_id, -1), int(KVR_OK));
    QTRY_COMPARE(whitePixels(playerPicture(m_id)), 0);
    QCOMPARE(KVR_GetTeletextPid(m_id), int(KVR_ERR_FAILED));
    QTRY_COMPARE(DeskEvents::count(KVR_EVENT_TELETEXT_PID), 1);
    QCOMPARE(KVR_SetTeletextPid(m_id, Broadcast::teletextPid), int(KVR_OK));
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 1000);
}

void TestDeskTeletext::aNewPlayerShowsTheTeletextThatWasAskedForBefore()
{
    KVR_ClosePlayer(m_id);
    m_id = KVR_CreatePlayer();
    KVR_SetTeletextPage(m_id, densePage);
    KVR_SetTeletextVisible(m_id, 1);
    KVR_PlayFile(m_id, broadcast, 0, 0, 0, "", -1, -1, -1);
    QTRY_VERIFY(whitePixels(playerPicture(m_id)) > 1000);
}

QTEST_GUILESS_MAIN(TestDeskTeletext)
#include "tst_deskteletext.moc"
