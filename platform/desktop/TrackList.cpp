// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TrackList.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
}

using namespace Desk;

namespace {

// Tracks to which the stream gives no PID of their own are numbered from here: above all PIDs of a transport stream.
constexpr int firstMadeUpPid = 0x2000;

const mpv_node *member(const mpv_node &node, const char *key)
{
    if (node.format != MPV_FORMAT_NODE_MAP)
        return nullptr;
    const mpv_node_list &list = *node.u.list;
    for (int i = 0; i < list.num; ++i) {
        if (std::strcmp(list.keys[i], key) == 0)
            return &list.values[i];
    }
    return nullptr;
}

std::string text(const mpv_node &node, const char *key)
{
    const mpv_node *value = member(node, key);
    return value && value->format == MPV_FORMAT_STRING ? value->u.string : "";
}

int number(const mpv_node &node, const char *key)
{
    const mpv_node *value = member(node, key);
    return value && value->format == MPV_FORMAT_INT64 ? static_cast<int>(value->u.int64) : 0;
}

bool flag(const mpv_node &node, const char *key)
{
    const mpv_node *value = member(node, key);
    return value && value->format == MPV_FORMAT_FLAG && value->u.flag;
}

TrackKind kindOf(const std::string &type, const std::string &codec)
{
    if (type == "video")
        return TrackKind::Video;
    if (type == "audio")
        return TrackKind::Audio;
    return codec == "dvb_teletext" ? TrackKind::Teletext : TrackKind::Subtitle;
}

std::string description(const mpv_node &node, TrackKind kind, const std::string &codec)
{
    std::string result = text(node, "lang");
    if (!result.empty())
        result += ", ";
    result += codec.empty() ? "unknown" : codec;
    if (kind == TrackKind::Video && number(node, "demux-w") > 0)
        result += ", " + std::to_string(number(node, "demux-w")) + "x" + std::to_string(number(node, "demux-h"));
    if (kind == TrackKind::Audio && number(node, "demux-channel-count") > 0)
        result += ", " + std::to_string(number(node, "demux-channel-count")) + " ch";
    return result;
}

Track trackOf(const mpv_node &node)
{
    const std::string codec = text(node, "codec");
    const AVCodecDescriptor *descriptor = avcodec_descriptor_get_by_name(codec.c_str());
    // Codecs that libavcodec does not name by descriptor go by their decoder's name.
    const AVCodec *decoder =
        descriptor ? avcodec_find_decoder(descriptor->id) : avcodec_find_decoder_by_name(codec.c_str());

    Track track;
    track.kind = kindOf(text(node, "type"), codec);
    track.number = number(node, "id");
    track.selected = flag(node, "selected");
    track.external = flag(node, "external");
    track.entry.id = number(node, "src-id");
    track.entry.supported = decoder ? 1 : 0;
    track.entry.encoding =
        descriptor && (descriptor->props & AV_CODEC_PROP_BITMAP_SUB) ? KVR_SUBTITLE_BITMAP : KVR_SUBTITLE_TEXT;
    description(node, track.kind, codec).copy(track.entry.descr, sizeof track.entry.descr - 1);
    return track;
}

bool sameEntry(const KVR_Track &a, const KVR_Track &b)
{
    return a.id == b.id && a.supported == b.supported && std::strcmp(a.descr, b.descr) == 0;
}

} // namespace

TrackList::TrackList(const mpv_node &list)
{
    if (list.format != MPV_FORMAT_NODE_ARRAY)
        return;
    std::map<int, int> uses;
    for (int i = 0; i < list.u.list->num; ++i) {
        const mpv_node &node = list.u.list->values[i];
        m_tracks.push_back(trackOf(node));
        // What a separate file numbers is not this stream's.
        if (m_tracks.back().external)
            m_tracks.back().entry.id = 0;
        ++uses[m_tracks.back().entry.id];
    }
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        KVR_Track &entry = m_tracks[i].entry;
        if (entry.id <= 0 || uses[entry.id] > 1)
            entry.id = firstMadeUpPid + static_cast<int>(i);
    }
}

std::vector<KVR_Track> TrackList::entries(TrackKind kind) const
{
    std::vector<KVR_Track> result;
    for (const Track &track : m_tracks) {
        if (track.kind == kind)
            result.push_back(track.entry);
    }
    return result;
}

template <typename Test>
const Track *TrackList::firstThat(Test test) const
{
    const auto track = std::find_if(m_tracks.begin(), m_tracks.end(), test);
    return track == m_tracks.end() ? nullptr : &*track;
}

const Track *TrackList::find(TrackKind kind, int pid) const
{
    return firstThat([=](const Track &track) { return track.kind == kind && track.entry.id == pid; });
}

const Track *TrackList::selected(TrackKind kind) const
{
    return firstThat([=](const Track &track) { return track.kind == kind && track.selected; });
}

const Track *TrackList::first(TrackKind kind) const
{
    return firstThat([=](const Track &track) { return track.kind == kind; });
}

const Track *TrackList::external(TrackKind kind) const
{
    return firstThat([=](const Track &track) { return track.kind == kind && track.external; });
}

bool TrackList::sameTracks(const TrackList &other, TrackKind kind) const
{
    const std::vector<KVR_Track> mine = entries(kind);
    const std::vector<KVR_Track> others = other.entries(kind);
    return std::equal(mine.begin(), mine.end(), others.begin(), others.end(), sameEntry);
}
