// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Player.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Desk;

namespace {

constexpr int fastest = 100; // the player core's limit
constexpr double smallestZoom = 0.1;
constexpr double largestZoom = 10.0;
constexpr int firstTeletextPage = 100;
constexpr int lastTeletextPage = 899;

// The number by which the core knows the chosen track: 0 for none, negative for a track that there is not.
int playerIdOf(const PlayerStatus &status, TrackKind kind, int pid)
{
    if (pid == -1)
        return 0;
    const Track *track = status.tracks->find(kind, pid);
    return track ? track->playerId : -1;
}

} // namespace

Player::Player(KVR_ID id, EventRegistry &events, ScreenNotifier &screen)
    : m_model(std::make_shared<PlayerModel>(id, events))
    , m_window(std::make_shared<PlayerWindow>(id, screen))
{
}

Player::~Player()
{
    if (m_thread)
        m_thread->close();
}

void Player::post(PlayerThread::Task task)
{
    if (m_thread)
        m_thread->post(std::move(task));
}

int Player::play(const PlayRequest &request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_thread || m_thread->hasFailed()) {
        auto thread = std::make_shared<PlayerThread>(m_model, m_window);
        thread->start();
        m_thread = std::move(thread);
        post([mode = m_displayMode](Playback &playback) { playback.setDisplayMode(mode); });
    }
    return m_model->change([&](PlayerStatus &status) {
        status.reset(KVR_PLAYER_OPENING);
        post([request, number = status.request](Playback &playback) { playback.open(request, number); });
        return KVR_OK;
    });
}

int Player::stop()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_window->setShowing(false);
    return m_model->change([&](PlayerStatus &status) {
        status.reset(KVR_PLAYER_IDLE);
        post([](Playback &playback) { playback.stop(); });
        return KVR_OK;
    });
}

int Player::pause()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (!status.loaded)
            return KVR_ERR_INVALID_STATE;
        post([](Playback &playback) { playback.setPaused(true); });
        return KVR_OK;
    });
}

int Player::resume()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (!status.loaded)
            return KVR_ERR_INVALID_STATE;
        status.speed = 1;
        post([](Playback &playback) { playback.setPaused(false); });
        return KVR_OK;
    });
}

int Player::nextFrame()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (!status.loaded)
            return KVR_ERR_INVALID_STATE;
        post([](Playback &playback) { playback.step(); });
        return KVR_OK;
    });
}

int Player::setPosition(long long position)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (position < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        if (!status.loaded)
            return KVR_ERR_INVALID_STATE;
        if (!status.seekable)
            return KVR_ERR_NOT_SUPPORTED;
        const long long target = status.duration > 0 ? std::min(position, status.duration) : position;
        status.position = target;
        post([target](Playback &playback) { playback.seek(target); });
        return KVR_OK;
    });
}

int Player::setSpeed(int speed)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (speed == 0 || speed > fastest || speed < -fastest)
            return KVR_ERR_INVALID_ARGUMENT;
        if (!status.loaded)
            return KVR_ERR_INVALID_STATE;
        if (speed < 0 && !status.seekable)
            return KVR_ERR_NOT_SUPPORTED;
        status.speed = speed;
        post([speed](Playback &playback) { playback.setSpeed(speed); });
        return KVR_OK;
    });
}

int Player::setAudioPid(int pid)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        const int playerId = playerIdOf(status, TrackKind::Audio, pid);
        if (playerId < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        status.audioPid = pid;
        post([playerId](Playback &playback) { playback.selectTrack("aid", playerId); });
        return KVR_OK;
    });
}

int Player::setSubtitlePid(int pid)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        const int playerId = playerIdOf(status, TrackKind::Subtitle, pid);
        if (playerId < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        status.subtitlePid = pid;
        post([playerId](Playback &playback) { playback.selectTrack("sid", playerId); });
        return KVR_OK;
    });
}

void Player::showTeletext(const PlayerStatus &status)
{
    const int playerId = playerIdOf(status, TrackKind::Teletext, status.teletextPid);
    post([visible = status.teletextVisible, playerId, page = status.teletextPage](Playback &playback) {
        playback.showTeletext(visible, playerId, page);
    });
}

int Player::setTeletextPid(int pid)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (playerIdOf(status, TrackKind::Teletext, pid) < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        status.teletextPid = pid;
        showTeletext(status);
        return KVR_OK;
    });
}

int Player::setTeletextPage(int page)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (page < firstTeletextPage || page > lastTeletextPage)
            return KVR_ERR_INVALID_ARGUMENT;
        status.teletextPage = page;
        showTeletext(status);
        return KVR_OK;
    });
}

int Player::setTeletextVisible(bool visible)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        status.teletextVisible = visible;
        showTeletext(status);
        return KVR_OK;
    });
}

int Player::setSubtitlesVisible(bool visible)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        status.subtitlesVisible = visible;
        post([visible](Playback &playback) { playback.core().set("sub-visibility", visible); });
        return KVR_OK;
    });
}

int Player::setVolume(int volume)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        status.volume = std::clamp(volume, 0, 100);
        post(
            [value = status.volume](Playback &playback) { playback.core().set("volume", static_cast<double>(value)); });
        return KVR_OK;
    });
}

int Player::setMute(bool mute)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        status.mute = mute;
        post([mute](Playback &playback) { playback.core().set("mute", mute); });
        return KVR_OK;
    });
}

int Player::setZoom(double zoom)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model->change([&](PlayerStatus &status) {
        if (!(zoom >= smallestZoom && zoom <= largestZoom))
            return KVR_ERR_INVALID_ARGUMENT;
        status.zoom = zoom;
        post([zoom](Playback &playback) { playback.core().set("video-zoom", std::log2(zoom)); });
        return KVR_OK;
    });
}

int Player::displayMode() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_displayMode;
}

int Player::setDisplayMode(int mode)
{
    if (mode < KVR_DISPLAY_LETTERBOX || mode > KVR_DISPLAY_CROP)
        return KVR_ERR_INVALID_ARGUMENT;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_displayMode = mode;
    post([mode](Playback &playback) { playback.setDisplayMode(mode); });
    return KVR_OK;
}

int Player::setAlpha(int alpha)
{
    if (alpha < 0 || alpha > 255)
        return KVR_ERR_INVALID_ARGUMENT;
    m_window->setAlpha(alpha);
    return KVR_OK;
}
