// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QSet>
#include <QString>

namespace KavroJSDeprecated {

/// The older twin of StbMedia: answers as JSON text, no teletext, and players keep their volume to themselves. The
/// order of the slots is part of what portals and the launcher see.
class stb_media : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString onEvent READ getEventHandler WRITE setEventHandler)

public:
    stb_media();
    /// Closes the players that pages have left open.
    ~stb_media() override;

    /// Remembers the event that a page is about to hear of.
    int lastEventId;
    int lastEventType;

    QString getEventHandler();
    int setEventHandler(QString code);

signals:
    /// The page's script to be run after each event.
    int jsCallback(QString jsCode);

public slots:
    int CreatePlayer();
    int ClosePlayer(int id);
    int GetPlayersCount();
    int PlayFile(int id, QString path, long long pos, long long duration, double fps, QString subt);
    int PlayStream(int id, QString path);
    int PlayHttp(int id, QString path, QString opt);
    int PlayRtsp(int id, QString path, int mode);
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
    int GetVideoPid(int id);
    QString GetVideoTrackList(int id);
    int SetAudioPid(int id, int pid);
    int GetAudioPid(int id);
    QString GetAudioTrackList(int id);
    int SetSubtitlePid(int id, int pid);
    int GetSubtitlePid(int id);
    QString GetSubtitleTrackList(int id);
    int SetSubtitlesVisible(int id, int visibility);
    int IsSubtitlesVisible(int playerInstance);
    int SetVolume(int id, int vol);
    int GetVolume(int id);
    int IsMute(int id);
    int SetMute(int id, int mute);
    double GetZoom(int id);
    int SetZoom(int id, double zoom);
    double GetFps(int id);
    int SetPlayerViewPort(int id, int x, int y, int w, int h);
    QString GetPlayerViewPort(int id);
    int SetPlayerAlphaLevel(int id, int alpha);
    int GetPlayerAlphaLevel(int id);
    int SetPlayerVisible(int id, int visibility);
    int IsPlayerVisible(int id);
    int GetPlayerDisplayMode(int id);
    int SetPlayerDisplayMode(int id, int mode);
    int GetPlayerState(int id);
    QString GetLastMulticastEvent(int id);
    QString getEventDescription();

private:
    QSet<int> players; ///< created here and not yet closed
};

} // namespace KavroJSDeprecated
