// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "CoreEvents.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace Desk;

namespace {

double number(const mpv_event_property &property)
{
    return property.format == MPV_FORMAT_DOUBLE ? *static_cast<double *>(property.data) : 0;
}

int wholeNumber(const mpv_event_property &property)
{
    return static_cast<int>(number(property));
}

std::string text(const mpv_event_property &property)
{
    return property.format == MPV_FORMAT_STRING ? *static_cast<char **>(property.data) : "";
}

bool flag(const mpv_event_property &property)
{
    return property.format == MPV_FORMAT_FLAG && *static_cast<int *>(property.data);
}

void reportPosition(CoreListener &listener, const mpv_event_property &property)
{
    if (property.format != MPV_FORMAT_NONE)
        listener.positionChanged(std::max(0LL, std::llround(number(property) * 1000)));
}

void reportTracks(CoreListener &listener, const mpv_event_property &property)
{
    if (property.format == MPV_FORMAT_NODE)
        listener.tracksChanged(std::make_shared<const TrackList>(*static_cast<mpv_node *>(property.data)));
}

constexpr char byteProperty[] = "stream-pos";

using Property = mpv_event_property;

const struct
{
    const char *name;
    mpv_format format;
    void (*report)(CoreListener &listener, const Property &property);
} properties[] = {
    {"time-pos", MPV_FORMAT_DOUBLE, reportPosition},
    {"duration", MPV_FORMAT_DOUBLE, [](CoreListener &l, const Property &p) { l.durationChanged(number(p)); }},
    {"container-fps", MPV_FORMAT_DOUBLE, [](CoreListener &l, const Property &p) { l.frameRateChanged(number(p)); }},
    {"dwidth", MPV_FORMAT_DOUBLE, [](CoreListener &l, const Property &p) { l.pictureWidthChanged(wholeNumber(p)); }},
    {"dheight", MPV_FORMAT_DOUBLE, [](CoreListener &l, const Property &p) { l.pictureHeightChanged(wholeNumber(p)); }},
    {"seekable", MPV_FORMAT_FLAG, [](CoreListener &l, const Property &p) { l.seekableChanged(flag(p)); }},
    {"partially-seekable", MPV_FORMAT_FLAG,
     [](CoreListener &l, const Property &p) { l.partlySeekableChanged(flag(p)); }},
    {"paused-for-cache", MPV_FORMAT_FLAG, [](CoreListener &l, const Property &p) { l.bufferingChanged(flag(p)); }},
    {"core-idle", MPV_FORMAT_FLAG, [](CoreListener &l, const Property &p) { l.runningChanged(!flag(p)); }},
    {"file-format", MPV_FORMAT_STRING, [](CoreListener &l, const Property &p) { l.formatChanged(text(p)); }},
    {"demuxer-cache-duration", MPV_FORMAT_DOUBLE,
     [](CoreListener &l, const Property &p) { l.bufferedChanged(number(p)); }},
    {"file-size", MPV_FORMAT_DOUBLE,
     [](CoreListener &l, const Property &p) { l.sizeChanged(std::llround(number(p))); }},
    {byteProperty, MPV_FORMAT_DOUBLE,
     [](CoreListener &l, const Property &p) { l.byteChanged(std::llround(number(p))); }},
    {"demuxer-via-network", MPV_FORMAT_FLAG, [](CoreListener &l, const Property &p) { l.viaNetworkChanged(flag(p)); }},
    {"track-list", MPV_FORMAT_NODE, reportTracks},
};

void reportReply(const mpv_event &event, CoreListener &listener)
{
    const mpv_node &result = static_cast<mpv_event_command *>(event.data)->result;
    if (event.error < 0)
        listener.entryRefused(mpv_error_string(event.error));
    else if (result.format == MPV_FORMAT_NODE_MAP && result.u.list->num > 0)
        listener.entryAdded(result.u.list->values[0].u.int64);
}

void reportSeekReply(unsigned seek, int error, CoreListener &listener)
{
    if (error < 0)
        listener.seekRefused(seek);
    else
        listener.seekTaken(seek);
}

void reportEnd(const mpv_event_end_file &end, CoreListener &listener)
{
    if (end.reason == MPV_END_FILE_REASON_REDIRECT)
        listener.entryReplaced(end.playlist_entry_id, end.playlist_insert_id, end.playlist_insert_num_entries);
    else if (end.reason == MPV_END_FILE_REASON_ERROR)
        listener.entryFailed(end.playlist_entry_id, mpv_error_string(end.error));
    else
        listener.entryEnded(end.playlist_entry_id, end.reason == MPV_END_FILE_REASON_EOF);
}

void reportComplaint(const mpv_event_log_message &message, CoreListener &listener)
{
    // The library that meets the network tells one core of what happens to all.
    if (std::strncmp(message.prefix, "ffmpeg", 6) == 0)
        return;
    std::string text = message.text;
    text.erase(text.find_last_not_of('\n') + 1);
    listener.complained(text);
}

void reportProperty(const mpv_event_property &property, CoreListener &listener)
{
    for (const auto &row : properties) {
        if (std::strcmp(property.name, row.name) == 0)
            row.report(listener, property);
    }
}

} // namespace

void CoreEvents::observe(MpvCore &core, std::uint64_t tag)
{
    core.unobserve(tag);
    for (const auto &row : properties) {
        if (row.report != reportTracks)
            core.observe(row.name, row.format, tag);
    }
}

void CoreEvents::observeTracks(MpvCore &core, std::uint64_t tag)
{
    for (const auto &row : properties) {
        if (row.report == reportTracks)
            core.observe(row.name, row.format, tag);
    }
}

void CoreEvents::askForByte(MpvCore &core, std::uint64_t tag)
{
    core.ask(byteProperty, MPV_FORMAT_DOUBLE, tag);
}

void CoreEvents::report(const mpv_event &event, MpvCore &core, std::uint64_t tag, CoreListener &listener)
{
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        if (event.reply_userdata == tag)
            reportReply(event, listener);
        else if (event.reply_userdata >> seekShift != 0 && static_cast<std::uint32_t>(event.reply_userdata) == tag)
            reportSeekReply(static_cast<unsigned>(event.reply_userdata >> seekShift), event.error, listener);
        break;
    case MPV_EVENT_LOG_MESSAGE:
        reportComplaint(*static_cast<mpv_event_log_message *>(event.data), listener);
        break;
    case MPV_EVENT_START_FILE:
        listener.entryStarted(static_cast<mpv_event_start_file *>(event.data)->playlist_entry_id);
        break;
    case MPV_EVENT_END_FILE:
        reportEnd(*static_cast<mpv_event_end_file *>(event.data), listener);
        break;
    case MPV_EVENT_HOOK:
        listener.streamPrepared(core.duration());
        break;
    case MPV_EVENT_FILE_LOADED:
        listener.streamOpened();
        break;
    case MPV_EVENT_SEEK:
        listener.seekBegun();
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        listener.playbackRestarted();
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
    case MPV_EVENT_GET_PROPERTY_REPLY:
        if (event.reply_userdata == tag)
            reportProperty(*static_cast<mpv_event_property *>(event.data), listener);
        break;
    default:
        break;
    }
}
