// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "PlayRequest.h"
#include "PlayerThread.h"

namespace Desk {

/// A player as the KVR_ functions see it: checks what is asked, answers from the status, and leaves the work to its
/// thread. No function waits; each returns an enum KVR_Error.
class Player
{
public:
    Player(KVR_ID id, EventRegistry &events, ScreenNotifier &screen);
    Player(const Player &) = delete;
    Player &operator=(const Player &) = delete;

    /// The player's thread ends later, by itself.
    ~Player();

    PlayerStatus status() const { return m_model->status(); }
    PlayerWindow &window() { return *m_window; }

    int play(const PlayRequest &request);
    int stop();
    int pause();
    int resume();
    int nextFrame();
    int setPosition(long long position);
    int setSpeed(int speed);

    int setAudioPid(int pid);
    int setSubtitlePid(int pid);
    int setTeletextPid(int pid);
    int setTeletextPage(int page);
    int setSubtitlesVisible(bool visible);
    int setTeletextVisible(bool visible);

    int setVolume(int volume);
    int setMute(bool mute);
    int setZoom(double zoom);
    int setDisplayMode(int mode);
    int setAlpha(int alpha);

private:
    template <typename Change>
    int change(Change change);
    template <typename Change>
    int changeOpened(Change change);
    int selectTrack(TrackKind kind, int PlayerStatus::*chosen, int pid);
    void showTeletext(const PlayerStatus &status);

    // Only within a change.
    void post(PlayerThread::Task task);
    void orderSession(std::function<void(PlaySession &)> order);
    void orderCore(std::function<void(MpvCore &)> order);

    const std::shared_ptr<PlayerModel> m_model;
    const std::shared_ptr<PlayerWindow> m_window;
    std::shared_ptr<PlayerThread> m_thread; // from the first session on; under the model's lock
};

} // namespace Desk
