// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The half of Playback that handles what the player core reports and what time brings.

#include "Diagnosis.h"
#include "Log.h"
#include "Multicast.h"
#include "Playback.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace Desk;

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A player without any progress for so long is in error: the page is told within 15 seconds.
constexpr seconds patience{12};
constexpr milliseconds positionInterval{500};
constexpr double longestWait = 0.1; // seconds

// How much of the core's complaints the log repeats, in bytes.
constexpr std::size_t mostComplaints = 300;

// What comes to its end this much before its duration was cut off.
constexpr double earlyEnd = 3; // seconds

double number(const mpv_event_property &property)
{
    return property.format == MPV_FORMAT_DOUBLE ? *static_cast<double *>(property.data) : 0;
}

bool flag(const mpv_event_property &property)
{
    return property.format == MPV_FORMAT_FLAG && *static_cast<int *>(property.data);
}

long long toMilliseconds(double value)
{
    return std::max(0LL, std::llround(value * 1000));
}

int pidOf(const Track *track)
{
    return track ? track->entry.id : -1;
}

} // namespace

void Playback::work()
{
    const mpv_event *event = m_core.nextEvent(m_failing ? 0 : longestWait);
    while (event->event_id != MPV_EVENT_NONE) {
        handle(*event);
        event = m_core.nextEvent(0);
    }
    // The core tells the reason of a failure in its log, which may come after the failure itself.
    if (m_failing) {
        const bool remote = m_request.kind != PlayRequest::File && m_request.kind != PlayRequest::Magnet;
        const std::string reason = remote ? diagnose(m_request.address) : std::string();
        if (!reason.empty())
            m_complaints = reason;
        fail(m_failure);
    }
    if (m_active)
        tick();
}

void Playback::handle(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        if (m_active && event.reply_userdata == m_number)
            handleReply(event);
        break;
    case MPV_EVENT_LOG_MESSAGE:
        handleComplaint(*static_cast<mpv_event_log_message *>(event.data));
        break;
    case MPV_EVENT_START_FILE:
        handleStart(*static_cast<mpv_event_start_file *>(event.data));
        break;
    case MPV_EVENT_END_FILE:
        handleEnd(*static_cast<mpv_event_end_file *>(event.data));
        break;
    case MPV_EVENT_FILE_LOADED:
        if (m_inCore) {
            m_model.changeFor(m_number, [](PlayerStatus &status) { status.loaded = true; });
            // Not before: the tracks of external files come last.
            m_core.observe("track-list", MPV_FORMAT_NODE, m_number);
        }
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        if (m_inCore)
            handleRestart();
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        if (m_inCore && event.reply_userdata == m_number)
            handleProperty(*static_cast<mpv_event_property *>(event.data));
        break;
    default:
        break;
    }
}

void Playback::handleComplaint(const mpv_event_log_message &message)
{
    // The library that meets the network tells one core of what happens to all.
    if (std::strncmp(message.prefix, "ffmpeg", 6) == 0)
        return;
    std::string text = message.text;
    text.erase(text.find_last_not_of('\n') + 1);
    if (m_started || m_complaints.size() > mostComplaints || m_complaints.find(text) != std::string::npos)
        return;
    m_complaints += (m_complaints.empty() ? "" : "; ") + text;
}

void Playback::handleReply(const mpv_event &event)
{
    const mpv_node &result = static_cast<mpv_event_command *>(event.data)->result;
    if (event.error < 0)
        fail(mpv_error_string(event.error));
    else if (result.format == MPV_FORMAT_NODE_MAP && result.u.list->num > 0)
        m_entry = m_lastEntry = result.u.list->values[0].u.int64;
}

void Playback::handleStart(const mpv_event_start_file &start)
{
    if (!m_active || m_entry < 0 || start.playlist_entry_id < m_entry || start.playlist_entry_id > m_lastEntry)
        return;
    m_entry = start.playlist_entry_id;
    m_inCore = true;
    m_window.setShowing(true);
    reportMulticast(true);
    // Observed anew for each entry, so that every value is reported even if it is the same as for the one before.
    m_core.unobserve(m_number);
    for (const char *name : {"time-pos", "duration", "container-fps", "dwidth", "dheight"})
        m_core.observe(name, MPV_FORMAT_DOUBLE, m_number);
    for (const char *name : {"seekable", "partially-seekable", "paused-for-cache"})
        m_core.observe(name, MPV_FORMAT_FLAG, m_number);
}

void Playback::handleEnd(const mpv_event_end_file &end)
{
    if (!m_inCore || end.playlist_entry_id != m_entry)
        return;
    if (end.reason == MPV_END_FILE_REASON_REDIRECT) {
        m_entry = end.playlist_insert_id;
        m_lastEntry = m_entry + end.playlist_insert_num_entries - 1;
    } else if (end.reason == MPV_END_FILE_REASON_ERROR) {
        m_failing = true;
        m_failure = mpv_error_string(end.error);
    } else if (end.reason == MPV_END_FILE_REASON_EOF && m_entry < m_lastEntry) {
        ++m_entry;
    } else {
        reachEnd();
    }
}

void Playback::handleRestart()
{
    m_started = true;
    m_rewindSeeking = false;
    madeProgress();
    updateState();
    if (m_seeking)
        m_model.sendEvent(KVR_EVENT_POSITION);
    m_seeking = false;
}

void Playback::handleProperty(const mpv_event_property &property)
{
    const auto is = [&](const char *name) { return std::strcmp(property.name, name) == 0; };
    if (is("time-pos")) {
        if (property.format == MPV_FORMAT_NONE || m_rewind.active() || m_seeking)
            return;
        madeProgress();
        m_model.changeFor(m_number, [&](PlayerStatus &s) { s.position = toMilliseconds(number(property)); });
    } else if (is("track-list")) {
        if (property.format == MPV_FORMAT_NODE)
            handleTracks(*static_cast<mpv_node *>(property.data));
    } else if (is("paused-for-cache")) {
        m_buffering = flag(property);
        updateState();
    } else if (is("container-fps")) {
        m_model.changeFor(m_number, [&](PlayerStatus &s) { s.fps = number(property); });
    } else if (is("dwidth")) {
        m_model.changeFor(m_number, [&](PlayerStatus &s) { s.pictureWidth = static_cast<int>(number(property)); });
    } else if (is("dheight")) {
        m_model.changeFor(m_number, [&](PlayerStatus &s) { s.pictureHeight = static_cast<int>(number(property)); });
    } else {
        if (is("duration"))
            m_duration = number(property);
        else if (is("seekable"))
            m_seekable = flag(property);
        else
            m_partlySeekable = flag(property);
        m_model.changeFor(m_number, [this](PlayerStatus &s) {
            s.seekable = m_seekable;
            // The end of a live stream is only the end of what has come so far.
            s.duration = m_seekable && !m_partlySeekable ? toMilliseconds(m_duration) : 0;
        });
    }
}

void Playback::handleTracks(const mpv_node &list)
{
    const auto tracks = std::make_shared<const TrackList>(list);
    m_model.changeFor(m_number, [&](PlayerStatus &status) {
        // A player begins with the first teletext of the stream, shown or not.
        if (!tracks->sameTracks(*status.tracks, TrackKind::Teletext))
            status.teletextPid = pidOf(tracks->first(TrackKind::Teletext));
        status.videoPid = pidOf(tracks->selected(TrackKind::Video));
        status.audioPid = pidOf(tracks->selected(TrackKind::Audio));
        status.subtitlePid = pidOf(tracks->selected(TrackKind::Subtitle));
        status.tracks = tracks;
    });
    selectRequestedTracks();
    updateState();
}

void Playback::selectRequestedTracks()
{
    const PlayerStatus status = m_model.status();
    if (m_tracksSelected || status.request != m_number || status.tracks->tracks().empty())
        return;
    m_tracksSelected = true;
    const struct
    {
        TrackKind kind;
        const char *property;
        int pid;
    } rows[] = {
        {TrackKind::Video, "vid", m_request.videoPid},
        {TrackKind::Audio, "aid", m_request.audioPid},
        {TrackKind::Subtitle, "sid", m_request.subtitlePid},
    };
    for (const auto &row : rows) {
        if (row.pid < 0)
            continue;
        if (const Track *track = status.tracks->find(row.kind, row.pid))
            selectTrack(row.property, track->playerId);
        else
            log("player " + std::to_string(m_model.id()) + ": no track with PID " + std::to_string(row.pid) + " in "
                + m_request.address);
    }
    const Track *subtitles = status.tracks->external(TrackKind::Subtitle);
    if (!subtitles && !m_request.subtitles.empty())
        log("player " + std::to_string(m_model.id()) + ": no subtitles in " + m_request.subtitles);
    if (subtitles && m_request.subtitlePid < 0)
        selectTrack("sid", subtitles->playerId);
    if (const Track *teletext = status.tracks->find(TrackKind::Teletext, status.teletextPid))
        showTeletext(status.teletextVisible, teletext->playerId, status.teletextPage);
}

void Playback::stepBackwards()
{
    const long long position = m_rewind.position();
    madeProgress();
    if (position <= 0) {
        close(KVR_PLAYER_ENDED);
        return;
    }
    m_model.changeFor(m_number, [=](PlayerStatus &status) { status.position = position; });
    if (!m_rewindSeeking) {
        m_rewindSeeking = true;
        seekCore(position);
    }
}

void Playback::tick()
{
    if (m_magnet)
        watchMagnet();
    if (m_rewind.active())
        stepBackwards();
    if (!m_active)
        return;

    const Clock::time_point now = Clock::now();
    const bool playing = m_started && !m_paused && !m_buffering;
    if (playing && now - m_lastPositionEvent >= positionInterval) {
        m_lastPositionEvent = now;
        m_model.sendEvent(KVR_EVENT_POSITION);
    }
    if (m_started && m_paused)
        madeProgress();
    if (now - m_progress > patience)
        fail("nothing arrives");
}

void Playback::updateState()
{
    if (!m_active)
        return;
    KVR_PlayerState state = KVR_PLAYER_PLAYING;
    const bool ready = m_started && m_tracksSelected;
    if (ready && m_paused)
        state = KVR_PLAYER_PAUSED;
    else if (!ready || m_buffering)
        state = KVR_PLAYER_OPENING;
    m_model.changeFor(m_number, [=](PlayerStatus &status) { status.state = state; });
}

void Playback::reachEnd()
{
    const PlayerStatus status = m_model.status();
    // Beyond the end, the core reports no position.
    const double reached = std::max(static_cast<double>(status.position) / 1000, m_from);
    // Only pictures have a duration that is known for sure.
    const bool early = status.videoPid >= 0 && reached + earlyEnd < m_duration;
    if (!m_started)
        fail("there is nothing to play in it");
    else if (early && status.request == m_number)
        fail("it breaks off at " + std::to_string(status.position / 1000) + " of "
             + std::to_string(toMilliseconds(m_duration) / 1000) + " seconds");
    else
        close(KVR_PLAYER_ENDED);
}

void Playback::reportMulticast(bool join)
{
    const std::string group = join ? multicastGroup(m_request.address) : m_group;
    m_group = join ? group : std::string();
    if (group.empty())
        return;
    m_model.change([&](PlayerStatus &status) {
        status.multicast = {};
        group.copy(status.multicast.ip_port, sizeof status.multicast.ip_port - 1);
        status.multicast.join = join ? 1 : 0;
        return KVR_OK;
    });
}
