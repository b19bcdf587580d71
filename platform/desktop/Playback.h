// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "FrameRenderer.h"
#include "MagnetStream.h"
#include "MpvCore.h"
#include "PlaySession.h"
#include "RtpStream.h"
#include "RunningFile.h"

#include <functional>
#include <memory>

namespace Desk {

/// What a player plays with: the player core, what it reads from and what it shows its pictures with. One session at a
/// time uses them. Lives on the player's thread.
class Playback
{
public:
    Playback(PlayerModel &model, PlayerWindow &window);
    Playback(const Playback &) = delete;
    Playback &operator=(const Playback &) = delete;
    ~Playback();

    MpvCore &core() { return m_core; }
    void setDisplayMode(int mode);

    /// Plays something else. number: PlayerStatus::session of the session that begins.
    void open(const PlayRequest &request, unsigned number);
    void stop();

    /// Has the session do something, if there is one.
    void order(const std::function<void(PlaySession &)> &order);

    /// Handles what the core reports and what time brings. Returns after at most a tenth of a second.
    void work();

private:
    struct Stretch // factors
    {
        double horizontal = 0;
        double vertical = 0;
    };

    Stretch stretch() const;
    void stretchPicture();

    PlayerModel &m_model;
    PlayerWindow &m_window;
    MagnetStream m_magnetStream; // the core reads from all of them
    RunningFileStream m_runningFileStream;
    RtpStream m_rtpStream;
    MpvCore m_core;
    FrameRenderer m_renderer;
    Stretch m_stretch; // that the core has
    std::unique_ptr<PlaySession> m_session;
};

} // namespace Desk
