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
int trackNumberOf(const PlayerStatus &status, TrackKind kind, int pid)
{
    if (pid == -1)
        return 0;
    const Track *track = status.tracks->find(kind, pid);
    return track ? track->number : -1;
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

// The changes of a status and the orders that come with them have one order, under the model's lock. change gets the
// status and gives a result code.
template <typename Change>
int Player::change(Change change)
{
    return m_model->change(change);
}

// The same of a player that has something open.
template <typename Change>
int Player::changeOpened(Change change)
{
    return m_model->change(
        [&](PlayerStatus &status) { return status.loaded ? change(status) : KVR_ERR_INVALID_STATE; });
}

void Player::post(PlayerThread::Task task)
{
    if (m_thread)
        m_thread->post(std::move(task));
}

void Player::orderSession(std::function<void(PlaySession &)> order)
{
    post([order = std::move(order)](Playback &playback) { playback.order(order); });
}

void Player::orderCore(std::function<void(MpvCore &)> order)
{
    post([order = std::move(order)](Playback &playback) { order(playback.core()); });
}

int Player::play(const PlayRequest &request)
{
    return change([&](PlayerStatus &status) {
        if (!m_thread || m_thread->hasFailed()) {
            auto thread = std::make_shared<PlayerThread>(m_model, m_window);
            thread->start();
            m_thread = std::move(thread);
            post([mode = status.displayMode](Playback &playback) { playback.setDisplayMode(mode); });
        }
        status.beginSession(KVR_PLAYER_OPENING);
        post([request, number = status.session](Playback &playback) { playback.open(request, number); });
        return KVR_OK;
    });
}

int Player::stop()
{
    return change([&](PlayerStatus &status) {
        m_window->setShowing(false);
        status.beginSession(KVR_PLAYER_IDLE);
        post([](Playback &playback) { playback.stop(); });
        return KVR_OK;
    });
}

int Player::pause()
{
    return changeOpened([&](PlayerStatus &) {
        orderSession([](PlaySession &session) { session.setPaused(true); });
        return KVR_OK;
    });
}

int Player::resume()
{
    return changeOpened([&](PlayerStatus &status) {
        status.speed = 1;
        orderSession([](PlaySession &session) { session.setPaused(false); });
        return KVR_OK;
    });
}

int Player::nextFrame()
{
    return changeOpened([&](PlayerStatus &) {
        orderSession([](PlaySession &session) { session.step(); });
        return KVR_OK;
    });
}

int Player::setPosition(long long position)
{
    if (position < 0)
        return KVR_ERR_INVALID_ARGUMENT;
    return changeOpened([&](PlayerStatus &status) {
        if (!status.seekable)
            return KVR_ERR_NOT_SUPPORTED;
        const long long target = status.duration > 0 ? std::min(position, status.duration) : position;
        status.position = target;
        ++status.seeks;
        orderSession([target](PlaySession &session) { session.seek(target); });
        return KVR_OK;
    });
}

int Player::setSpeed(int speed)
{
    if (speed == 0 || speed > fastest || speed < -fastest)
        return KVR_ERR_INVALID_ARGUMENT;
    return changeOpened([&](PlayerStatus &status) {
        if (speed < 0 && !status.seekable)
            return KVR_ERR_NOT_SUPPORTED;
        status.speed = speed;
        orderSession([speed](PlaySession &session) { session.setSpeed(speed); });
        return KVR_OK;
    });
}

int Player::selectTrack(TrackKind kind, int PlayerStatus::*chosen, int pid)
{
    return change([&](PlayerStatus &status) {
        const int number = trackNumberOf(status, kind, pid);
        if (number < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        status.*chosen = pid;
        orderCore([kind, number](MpvCore &core) { core.selectTrack(kind, number); });
        return KVR_OK;
    });
}

int Player::setAudioPid(int pid)
{
    return selectTrack(TrackKind::Audio, &PlayerStatus::audioPid, pid);
}

int Player::setSubtitlePid(int pid)
{
    return selectTrack(TrackKind::Subtitle, &PlayerStatus::subtitlePid, pid);
}

void Player::showTeletext(const PlayerStatus &status)
{
    const int number = trackNumberOf(status, TrackKind::Teletext, status.teletextPid);
    orderCore([visible = status.teletextVisible, number, page = status.teletextPage](MpvCore &core) {
        core.showTeletext(visible, number, page);
    });
}

int Player::setTeletextPid(int pid)
{
    return change([&](PlayerStatus &status) {
        if (trackNumberOf(status, TrackKind::Teletext, pid) < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        status.teletextPid = pid;
        showTeletext(status);
        return KVR_OK;
    });
}

int Player::setTeletextPage(int page)
{
    if (page < firstTeletextPage || page > lastTeletextPage)
        return KVR_ERR_INVALID_ARGUMENT;
    return change([&](PlayerStatus &status) {
        status.teletextPage = page;
        showTeletext(status);
        return KVR_OK;
    });
}

int Player::setTeletextVisible(bool visible)
{
    return change([&](PlayerStatus &status) {
        status.teletextVisible = visible;
        showTeletext(status);
        return KVR_OK;
    });
}

int Player::setSubtitlesVisible(bool visible)
{
    return change([&](PlayerStatus &status) {
        status.subtitlesVisible = visible;
        orderCore([visible](MpvCore &core) { core.set("sub-visibility", visible); });
        return KVR_OK;
    });
}

int Player::setVolume(int volume)
{
    return change([&](PlayerStatus &status) {
        status.volume = std::clamp(volume, 0, 100);
        orderCore([value = status.volume](MpvCore &core) { core.set("volume", static_cast<double>(value)); });
        return KVR_OK;
    });
}

int Player::setMute(bool mute)
{
    return change([&](PlayerStatus &status) {
        status.mute = mute;
        orderCore([mute](MpvCore &core) { core.set("mute", mute); });
        return KVR_OK;
    });
}

int Player::setZoom(double zoom)
{
    if (!(zoom >= smallestZoom && zoom <= largestZoom))
        return KVR_ERR_INVALID_ARGUMENT;
    return change([&](PlayerStatus &status) {
        status.zoom = zoom;
        orderCore([zoom](MpvCore &core) { core.set("video-zoom", std::log2(zoom)); });
        return KVR_OK;
    });
}

int Player::setDisplayMode(int mode)
{
    if (mode < KVR_DISPLAY_LETTERBOX || mode > KVR_DISPLAY_CROP)
        return KVR_ERR_INVALID_ARGUMENT;
    return change([&](PlayerStatus &status) {
        status.displayMode = mode;
        post([mode](Playback &playback) { playback.setDisplayMode(mode); });
        return KVR_OK;
    });
}

int Player::setAlpha(int alpha)
{
    if (alpha < 0 || alpha > 255)
        return KVR_ERR_INVALID_ARGUMENT;
    m_window->setAlpha(alpha);
    return KVR_OK;
}
