// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HlsLook.h"
#include "HlsPlaylist.h"
#include "LooseThreads.h"
#include "StreamError.h"

#include <array>
#include <memory>
#include <optional>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

using namespace Desk;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t largestPlaylist = 4 << 20; // bytes

// What a playlist of the network, or of the box, may lead to: what FFmpeg's demuxer of playlists opens.
constexpr char fromNetwork[] = "http,https,httpproxy,tls,tcp";
constexpr char fromBox[] = "file,http,https,httpproxy,tls,tcp";

// How one look goes about its requests.
class Requests
{
public:
    Requests(bool isLocal, std::string headers, std::shared_ptr<std::atomic<bool>> cancelled)
        : m_protocols(isLocal ? fromBox : fromNetwork)
        , m_headers(std::move(headers))
        , m_cancelled(std::move(cancelled))
    {
    }

    AVIOInterruptCB interrupt() { return {isOver, this}; }

    // The caller frees it.
    AVDictionary *options() const
    {
        AVDictionary *options = nullptr;
        av_dict_set(&options, "protocol_whitelist", m_protocols, 0);
        av_dict_set(&options, "user_agent", "libmpv", 0); // the player core's
        av_dict_set(&options, "headers", m_headers.c_str(), 0);
        return options;
    }

    /// 0, or FFmpeg's error.
    int open(AVIOContext **io, const std::string &address)
    {
        AVDictionary *requestOptions = options();
        const AVIOInterruptCB callback = interrupt();
        const int result = avio_open2(io, address.c_str(), AVIO_FLAG_READ, &callback, &requestOptions);
        av_dict_free(&requestOptions);
        return result;
    }

    /// Nothing, with FFmpeg's error, when it cannot be read.
    std::optional<HlsPlaylist> playlist(const std::string &address, int *error);

    /// The streams of a file, as far as its beginning tells of them.
    std::vector<StreamName> streams(const std::string &address);

private:
    static int isOver(void *self)
    {
        const auto &requests = *static_cast<Requests *>(self);
        return *requests.m_cancelled || Clock::now() > requests.m_deadline ? 1 : 0;
    }

    const char *const m_protocols;
    const std::string m_headers;
    const std::shared_ptr<std::atomic<bool>> m_cancelled;
    const Clock::time_point m_deadline = Clock::now() + HlsLook::longest;
};

std::optional<HlsPlaylist> Requests::playlist(const std::string &address, int *error)
{
    AVIOContext *io = nullptr;
    *error = open(&io, address);
    if (*error < 0)
        return std::nullopt;
    std::string text;
    std::array<unsigned char, 4096> block = {};
    int count = 0;
    while (text.size() < largestPlaylist && (count = avio_read(io, block.data(), block.size())) > 0)
        text.append(block.begin(), block.begin() + count);
    std::uint8_t *location = nullptr; // after redirections
    av_opt_get(io, "location", AV_OPT_SEARCH_CHILDREN, &location);
    const HlsPlaylist playlist(text, location ? reinterpret_cast<char *>(location) : address);
    av_free(location);
    avio_closep(&io);
    *error = count < 0 && count != AVERROR_EOF ? count : 0;
    return *error < 0 ? std::nullopt : std::make_optional(playlist);
}

std::vector<StreamName> Requests::streams(const std::string &address)
{
    AVFormatContext *source = avformat_alloc_context();
    if (!source)
        return {};
    source->interrupt_callback = interrupt();
    AVDictionary *requestOptions = options();
    const int result = avformat_open_input(&source, address.c_str(), nullptr, &requestOptions);
    av_dict_free(&requestOptions);
    std::vector<StreamName> names;
    for (unsigned i = 0; result >= 0 && i < source->nb_streams; ++i) {
        const AVDictionaryEntry *language = av_dict_get(source->streams[i]->metadata, "language", nullptr, 0);
        names.push_back({source->streams[i]->id, language ? language->value : ""});
    }
    avformat_close_input(&source);
    return names;
}

// Adds those of a playlist of segments. False when they cannot be told.
bool addStreamNames(Requests &requests, const HlsPlaylist &list, int bitrate, std::vector<StreamName> *names)
{
    if (list.segments.empty())
        return true;
    if (list.isEncrypted)
        return false;
    // Of a live stream, the first ones are about to go.
    const std::string &segment = list.hasEnded ? list.segments.front() : list.segments.back();
    std::vector<StreamName> found = requests.streams(list.header.empty() ? segment : list.header);
    for (StreamName &name : found) {
        name.bitrate = bitrate;
        names->push_back(name);
    }
    return !found.empty();
}

std::vector<StreamName> streamNames(Requests &requests, const std::string &address)
{
    int error = 0;
    std::vector<StreamName> names;
    const std::optional<HlsPlaylist> first = requests.playlist(address, &error);
    if (first && first->playlists.empty())
        addStreamNames(requests, *first, 0, &names);
    for (std::size_t i = 0; first && i < first->playlists.size(); ++i) {
        const std::optional<HlsPlaylist> list = requests.playlist(first->playlists[i], &error);
        if (!list || !addStreamNames(requests, *list, first->bitrates[i], &names))
            break; // FFmpeg's numbers of the further ones are not known
    }
    return names;
}

Problem problemOfSegments(Requests &requests, const HlsPlaylist &list)
{
    if (!list.segments.empty()) {
        AVIOContext *io = nullptr;
        const int error = requests.open(&io, list.segments.back());
        avio_closep(&io);
        if (error < 0)
            return streamErrorText(error);
    }
    return list.hasEnded ? std::nullopt : Problem("its playlist promises more");
}

Problem problemAtEnd(Requests &requests, const std::string &address)
{
    int error = 0;
    const std::optional<HlsPlaylist> first = requests.playlist(address, &error);
    if (!first)
        return streamErrorText(error);
    if (first->playlists.empty())
        return problemOfSegments(requests, *first);
    // One of them was played, and they end together.
    Problem problem;
    for (const std::string &playlist : first->playlists) {
        const std::optional<HlsPlaylist> list = requests.playlist(playlist, &error);
        const Problem found = list ? problemOfSegments(requests, *list) : streamErrorText(error);
        if (!found)
            return std::nullopt;
        if (!problem)
            problem = found;
    }
    return problem;
}

std::string joined(const std::vector<std::string> &headers)
{
    std::string text;
    for (const std::string &header : headers)
        text += header + "\r\n";
    return text;
}

} // namespace

HlsLook::HlsLook(std::string address, const std::vector<std::string> &headers)
    : m_address(std::move(address))
    , m_headers(joined(headers))
{
}

template <typename Result, typename Task>
std::future<Result> HlsLook::begin(Task task) const
{
    const auto answer = std::make_shared<std::promise<Result>>();
    std::future<Result> future = answer->get_future();
    LooseThreads::run([answer, task, address = m_address, headers = m_headers, cancelled = m_cancelled] {
        Requests requests(address.find("://") == std::string::npos, headers, cancelled);
        answer->set_value(task(requests, address));
    });
    return future;
}

std::future<std::vector<StreamName>> HlsLook::streamNames() const
{
    return begin<std::vector<StreamName>>(::streamNames);
}

std::future<Problem> HlsLook::problemAtEnd() const
{
    return begin<Problem>(::problemAtEnd);
}
