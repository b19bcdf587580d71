// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Playback.h"
#include "Log.h"
#include "MagnetDownload.h"

#include <algorithm>
#include <cmath>
#include <strings.h>
#include <sys/stat.h>

using namespace Desk;

namespace {

const char *const networkSchemes[] = {"ftp",   "http",  "https", "mms",    "mmsh",   "mmst", "rist", "rtmp",
                                      "rtmpe", "rtmps", "rtmpt", "rtmpte", "rtmpts", "rtp",  "rtsp", "rtsps",
                                      "sftp",  "srt",   "srtp",  "tcp",    "tls",    "udp"};

// What else a path may stand for might never end or never begin. Of a path to nothing, the core tells the reason.
bool isFileOrNothing(const std::string &path)
{
    struct stat status = {};
    return path != "-" && (::stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode));
}

// Addresses of any other scheme are for a program's own use: the core would, say, close a file of the box's that it has
// open for "fdclose://3".
bool isPlayable(const std::string &address)
{
    const std::size_t colon = address.find("://");
    if (colon == std::string::npos || address.front() == '/')
        return isFileOrNothing(address);
    const std::string scheme = address.substr(0, colon);
    return std::any_of(std::begin(networkSchemes), std::end(networkSchemes),
                       [&](const char *known) { return ::strcasecmp(scheme.c_str(), known) == 0; });
}

std::string toSeconds(long long value)
{
    return std::to_string(static_cast<double>(value) / 1000);
}

} // namespace

Playback::Playback(PlayerModel &model, PlayerWindow &window)
    : m_model(model)
    , m_window(window)
    , m_renderer(m_core, window)
{
    m_magnetStream.install(m_core);
    m_rtpStream.install(m_core);
    const PlayerStatus status = m_model.status();
    m_core.set("volume", static_cast<double>(status.volume));
    m_core.set("mute", status.mute);
    m_core.set("video-zoom", std::log2(status.zoom));
    m_core.set("sub-visibility", status.subtitlesVisible);
}

Playback::~Playback()
{
    reportMulticast(false);
    m_window.setShowing(false);
}

void Playback::open(const PlayRequest &request, unsigned number)
{
    stop();
    m_request = request;
    m_number = number;
    m_active = true;
    m_from = request.start;
    m_complaints.clear();
    m_progress = request.time;
    if (request.kind == PlayRequest::Magnet) {
        m_magnet = std::make_shared<MagnetDownload>(request.address, request.torrentFile);
        m_magnetStream.setDownload(m_magnet);
    } else if (!isPlayable(request.address)) {
        fail("it is not a file or a stream of the network");
    } else {
        load(request.address);
    }
}

void Playback::load(const std::string &address)
{
    MpvCore::Options options;
    // A seek to the beginning is more than some servers can do.
    if (m_request.start > 0)
        options.emplace_back("start", std::to_string(m_request.start));
    for (const std::string &header : m_request.headers)
        options.emplace_back("http-header-fields-append", header);
    if (!m_request.subtitles.empty() && isPlayable(m_request.subtitles))
        options.emplace_back("sub-files-append", m_request.subtitles);
    if (m_request.kind == PlayRequest::Rtsp)
        options.emplace_back("rtsp-transport", m_request.rtspOverTcp ? "tcp" : "udp");
    m_core.set("pause", m_paused);
    m_core.set("speed", 1.0);
    m_core.load(RtpStream::addressFor(address), options, m_number);
}

void Playback::watchMagnet()
{
    if (m_magnet->takeProgress())
        madeProgress();
    const std::string problem = m_magnet->problem();
    if (!problem.empty()) {
        fail(problem);
    } else if (m_magnet->takeReady()) {
        madeProgress();
        load(MagnetStream::address);
    }
}

void Playback::stop()
{
    if (m_active)
        close(KVR_PLAYER_IDLE);
    m_paused = false;
}

void Playback::close(KVR_PlayerState state)
{
    m_core.unobserve(m_number);
    m_core.command({"stop"});
    m_rewind.stop();
    m_magnetStream.setDownload(nullptr);
    m_magnet.reset();
    reportMulticast(false);
    m_active = m_inCore = m_tracksSelected = m_started = false;
    m_buffering = m_seeking = m_failing = m_rewindSeeking = m_seekable = m_partlySeekable = false;
    m_duration = 0;
    m_entry = m_lastEntry = -1;
    m_model.changeFor(m_number, [=](PlayerStatus &status) {
        const unsigned request = status.request;
        status.reset(state);
        status.request = request;
    });
    if (m_model.status().request == m_number)
        m_window.setShowing(false);
}

void Playback::fail(const std::string &reason)
{
    log("player " + std::to_string(m_model.id()) + ": cannot play " + m_request.address + ": " + reason
        + (m_complaints.empty() ? "" : " (" + m_complaints + ")"));
    close(KVR_PLAYER_ERROR);
}

void Playback::setPaused(bool paused)
{
    m_paused = paused;
    stopRewind();
    if (!paused)
        m_core.set("speed", 1.0);
    m_core.set("pause", paused);
    madeProgress();
    updateState();
}

void Playback::step()
{
    m_paused = true;
    stopRewind();
    m_core.command({"frame-step"});
    updateState();
}

void Playback::seek(long long position)
{
    if (m_rewind.active())
        m_rewind.start(-m_model.status().speed, position);
    m_seeking = true;
    madeProgress();
    m_from = static_cast<double>(position) / 1000;
    seekCore(position);
}

void Playback::stopRewind()
{
    if (!m_rewind.active())
        return;
    const long long position = m_rewind.position();
    m_rewind.stop();
    seek(std::max(0LL, position));
}

void Playback::seekCore(long long position)
{
    m_core.command({"seek", toSeconds(position), "absolute+exact"});
}

void Playback::setSpeed(int speed)
{
    const bool wasBackwards = m_rewind.active();
    m_paused = false;
    if (speed < 0) {
        m_rewind.start(-speed, wasBackwards ? m_rewind.position() : m_model.status().position);
        m_core.set("pause", true);
    } else {
        stopRewind();
        m_core.set("speed", static_cast<double>(speed));
        m_core.set("pause", false);
    }
    madeProgress();
    updateState();
}

void Playback::selectTrack(const char *property, int playerId)
{
    m_core.set(property, playerId > 0 ? std::to_string(playerId) : "no");
}

void Playback::showTeletext(bool visible, int playerId, int page)
{
    // Choosing the track anew makes its decoder take over the page.
    m_core.set("teletext-page", std::to_string(page));
    m_core.set("secondary-sid", "no");
    if (visible && playerId > 0)
        m_core.set("secondary-sid", std::to_string(playerId));
}

void Playback::setDisplayMode(int mode)
{
    m_core.set("keepaspect", mode != KVR_DISPLAY_STRETCH);
    m_core.set("panscan", mode == KVR_DISPLAY_CROP ? 1.0 : 0.0);
}
