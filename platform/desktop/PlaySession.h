// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "CoreListener.h"
#include "GrowingFile.h"
#include "MpvCore.h"
#include "PlayRequest.h"
#include "PlayerModel.h"
#include "Problem.h"
#include "Rewind.h"
#include "SeekProgress.h"

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>

namespace Desk {

class HlsLook;
class MagnetDownload;
class MagnetStream;
class PlayerWindow;
class RunningFileStream;
struct RunningFile;

/// One play request from its beginning to its end: all that is known of it goes with it. Gives the player core its
/// orders and takes what the core reports into the player's status. Lives on the player's thread.
class PlaySession : private CoreListener
{
public:
    /// number: PlayerStatus::session of this one, and the tag of its orders to the core. All references outlive it.
    PlaySession(PlayerModel &model, PlayerWindow &window, MpvCore &core, MagnetStream &magnetStream,
                RunningFileStream &runningFileStream, PlayRequest request, unsigned number);
    PlaySession(const PlaySession &) = delete;
    PlaySession &operator=(const PlaySession &) = delete;
    ~PlaySession() override;

    /// Orders what is to be played. Like everything that follows, it may end the session.
    void begin();
    void setPaused(bool paused);
    void step();
    /// What the page has ordered, and PlayerStatus::seeks has counted.
    void seek(long long position);
    void setSpeed(int speed);

    /// Takes what the core reports.
    void handle(const mpv_event &event);

    /// Does what time brings; to be called often.
    void tick();

    /// Stops playing and tells the state it came to. The session is then to be thrown away.
    void end(KVR_PlayerState state);
    bool hasEnded() const { return m_ended; }

    /// Whether there is something to be done that does not wait for the core.
    bool isFailing() const { return m_failure.has_value(); }

private:
    using Clock = std::chrono::steady_clock;

    void entryAdded(long long entry) override;
    void entryRefused(const std::string &reason) override;
    void entryStarted(long long entry) override;
    void entryReplaced(long long entry, long long first, int count) override;
    void entryFailed(long long entry, const std::string &reason) override;
    void entryEnded(long long entry, bool isWhole) override;
    void streamPrepared(double seconds) override;
    void streamOpened() override;
    void playbackRestarted() override;
    void seekTaken(unsigned seek) override;
    void seekRefused(unsigned seek) override;
    void seekBegun() override;
    void complained(const std::string &text) override;
    void positionChanged(long long milliseconds) override;
    void durationChanged(double seconds) override;
    void formatChanged(const std::string &name) override;
    void sizeChanged(long long bytes) override { m_size = bytes; }
    void byteChanged(long long byte) override;
    void viaNetworkChanged(bool isViaNetwork) override { m_viaNetwork = isViaNetwork; }
    void bufferedChanged(double seconds) override;
    void seekableChanged(bool isSeekable) override;
    void partlySeekableChanged(bool isPartlySeekable) override;
    void bufferingChanged(bool isBuffering) override;
    void runningChanged(bool isRunning) override;
    void frameRateChanged(double framesPerSecond) override;
    void pictureWidthChanged(int pixels) override;
    void pictureHeightChanged(int pixels) override;
    void tracksChanged(std::shared_ptr<const TrackList> tracks) override;

    std::optional<double> expectedBufferTime() const;
    std::optional<double> bufferTime() const;
    void awaitLooks();
    void awaitProgress(Clock::duration silence);
    void tellTracks();
    double reached() const;
    double knownDuration() const;
    bool isCutOff() const;
    void tellEnd(const Problem &problem);
    void awaitName(std::chrono::milliseconds time);
    void load(const std::string &address);
    void fillBufferFirst(bool first);
    bool isReady() const;
    void watchMagnet();
    void selectRequestedTracks();
    void stopRewind();
    void goTo(long long position);
    void seekCore(long long position);
    void reachSeek();
    void tellPosition(long long milliseconds);
    void stepBackwards();
    void updateState();
    void updateDuration();
    void watchFile();
    void reachEnd();
    bool beginsBeyondEnd() const;
    void failAsReported();
    void fail(const std::string &reason);
    void reportMulticast(bool join);
    void madeProgress() { m_progress = Clock::now(); }
    bool isPlayed(long long entry) const { return m_inCore && entry == m_entry; }

    /// A change of the status; nothing happens when a newer session has come.
    template <typename Change>
    void change(Change apply)
    {
        m_model.changeFor(m_number, apply);
    }

    PlayerModel &m_model;
    PlayerWindow &m_window;
    MpvCore &m_core;
    MagnetStream &m_magnetStream;
    RunningFileStream &m_runningFileStream;
    const PlayRequest m_request;
    const unsigned m_number;
    std::shared_ptr<MagnetDownload> m_magnet;
    std::future<Problem> m_lookup;   // of the host's name
    std::unique_ptr<HlsLook> m_look; // at a playlist
    std::future<std::vector<StreamName>> m_namesLook;
    std::future<Problem> m_endLook;
    std::future<Problem> m_stallLook;
    std::vector<StreamName> m_names;
    std::shared_ptr<const TrackList> m_tracks;  // as the core tells them
    std::shared_ptr<RunningFile> m_runningFile; // what is played, if it is still recorded

    long long m_entry = -1;     // the core's number for what is played
    long long m_lastEntry = -1; // and for the last one, when it is a playlist
    bool m_inCore = false;      // the core has begun with it
    bool m_isReplaced = false;  // by what its address is a list of
    bool m_tracksSelected = false;
    bool m_started = false;
    bool m_hasRun = false;
    bool m_fillsBufferFirst = false;
    bool m_paused = false;
    bool m_buffering = false;
    bool m_ended = false;
    Rewind m_rewind;
    SeekProgress m_seek;
    bool m_seekIsTold = false;    // to the page, when it is over
    unsigned m_seeksTaken = 0;    // of those that the page has ordered
    long long m_corePosition = 0; // as the core told it last, milliseconds
    std::string m_complaints;     // of the core
    Problem m_failure;            // why the core has given up
    std::string m_group;          // multicast group that was joined
    double m_from;                // seconds, where playing began or was last sent to
    double m_duration = 0;        // seconds
    double m_startTime = 0;       // seconds, by the stream's own clock
    double m_grownTo = 0;         // seconds, the duration of a file that grows
    double m_knownLength = 0;     // seconds, of what is played, as it was opened; 0 when not known
    double m_buffered = 0;        // seconds
    std::optional<GrowingFile> m_file;
    std::string m_format; // its demuxer
    long long m_size = 0; // bytes
    long long m_byte = 0; // that playing has come to
    bool m_viaNetwork = false;
    bool m_opened = false;
    bool m_seekable = false;
    bool m_partlySeekable = false;
    Clock::time_point m_progress;
    Clock::time_point m_lastPositionEvent;
    Clock::time_point m_lastDuration; // that was told
    Clock::time_point m_lastLook;     // at the file
};

} // namespace Desk
