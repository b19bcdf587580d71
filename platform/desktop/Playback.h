// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "FrameRenderer.h"
#include "MagnetStream.h"
#include "MpvCore.h"
#include "PlayRequest.h"
#include "PlayerModel.h"
#include "Rewind.h"
#include "RtpStream.h"

#include <chrono>
#include <memory>
#include <string>

namespace Desk {

/// What a player plays: turns requests into orders for the player core, and what the core reports into the player's
/// status. Lives on the player's thread.
class Playback
{
public:
    Playback(PlayerModel &model, PlayerWindow &window);
    Playback(const Playback &) = delete;
    Playback &operator=(const Playback &) = delete;
    ~Playback();

    MpvCore &core() { return m_core; }

    /// number: PlayerStatus::request of this request.
    void open(const PlayRequest &request, unsigned number);
    void stop();
    void setPaused(bool paused);
    void step();
    void seek(long long position);
    void setSpeed(int speed);
    void selectTrack(const char *property, int playerId);
    void showTeletext(bool visible, int playerId, int page);
    void setDisplayMode(int mode);

    /// Handles what the core reports and what time brings. Returns after at most a tenth of a second.
    void work();

private:
    using Clock = std::chrono::steady_clock;

    void load(const std::string &address);
    void watchMagnet();
    void handle(const mpv_event &event);
    void handleComplaint(const mpv_event_log_message &message);
    void handleReply(const mpv_event &event);
    void handleStart(const mpv_event_start_file &start);
    void handleEnd(const mpv_event_end_file &end);
    void handleProperty(const mpv_event_property &property);
    void handleTracks(const mpv_node &list);
    void handleRestart();
    void selectRequestedTracks();
    void stopRewind();
    void seekCore(long long position);
    void stepBackwards();
    void tick();
    void updateState();
    void reachEnd();
    void fail(const std::string &reason);
    void close(KVR_PlayerState state);
    void reportMulticast(bool join);
    void madeProgress() { m_progress = Clock::now(); }

    PlayerModel &m_model;
    PlayerWindow &m_window;
    MagnetStream m_magnetStream; // the core reads from both
    RtpStream m_rtpStream;
    MpvCore m_core;
    FrameRenderer m_renderer;
    std::shared_ptr<MagnetDownload> m_magnet;

    PlayRequest m_request;
    unsigned m_number = 0;      // of the request, and the tag of what the core reports about it
    bool m_active = false;      // something is being opened or played
    long long m_entry = -1;     // the core's number for it
    long long m_lastEntry = -1; // and for the last one, when it is a playlist
    bool m_inCore = false;      // the core has begun with it
    bool m_tracksSelected = false;
    bool m_started = false;
    bool m_paused = false;
    bool m_buffering = false;
    bool m_seeking = false;
    bool m_failing = false;
    Rewind m_rewind;
    bool m_rewindSeeking = false;
    std::string m_complaints; // of the core about the present request
    std::string m_failure;    // why the core has given up
    std::string m_group;      // multicast group that was joined
    double m_from = 0;        // seconds, where playing began or was last sent to
    double m_duration = 0;    // seconds
    bool m_seekable = false;
    bool m_partlySeekable = false; // within what is buffered, as live streams are
    Clock::time_point m_progress;
    Clock::time_point m_lastPositionEvent;
};

} // namespace Desk
