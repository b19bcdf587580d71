// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QVariant>

namespace KavroJS {

/// The script object StbMedia: players, tracks, sound, picture and player events. The order of the slots is part of
/// what portals and the launcher see.
class StbMedia : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString onEvent READ getEventHandler WRITE setEventHandler)

public:
    /// The one object of the process, made by the first call.
    static StbMedia *instance();
    static void destroyInstance();

    /// Closes the players that pages have left open, and keeps their sound settings.
    ~StbMedia() override;

    /// Volume and mute that outlive players and restarts.
    void SetSystemVolume(int volume);
    int GetSystemVolume();
    void SetSystemMute(int mute);
    int IsSystemMute();

    /// Remembers the event that a page is about to hear of.
    void setLastEvent(int id, int type);

    QString getEventHandler();
    int setEventHandler(QString code);

signals:
    /// The page's script to be run after each event.
    int jsCallback(QString jsCode);

public slots:
    int CreatePlayer();
    int ClosePlayer(int id);
    int GetPlayersCount();
    // A default argument would be a slot more, and shift the indexes of all that follow. Pages whose engine needs
    // guards may leave out the subtitles, since the guard adds what is missing.
    int PlayFile(int id, QString path, long long pos, long long duration, double fps, QVariant subt);
    int PlayStream(int id, QString path);
    int PlayHttp(int id, QString path, QString opt);
    int PlayRtsp(int id, QString path, long long pos, int mode);
    int PlayMagnet(int id, QString magnet, QString name, long long size, long long pos, long long duration, double fps);
    int Pause(int id);
    int Stop(int id);
    int Continue(int id);
    int NextFrame(int id);
    int SetPosition(int id, long long pos);
    long long GetPosition(int id);
    long long GetDuration(int id);
    int SetSpeed(int id, int speed);
    int GetSpeed(int id);
    int GetPlayerState(int id);

    int GetVideoPid(int id);
    int GetAudioPid(int id);
    int SetAudioPid(int id, int pid);
    int GetSubtitlePid(int id);
    int SetSubtitlePid(int id, int pid);
    int IsSubtitlesVisible(int playerInstance);
    int SetSubtitlesVisible(int id, int visibility);
    int GetTeletextPid(int id);
    int SetTeletextPid(int id, int pid);
    int GetTeletextPage(int id);
    int SetTeletextPage(int id, int page);
    int IsTeletextVisible(int id);
    int SetTeletextVisible(int id, int visibility);
    QVariant GetVideoTrackList(int id);
    QVariant GetAudioTrackList(int id);
    QVariant GetSubtitleTrackList(int id);
    QVariant GetTeletextTrackList(int id);
    QVariant GetLastMulticastEvent(int id);
    QVariant GetPlayerViewPort(int id);

    int SetVolume(int id, int vol);
    int GetVolume(int id);
    int SetMute(int id, int mute);
    int IsMute(int id);
    int SetZoom(int id, double zoom);
    double GetZoom(int id);
    double GetFps(int id);
    int SetPlayerViewPort(int id, int x, int y, int w, int h);
    int SetPlayerAlphaLevel(int id, int alpha);
    int GetPlayerAlphaLevel(int id);
    int SetPlayerVisible(int id, int visibility);
    int IsPlayerVisible(int id);
    int SetPlayerDisplayMode(int id, int mode);
    int GetPlayerDisplayMode(int id);

    QVariant GetEventDescription();

private:
    StbMedia();

    void saveSound(int id);

    QSet<int> players; ///< created here and not yet closed
    int lastEventId;
    int lastEventType;

    static StbMedia *inst_;
};

} // namespace KavroJS
