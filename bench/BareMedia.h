// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QVariant>

/// An object with the names of StbMedia in their order, since the engine looks a name up among all of them; its slots
/// do nothing.
class BareMedia : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString onEvent READ getEventHandler WRITE setEventHandler)

public:
    using QObject::QObject;

    QString getEventHandler() { return {}; }
    int setEventHandler(const QString &) { return 0; }

signals:
    int jsCallback(QString jsCode);

public slots:
    int CreatePlayer() { return 0; }
    int ClosePlayer(int) { return 0; }
    int GetPlayersCount() { return 0; }
    int PlayFile(int, QString, long long, long long, double, QVariant = QVariant()) { return 0; }
    int PlayStream(int, QString) { return 0; }
    int PlayHttp(int, QString, QString) { return 0; }
    int PlayRtsp(int, QString, long long, int) { return 0; }
    int PlayMagnet(int, QString, QString, long long, long long, long long, double) { return 0; }
    int Pause(int) { return 0; }
    int Stop(int) { return 0; }
    int Continue(int) { return 0; }
    int NextFrame(int) { return 0; }
    int SetPosition(int, long long) { return 0; }
    long long GetPosition(int) { return 0; }
    long long GetDuration(int) { return 0; }
    int SetSpeed(int, int) { return 0; }
    int GetSpeed(int) { return 0; }
    int GetPlayerState(int) { return 0; }

    int GetVideoPid(int) { return 0; }
    int GetAudioPid(int) { return 0; }
    int SetAudioPid(int, int) { return 0; }
    int GetSubtitlePid(int) { return 0; }
    int SetSubtitlePid(int, int) { return 0; }
    int IsSubtitlesVisible(int) { return 0; }
    int SetSubtitlesVisible(int, int) { return 0; }
    int GetTeletextPid(int) { return 0; }
    int SetTeletextPid(int, int) { return 0; }
    int GetTeletextPage(int) { return 0; }
    int SetTeletextPage(int, int) { return 0; }
    int IsTeletextVisible(int) { return 0; }
    int SetTeletextVisible(int, int) { return 0; }
    QVariant GetVideoTrackList(int) { return {}; }
    QVariant GetAudioTrackList(int) { return {}; }
    QVariant GetSubtitleTrackList(int) { return {}; }
    QVariant GetTeletextTrackList(int) { return {}; }
    QVariant GetLastMulticastEvent(int) { return {}; }
    QVariant GetPlayerViewPort(int) { return {}; }

    int SetVolume(int, int) { return 0; }
    int GetVolume(int) { return 0; }
    int SetMute(int, int) { return 0; }
    int IsMute(int) { return 0; }
    int SetZoom(int, double) { return 0; }
    double GetZoom(int) { return 0; }
    double GetFps(int) { return 0; }
    int SetPlayerViewPort(int, int, int, int, int) { return 0; }
    int SetPlayerAlphaLevel(int, int) { return 0; }
    int GetPlayerAlphaLevel(int) { return 0; }
    int SetPlayerVisible(int, int) { return 0; }
    int IsPlayerVisible(int) { return 0; }
    int SetPlayerDisplayMode(int, int) { return 0; }
    int GetPlayerDisplayMode(int) { return 0; }

    QVariant GetEventDescription() { return {}; }
};
