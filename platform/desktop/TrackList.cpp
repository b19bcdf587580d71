// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TrackList.h"

#include <algorithm>
#include <cstring>
#include <iterator>
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

std::string codingOf(const mpv_node &node, TrackKind kind, const std::string &codec)
{
    std::string result = codec.empty() ? "unknown" : codec;
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
    track.stream = number(node, "ff-index");
    // What a separate file numbers is not this stream's.
    track.pid = track.external ? 0 : number(node, "src-id");
    track.language = text(node, "lang");
    track.coding = codingOf(node, track.kind, codec);
    track.entry.supported = decoder ? 1 : 0;
    track.entry.encoding =
        descriptor && (descriptor->props & AV_CODEC_PROP_BITMAP_SUB) ? KVR_SUBTITLE_BITMAP : KVR_SUBTITLE_TEXT;
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
    for (int i = 0; i < list.u.list->num; ++i) {
        m_tracks.push_back(trackOf(list.u.list->values[i]));
        m_tracks.back().place = i;
    }
    describe();
}

TrackList TrackList::named(const std::vector<StreamName> &names) const
{
    int best = 0;
    for (const StreamName &name : names)
        best = std::max(best, name.bitrate);
    TrackList result;
    for (Track track : m_tracks) {
        if (!track.external && track.stream >= 0 && track.stream < static_cast<int>(names.size())) {
            const StreamName &name = names[static_cast<std::size_t>(track.stream)];
            if (name.bitrate > 0 && name.bitrate < best && !track.selected)
                continue;
            if (track.pid <= 0)
                track.pid = name.pid;
            if (track.language.empty())
                track.language = name.language;
        }
        result.m_tracks.push_back(track);
    }
    result.describe();
    return result;
}

// Fills in the entries' numbers and descriptions.
void TrackList::describe()
{
    std::map<int, int> uses;
    for (const Track &track : m_tracks)
        ++uses[track.pid];
    for (Track &track : m_tracks) {
        const bool hasOwn = track.pid > 0 && uses[track.pid] == 1;
        track.entry.id = hasOwn ? track.pid : firstMadeUpPid + track.place;
        const std::string text = track.language.empty() ? track.coding : track.language + ", " + track.coding;
        std::fill(std::begin(track.entry.descr), std::end(track.entry.descr), '\0');
        text.copy(track.entry.descr, sizeof track.entry.descr - 1);
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
