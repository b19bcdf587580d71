// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Playback.h"

#include <algorithm>
#include <cmath>

using namespace Desk;

namespace {

constexpr double longestWait = 0.1; // seconds

} // namespace

Playback::Playback(PlayerModel &model, PlayerWindow &window)
    : m_model(model)
    , m_window(window)
    , m_renderer(m_core, window)
{
    m_magnetStream.install(m_core);
    m_rtpStream.install(m_core);
    m_runningFileStream.install(m_core);
    const PlayerStatus status = m_model.status();
    m_core.set("volume", static_cast<double>(status.volume));
    m_core.set("mute", status.mute);
    m_core.set("video-zoom", std::log2(status.zoom));
    m_core.set("sub-visibility", status.subtitlesVisible);
}

Playback::~Playback()
{
    m_session.reset();
    m_window.setShowing(false);
}

void Playback::open(const PlayRequest &request, unsigned number)
{
    stop();
    m_session =
        std::make_unique<PlaySession>(m_model, m_window, m_core, m_magnetStream, m_runningFileStream, request, number);
    order([](PlaySession &session) { session.begin(); });
}

void Playback::stop()
{
    order([](PlaySession &session) { session.end(KVR_PLAYER_IDLE); });
}

void Playback::setDisplayMode(int mode)
{
    if (m_stretch.horizontal > 0)
        m_core.setStretch(0, 0);
    m_stretch = {};
    m_core.setDisplayMode(mode);
}

// What a zoomed picture is stretched by, in a window that it would fill without the zoom.
Playback::Stretch Playback::stretch() const
{
    const PlayerStatus status = m_model.status();
    if (status.displayMode != KVR_DISPLAY_STRETCH || status.zoom == 1.0 || status.pictureWidth <= 0
        || status.pictureHeight <= 0)
        return {};
    const KVR_Rect place = m_window.place();
    const double change = static_cast<double>(place.width) * status.pictureHeight
        / (static_cast<double>(place.height) * status.pictureWidth);
    return {std::max(change, 1.0), std::max(1 / change, 1.0)};
}

// The shapes of window and picture change at any time.
void Playback::stretchPicture()
{
    const Stretch wanted = stretch();
    if (wanted.horizontal == m_stretch.horizontal && wanted.vertical == m_stretch.vertical)
        return;
    m_stretch = wanted;
    m_core.setStretch(wanted.horizontal, wanted.vertical);
}

void Playback::order(const std::function<void(PlaySession &)> &order)
{
    if (!m_session)
        return;
    order(*m_session);
    if (m_session->hasEnded())
        m_session.reset();
}

void Playback::work()
{
    const bool waits = !m_session || !m_session->isFailing();
    const mpv_event *event = m_core.nextEvent(waits ? longestWait : 0);
    while (event->event_id != MPV_EVENT_NONE) {
        order([=](PlaySession &session) { session.handle(*event); });
        event = m_core.nextEvent(0);
    }
    order([](PlaySession &session) { session.tick(); });
    stretchPicture();
}
