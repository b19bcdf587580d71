// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlaySession.h"
#include "Address.h"
#include "CoreEvents.h"
#include "HlsLook.h"
#include "Log.h"
#include "MagnetDownload.h"
#include "MagnetStream.h"
#include "Multicast.h"
#include "NameLookup.h"
#include "PlayableAddress.h"
#include "PlayerWindow.h"
#include "RtpStream.h"
#include "RunningFile.h"

#include <algorithm>
#include <utility>

using namespace Desk;

namespace {

// So long the player's thread waits for the look-up of a name itself.
constexpr std::chrono::milliseconds usualLookup{100};

// And so long for that of a download, before it tells of an end.
constexpr std::chrono::seconds usualEnd{2};

// Of the player core, in seconds.
constexpr double usualReadAhead = 1;

std::string toSeconds(long long value)
{
    return std::to_string(static_cast<double>(value) / 1000);
}

} // namespace

PlaySession::PlaySession(PlayerModel &model, PlayerWindow &window, MpvCore &core, MagnetStream &magnetStream,
                         RunningFileStream &runningFileStream, PlayRequest request, unsigned number)
    : m_model(model)
    , m_window(window)
    , m_core(core)
    , m_magnetStream(magnetStream)
    , m_runningFileStream(runningFileStream)
    , m_request(std::move(request))
    , m_number(number)
    , m_from(m_request.start)
    , m_progress(m_request.time)
{
}

PlaySession::~PlaySession()
{
    reportMulticast(false);
}

void PlaySession::begin()
{
    if (m_request.kind == PlayRequest::Magnet) {
        m_magnet = MagnetDownload::begin(m_request.address, m_request.torrentFile);
        m_magnetStream.setDownload(m_magnet);
    } else if (!isPlayable(m_request.address)) {
        fail("it is not a file or a stream of the network");
    } else if (m_request.isRecorded) {
        m_runningFile = std::make_shared<RunningFile>();
        m_runningFile->name = m_request.address;
        m_runningFile->isRunning = m_request.isRecorded;
        m_runningFileStream.setFile(m_runningFile);
        load(RunningFileStream::address);
    } else {
        m_lookup = lookUpName(Address(m_request.address).host());
        awaitName(usualLookup);
    }
}

// The core would be held by a look-up of a name that takes its time, and play nothing else meanwhile.
void PlaySession::awaitName(std::chrono::milliseconds time)
{
    if (!m_lookup.valid() || m_lookup.wait_for(time) != std::future_status::ready)
        return;
    if (const Problem problem = m_lookup.get())
        fail("loading failed: " + *problem);
    else
        load(m_request.address);
}

// Whether an address over HTTP is a playlist is known when it is open; until then, the longer time holds.
std::optional<double> PlaySession::expectedBufferTime() const
{
    const BufferTimes &times = m_request.bufferTimes;
    const std::string scheme = Address(m_request.address).scheme();
    if (scheme == "udp" || scheme == "rtp")
        return times.udp;
    if (scheme == "http" || scheme == "https")
        return std::max(times.http, times.hls); // one that is set is more than none
    return std::nullopt;
}

std::optional<double> PlaySession::bufferTime() const
{
    const std::string scheme = Address(m_request.address).scheme();
    if (scheme == "http" || scheme == "https")
        return m_format == "hls" ? m_request.bufferTimes.hls : m_request.bufferTimes.http;
    return expectedBufferTime();
}

void PlaySession::load(const std::string &address)
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
    if (m_request.kind == PlayRequest::File)
        m_file.emplace(m_request.address);
    fillBufferFirst(m_request.isRemote());
    if (const std::optional<double> time = expectedBufferTime()) {
        options.emplace_back("cache-pause-wait", std::to_string(*time));
        options.emplace_back("demuxer-readahead-secs", std::to_string(std::max(*time, usualReadAhead)));
    }
    m_core.set("pause", m_paused);
    m_core.set("speed", 1.0);
    m_core.load(RtpStream::addressFor(address), options, m_number);
}

// What is sent as it happens comes no faster than it plays: what is put by at the beginning is all that there is
// against later delays. After a seek the page is not to wait longer than need be.
void PlaySession::fillBufferFirst(bool first)
{
    if (m_fillsBufferFirst != first)
        m_core.set("cache-pause-initial", first);
    m_fillsBufferFirst = first;
}

void PlaySession::watchMagnet()
{
    if (m_magnet->takeProgress())
        madeProgress();
    if (const Problem problem = m_magnet->problem()) {
        fail(*problem);
    } else if (m_magnet->takeReady()) {
        madeProgress();
        load(MagnetStream::address);
    }
}

void PlaySession::end(KVR_PlayerState state)
{
    m_ended = true;
    m_core.unobserve(m_number);
    m_core.command({"stop"});
    fillBufferFirst(false);
    m_magnetStream.setDownload(nullptr);
    const std::shared_future<void> magnetGone = m_magnet ? m_magnet->gone() : std::shared_future<void>();
    m_magnet.reset();
    // What has come to an end by itself has left nothing behind.
    if (magnetGone.valid() && state != KVR_PLAYER_IDLE)
        magnetGone.wait_for(usualEnd);
    m_runningFileStream.setFile(nullptr);
    reportMulticast(false);
    change([=](PlayerStatus &status) { status.reset(state); });
    if (m_model.status().session == m_number)
        m_window.setShowing(false);
}

void PlaySession::fail(const std::string &reason)
{
    log("player " + std::to_string(m_model.id()) + ": cannot play " + m_request.address + ": " + reason
        + (m_complaints.empty() ? "" : " (" + m_complaints + ")"));
    end(KVR_PLAYER_ERROR);
}

void PlaySession::setPaused(bool paused)
{
    m_paused = paused;
    stopRewind();
    if (!paused)
        m_core.set("speed", 1.0);
    m_core.set("pause", paused);
    madeProgress();
    updateState();
}

void PlaySession::step()
{
    m_paused = true;
    stopRewind();
    m_core.command({"frame-step"});
    updateState();
}

void PlaySession::seek(long long position)
{
    ++m_seeksTaken;
    if (m_rewind.active())
        m_rewind.start(-m_model.status().speed, position);
    goTo(position);
}

void PlaySession::goTo(long long position)
{
    m_seekIsTold = true;
    madeProgress();
    m_from = static_cast<double>(position) / 1000;
    seekCore(position);
}

void PlaySession::stopRewind()
{
    if (!m_rewind.active())
        return;
    const long long position = std::max(0LL, m_rewind.position());
    m_rewind.stop();
    tellPosition(position);
    goTo(position);
}

void PlaySession::seekCore(long long position)
{
    m_core.command({"seek", toSeconds(position), "absolute+exact"}, CoreEvents::seekTag(m_number, m_seek.order()));
}

void PlaySession::setSpeed(int speed)
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

void PlaySession::stepBackwards()
{
    const long long position = m_rewind.position();
    madeProgress();
    if (position <= 0) {
        end(KVR_PLAYER_ENDED);
        return;
    }
    tellPosition(position);
    if (!m_seek.isUnderWay())
        seekCore(position);
}

void PlaySession::reportMulticast(bool join)
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
