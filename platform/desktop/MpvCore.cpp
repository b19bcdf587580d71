// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MpvCore.h"

#include <clocale>
#include <stdexcept>
#include <unistd.h>
#include <utility>

using namespace Desk;

namespace {

mpv_node textNode(const std::string &text)
{
    mpv_node node = {};
    node.format = MPV_FORMAT_STRING;
    // libmpv takes what it sends as non-const, and copies it.
    node.u.string = const_cast<char *>(text.c_str());
    return node;
}

// Where sound goes. ALSA is left out where it has no device: it would complain on standard error for each player.
std::string audioOutputs()
{
    const bool hasDevice = ::access("/dev/snd/controlC0", F_OK) == 0;
    return hasDevice ? "pulse,alsa,null" : "pulse,null";
}

} // namespace

MpvCore::MpvCore()
{
    // libmpv refuses to work with another decimal point; the toolkit sets the user's locale at its start.
    std::setlocale(LC_NUMERIC, "C");
    m_handle = mpv_create();
    if (!m_handle)
        throw std::runtime_error("libmpv cannot be started: no memory");

    setOption("vo", "libmpv");
    setOption("ao", audioOutputs());
    setOption("idle", "yes");
    setOption("ytdl", "no");
    setOption("load-scripts", "no");
    setOption("osd-level", "0");
    setOption("autoload-files", "no");
    setOption("sub-auto", "no");
    setOption("audio-file-auto", "no");
    setOption("cover-art-auto", "no");
    setOption("hwdec", "no");
    // Transport streams lead a seek to the key frame after the position, not before it.
    setOption("hr-seek-demuxer-offset", "2");
    setOption("audio-client-name", "kavro-box");
    const int result = mpv_initialize(m_handle);
    if (result < 0) {
        mpv_terminate_destroy(m_handle);
        throw std::runtime_error(std::string("libmpv cannot be started: ") + mpv_error_string(result));
    }
    mpv_request_log_messages(m_handle, "warn");
    mpv_hook_add(m_handle, 0, "on_preloaded", 0);
}

MpvCore::~MpvCore()
{
    mpv_terminate_destroy(m_handle);
}

void MpvCore::setOption(const char *name, const std::string &value)
{
    const int result = mpv_set_option_string(m_handle, name, value.c_str());
    if (result < 0) {
        mpv_terminate_destroy(m_handle);
        throw std::runtime_error("libmpv refuses " + std::string(name) + "=" + value + ": " + mpv_error_string(result));
    }
}

void MpvCore::set(const char *property, const std::string &value)
{
    const char *text = value.c_str();
    count(mpv_set_property_async(m_handle, 0, property, MPV_FORMAT_STRING, &text));
}

void MpvCore::set(const char *property, bool value)
{
    int flag = value ? 1 : 0;
    count(mpv_set_property_async(m_handle, 0, property, MPV_FORMAT_FLAG, &flag));
}

void MpvCore::set(const char *property, double value)
{
    count(mpv_set_property_async(m_handle, 0, property, MPV_FORMAT_DOUBLE, &value));
}

void MpvCore::command(const std::vector<std::string> &words, std::uint64_t tag)
{
    std::vector<const char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string &word : words)
        arguments.push_back(word.c_str());
    arguments.push_back(nullptr);
    count(mpv_command_async(m_handle, tag, arguments.data()));
}

void MpvCore::selectTrack(TrackKind kind, int number)
{
    const char *property = kind == TrackKind::Video ? "vid" : kind == TrackKind::Audio ? "aid" : "sid";
    set(property, number > 0 ? std::to_string(number) : "no");
}

void MpvCore::showTeletext(bool visible, int trackNumber, int page)
{
    // Choosing the track anew makes its decoder take over the page.
    set("teletext-page", std::to_string(page));
    set("secondary-sid", "no");
    if (visible && trackNumber > 0)
        set("secondary-sid", std::to_string(trackNumber));
}

void MpvCore::setDisplayMode(int mode)
{
    set("keepaspect", mode != KVR_DISPLAY_STRETCH);
    set("panscan", mode == KVR_DISPLAY_CROP ? 1.0 : 0.0);
}

void MpvCore::setStretch(double horizontal, double vertical)
{
    const bool isStretched = horizontal > 0;
    set("video-scale-x", isStretched ? horizontal : 1.0);
    set("video-scale-y", isStretched ? vertical : 1.0);
    set("keepaspect", isStretched);
}

void MpvCore::addScheme(const char *scheme, void *source, mpv_stream_cb_open_ro_fn open)
{
    const int result = mpv_stream_cb_add_ro(m_handle, scheme, source, open);
    if (result < 0)
        throw std::runtime_error("libmpv takes no " + std::string(scheme) + ": " + mpv_error_string(result));
}

void MpvCore::load(const std::string &address, const Options &options, std::uint64_t tag)
{
    std::vector<char *> keys;
    std::vector<mpv_node> values;
    for (const auto &[key, value] : options) {
        keys.push_back(const_cast<char *>(key.c_str()));
        values.push_back(textNode(value));
    }
    mpv_node_list optionList = {static_cast<int>(keys.size()), values.data(), keys.data()};
    mpv_node optionNode = {};
    optionNode.format = MPV_FORMAT_NODE_MAP;
    optionNode.u.list = &optionList;

    const std::string name = "loadfile";
    const std::string mode = "replace";
    mpv_node words[] = {textNode(name), textNode(address), textNode(mode), optionNode};
    mpv_node_list wordList = {4, words, nullptr};
    mpv_node command = {};
    command.format = MPV_FORMAT_NODE_ARRAY;
    command.u.list = &wordList;
    count(mpv_command_node_async(m_handle, tag, &command));
}

void MpvCore::observe(const char *property, mpv_format format, std::uint64_t tag)
{
    mpv_observe_property(m_handle, tag, property, format);
}

void MpvCore::ask(const char *property, mpv_format format, std::uint64_t tag)
{
    count(mpv_get_property_async(m_handle, tag, property, format));
}

void MpvCore::unobserve(std::uint64_t tag)
{
    mpv_unobserve_property(m_handle, tag);
}

const mpv_event *MpvCore::nextEvent(double timeout)
{
    if (const std::uint64_t hook = std::exchange(m_hook, 0))
        mpv_hook_continue(m_handle, hook);
    const mpv_event *event = mpv_wait_event(m_handle, timeout);
    if (event->event_id == MPV_EVENT_HOOK)
        m_hook = static_cast<mpv_event_hook *>(event->data)->id;
    if (event->event_id == MPV_EVENT_SET_PROPERTY_REPLY || event->event_id == MPV_EVENT_GET_PROPERTY_REPLY
        || event->event_id == MPV_EVENT_COMMAND_REPLY)
        --m_repliesDue;
    return event;
}

double MpvCore::number(const char *property)
{
    double value = 0;
    mpv_get_property(m_handle, property, MPV_FORMAT_DOUBLE, &value);
    return value;
}

void MpvCore::count(int result)
{
    if (result >= 0)
        ++m_repliesDue;
}

void MpvCore::wakeUp()
{
    mpv_wakeup(m_handle);
}
