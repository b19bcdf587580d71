// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The half of PlaySession that takes what the player core reports, and does what time brings.

#include "CoreEvents.h"
#include "Diagnosis.h"
#include "HlsLook.h"
#include "Log.h"
#include "PlaySession.h"
#include "PlayerWindow.h"
#include "RunningFile.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Desk;

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A player without any progress for so long is in error: the page is told within 15 seconds.
constexpr seconds patience{12};
constexpr milliseconds positionInterval{500};
constexpr milliseconds durationInterval{500};

// Seconds that the player core fills its buffer again after it ran empty.
constexpr double usualPause = 1;

// How much of the core's complaints the log repeats, in bytes.
constexpr std::size_t mostComplaints = 300;

// What comes to its end this much before its duration was cut off.
constexpr double earlyEnd = 3; // seconds

// The duration of a playlist is exact but for this.
constexpr double exactEnd = 1; // seconds

// No index at the end of a file takes a larger share of it.
constexpr double mostIndex = 0.1;

long long toMilliseconds(double value)
{
    return std::max(0LL, std::llround(value * 1000));
}

int pidOf(const Track *track)
{
    return track ? track->entry.id : -1;
}

} // namespace

void PlaySession::handle(const mpv_event &event)
{
    CoreEvents::report(event, m_core, m_number, *this);
}

void PlaySession::tick()
{
    if (isFailing())
        failAsReported();
    if (!m_ended)
        awaitName(milliseconds(0));
    if (!m_ended)
        awaitLooks();
    if (!m_ended && m_magnet)
        watchMagnet();
    if (!m_ended && m_rewind.active())
        stepBackwards();
    if (m_ended)
        return;

    const Clock::time_point now = Clock::now();
    const bool playing = isReady() && !m_paused && !m_buffering;
    if (playing && now - m_lastPositionEvent >= positionInterval) {
        m_lastPositionEvent = now;
        m_model.sendEvent(KVR_EVENT_POSITION);
        if (m_viaNetwork && m_size > 0)
            CoreEvents::askForByte(m_core, m_number);
    }
    watchFile();
    updateDuration();
    if (m_started && m_paused)
        madeProgress();
    awaitProgress(now - m_progress);
}

void PlaySession::awaitProgress(Clock::duration silence)
{
    // A playlist may tell why before it is too late.
    if (silence <= patience - HlsLook::longest)
        m_stallLook = {};
    else if (m_look && !m_stallLook.valid())
        m_stallLook = m_look->problemAtEnd();
    if (silence <= patience)
        return;
    if (m_stallLook.valid() && m_stallLook.wait_for(seconds(0)) == std::future_status::ready)
        m_complaints = m_stallLook.get().value_or(m_complaints);
    fail("nothing arrives");
}

// The core tells the reason of a failure in its log, which may come after the failure itself.
void PlaySession::failAsReported()
{
    if (const Problem reason = m_request.isRemote() ? diagnose(m_request.address) : std::nullopt)
        m_complaints = *reason;
    fail(m_failure.value_or(std::string()));
}

void PlaySession::complained(const std::string &text)
{
    if (m_started || m_complaints.size() > mostComplaints || m_complaints.find(text) != std::string::npos)
        return;
    m_complaints += (m_complaints.empty() ? "" : "; ") + text;
}

void PlaySession::entryAdded(long long entry)
{
    m_entry = m_lastEntry = entry;
}

void PlaySession::entryRefused(const std::string &reason)
{
    fail(reason);
}

void PlaySession::entryStarted(long long entry)
{
    if (m_entry < 0 || entry < m_entry || entry > m_lastEntry)
        return;
    m_entry = entry;
    m_inCore = true;
    m_seek.forget();
    m_window.setShowing(true);
    reportMulticast(true);
    CoreEvents::observe(m_core, m_number);
}

void PlaySession::entryReplaced(long long entry, long long first, int count)
{
    if (!isPlayed(entry))
        return;
    m_isReplaced = true;
    m_from = 0; // of a list, nothing but its entries is played
    m_entry = first;
    m_lastEntry = first + count - 1;
}

void PlaySession::entryFailed(long long entry, const std::string &reason)
{
    if (isPlayed(entry) && beginsBeyondEnd())
        end(KVR_PLAYER_ENDED);
    else if (isPlayed(entry))
        m_failure = reason;
}

void PlaySession::entryEnded(long long entry, bool isWhole)
{
    if (!isPlayed(entry))
        return;
    if (isWhole && m_entry < m_lastEntry)
        ++m_entry;
    else
        reachEnd();
}

void PlaySession::streamPrepared(double seconds)
{
    if (!m_inCore)
        return;
    m_opened = true;
    // The core, which waits for us here, has read what it wanted to know, and does not play yet.
    if (m_runningFile)
        m_runningFile->isOpened = true;
    m_startTime = m_core.startTime();
    m_knownLength = seconds;
    if (seconds > 0 && beginsBeyondEnd())
        end(KVR_PLAYER_ENDED);
}

// Of what has no known length, only the core can find its end.
bool PlaySession::beginsBeyondEnd() const
{
    return m_opened && !m_started && m_from > 0 && m_from >= m_knownLength;
}

void PlaySession::streamOpened()
{
    if (!m_inCore)
        return;
    change([](PlayerStatus &status) { status.loaded = true; });
    CoreEvents::observeTracks(m_core, m_number);
}

void PlaySession::playbackRestarted()
{
    if (!m_inCore)
        return;
    if (!std::exchange(m_started, true))
        tellPosition(m_corePosition);
    madeProgress();
    updateState();
    m_seek.restarted();
    reachSeek();
}

void PlaySession::seekTaken(unsigned seek)
{
    m_seek.taken(seek);
}

void PlaySession::seekRefused(unsigned seek)
{
    m_seek.refused(seek);
    if (!m_seek.isUnderWay())
        tellPosition(m_corePosition);
    reachSeek();
}

void PlaySession::seekBegun()
{
    m_seek.begun();
}

void PlaySession::reachSeek()
{
    if (m_seek.isUnderWay() || !m_seekIsTold)
        return;
    m_seekIsTold = false;
    m_model.sendEvent(KVR_EVENT_POSITION);
}

void PlaySession::positionChanged(long long milliseconds)
{
    m_corePosition = milliseconds;
    if (!m_started || m_rewind.active() || m_seek.isUnderWay())
        return;
    madeProgress();
    tellPosition(milliseconds);
}

void PlaySession::tellPosition(long long milliseconds)
{
    change([=](PlayerStatus &status) {
        // A seek of the page's that is still on its way to us has said where it leads.
        if (status.seeks == m_seeksTaken)
            status.position = status.duration > 0 ? std::min(milliseconds, status.duration) : milliseconds;
    });
}

void PlaySession::bufferingChanged(bool isBuffering)
{
    m_buffering = isBuffering;
    updateState();
}

void PlaySession::runningChanged(bool isRunning)
{
    if (!isRunning || m_hasRun)
        return;
    m_hasRun = true;
    fillBufferFirst(false);
    updateState();
}

void PlaySession::frameRateChanged(double framesPerSecond)
{
    change([=](PlayerStatus &status) { status.fps = framesPerSecond; });
}

void PlaySession::pictureWidthChanged(int pixels)
{
    change([=](PlayerStatus &status) { status.pictureWidth = pixels; });
}

void PlaySession::pictureHeightChanged(int pixels)
{
    change([=](PlayerStatus &status) { status.pictureHeight = pixels; });
}

void PlaySession::durationChanged(double seconds)
{
    m_duration = seconds;
    updateDuration();
}

void PlaySession::formatChanged(const std::string &name)
{
    m_format = name;
    if (name == "hls" && !m_look && !m_isReplaced) {
        m_look = std::make_unique<HlsLook>(m_request.address, m_request.headers);
        m_namesLook = m_look->streamNames();
    }
    if (name.empty() || bufferTime() == expectedBufferTime())
        return;
    const std::optional<double> time = bufferTime();
    m_core.set("file-local-options/cache-pause-wait", time.value_or(usualPause));
}

// At its end the core knows none.
void PlaySession::byteChanged(long long byte)
{
    if (byte > 0)
        m_byte = byte;
}

// What fills a buffer arrives.
void PlaySession::bufferedChanged(double seconds)
{
    if (seconds > m_buffered)
        madeProgress();
    m_buffered = seconds;
}

void PlaySession::seekableChanged(bool isSeekable)
{
    m_seekable = isSeekable;
    updateDuration();
}

void PlaySession::partlySeekableChanged(bool isPartlySeekable)
{
    m_partlySeekable = isPartlySeekable;
    updateDuration();
}

double PlaySession::knownDuration() const
{
    // The end of a live stream is only the end of what has come so far.
    return m_seekable && !m_partlySeekable ? std::max(m_duration, m_grownTo) : 0;
}

void PlaySession::updateDuration()
{
    change([this](PlayerStatus &status) {
        status.seekable = m_seekable;
        // What grows does so with each picture; a page is told of it twice a second.
        const Clock::time_point now = Clock::now();
        const long long duration = toMilliseconds(knownDuration());
        if (duration == status.duration
            || (duration > 0 && status.duration > 0 && now - m_lastDuration < durationInterval))
            return;
        status.duration = duration;
        m_lastDuration = now;
    });
}

// The core knows of a file's growth only what it has read.
void PlaySession::watchFile()
{
    const Clock::time_point now = Clock::now();
    if (!m_file || !m_opened || now - m_lastLook < durationInterval)
        return;
    m_lastLook = now;
    if (const std::optional<double> end = m_file->takeEnd())
        m_grownTo = *end - m_startTime;
}

void PlaySession::tracksChanged(std::shared_ptr<const TrackList> tracks)
{
    m_tracks = std::move(tracks);
    // A playlist's have their PIDs then.
    if (!m_namesLook.valid())
        tellTracks();
}

void PlaySession::awaitLooks()
{
    const auto isReady = [](const auto &look) {
        return look.valid() && look.wait_for(seconds(0)) == std::future_status::ready;
    };
    if (isReady(m_namesLook)) {
        m_names = m_namesLook.get();
        if (m_tracks)
            tellTracks();
    }
    if (isReady(m_endLook))
        tellEnd(m_endLook.get());
}

void PlaySession::tellTracks()
{
    auto tracks = std::make_shared<const TrackList>(m_tracks->named(m_names));
    change([&](PlayerStatus &status) {
        // A player begins with the first teletext of the stream, shown or not.
        if (!tracks->sameTracks(*status.tracks, TrackKind::Teletext))
            status.teletextPid = pidOf(tracks->first(TrackKind::Teletext));
        status.videoPid = pidOf(tracks->selected(TrackKind::Video));
        status.audioPid = pidOf(tracks->selected(TrackKind::Audio));
        status.subtitlePid = pidOf(tracks->selected(TrackKind::Subtitle));
        status.tracks = std::move(tracks);
    });
    selectRequestedTracks();
    updateState();
}

void PlaySession::selectRequestedTracks()
{
    const PlayerStatus status = m_model.status();
    if (m_tracksSelected || status.session != m_number || status.tracks->tracks().empty())
        return;
    m_tracksSelected = true;
    const struct
    {
        TrackKind kind;
        int pid;
    } wishes[] = {
        {TrackKind::Video, m_request.videoPid},
        {TrackKind::Audio, m_request.audioPid},
        {TrackKind::Subtitle, m_request.subtitlePid},
    };
    for (const auto &wish : wishes) {
        if (wish.pid < 0)
            continue;
        if (const Track *track = status.tracks->find(wish.kind, wish.pid))
            m_core.selectTrack(wish.kind, track->number);
        else
            log("player " + std::to_string(m_model.id()) + ": no track with PID " + std::to_string(wish.pid) + " in "
                + m_request.address);
    }
    const Track *subtitles = status.tracks->external(TrackKind::Subtitle);
    if (!subtitles && !m_request.subtitles.empty())
        log("player " + std::to_string(m_model.id()) + ": no subtitles in " + m_request.subtitles);
    if (subtitles && m_request.subtitlePid < 0)
        m_core.selectTrack(TrackKind::Subtitle, subtitles->number);
    if (const Track *teletext = status.tracks->find(TrackKind::Teletext, status.teletextPid))
        m_core.showTeletext(status.teletextVisible, teletext->number, status.teletextPage);
}

// Once the core has started, it may fill its buffer before it really runs.
bool PlaySession::isReady() const
{
    return m_started && m_tracksSelected && (m_hasRun || m_paused || m_rewind.active());
}

void PlaySession::updateState()
{
    KVR_PlayerState state = KVR_PLAYER_PLAYING;
    if (isReady() && m_paused)
        state = KVR_PLAYER_PAUSED;
    else if (!isReady() || m_buffering)
        state = KVR_PLAYER_OPENING;
    change([=](PlayerStatus &status) { status.state = state; });
}

void PlaySession::reachEnd()
{
    m_core.unobserve(m_number); // the core forgets what it played
    if (!m_started && !beginsBeyondEnd())
        fail("there is nothing to play in it");
    else if (m_started && m_look && (knownDuration() <= 0 || reached() + exactEnd < m_duration))
        m_endLook = m_look->problemAtEnd(); // FFmpeg takes what does not come for the end
    else
        tellEnd(std::nullopt);
}

// In seconds. Beyond the end, the core reports no position.
double PlaySession::reached() const
{
    return std::max(static_cast<double>(m_model.status().position) / 1000, m_from);
}

bool PlaySession::isCutOff() const
{
    // Only pictures have a duration that is known for sure.
    if (m_model.status().videoPid >= 0 && reached() + earlyEnd < m_duration)
        return true;
    if (!m_viaNetwork || m_size <= 0 || m_byte <= 0 || m_byte > m_size)
        return false;
    // The rest of the bytes that were promised, in seconds of those that came. Other files than transport streams may
    // have an index at their end.
    const double rest = static_cast<double>(m_size - m_byte);
    const bool isLong = rest * std::max(reached(), 0.5) > earlyEnd * static_cast<double>(m_byte);
    return isLong && (m_format == "mpegts" || rest > mostIndex * static_cast<double>(m_size));
}

void PlaySession::tellEnd(const Problem &problem)
{
    if (m_model.status().session != m_number || (!problem && !isCutOff())) {
        end(KVR_PLAYER_ENDED);
        return;
    }
    if (problem)
        m_complaints = *problem;
    std::string reason = "it breaks off at " + std::to_string(m_model.status().position / 1000);
    if (reached() + exactEnd < m_duration)
        reason += " of " + std::to_string(toMilliseconds(m_duration) / 1000);
    reason += " seconds";
    if (!problem && m_size > 0)
        reason += ", byte " + std::to_string(m_byte) + " of " + std::to_string(m_size);
    fail(reason);
}
