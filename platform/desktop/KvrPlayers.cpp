// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of players and playback.

#include "PlayerCall.h"

using namespace Desk;

namespace {

// The lines of a text; blank ones and carriage returns do not count.
std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        if (end > begin)
            lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

PlayRequest request(PlayRequest::Kind kind, const char *address, int videoPid, int audioPid, int subtitlePid)
{
    PlayRequest result;
    result.kind = kind;
    result.address = address;
    if (kind == PlayRequest::Stream || kind == PlayRequest::Http)
        result.bufferTimes = box().bufferTimes.times();
    result.videoPid = videoPid;
    result.audioPid = audioPid;
    result.subtitlePid = subtitlePid;
    return result;
}

double seconds(long long milliseconds)
{
    return static_cast<double>(milliseconds) / 1000;
}

} // namespace

KVR_ID KVR_CreatePlayer(void)
{
    return apiCall(__func__, [] { return box().players.create(); });
}

int KVR_ClosePlayer(KVR_ID id)
{
    return apiCall(__func__, [=] { return box().players.close(id); });
}

int KVR_GetPlayersCount(void)
{
    return apiCall(__func__, [] { return box().players.count(); });
}

int KVR_GetPlayerState(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return static_cast<int>(player.status().state); });
}

int KVR_PlayFile(KVR_ID id, const char *path, long long position, long long, double, const char *subtitles,
                 int videoPid, int audioPid, int subtitlePid)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!path || !subtitles || *path != '/' || position < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        PlayRequest file = request(PlayRequest::File, path, videoPid, audioPid, subtitlePid);
        file.start = seconds(position);
        file.subtitles = subtitles;
        if (box().records.isRunning(file.address))
            file.isRecorded = [name = file.address] { return box().records.isRunning(name); };
        return player.play(file);
    });
}

int KVR_PlayStream(KVR_ID id, const char *url, int videoPid, int audioPid, int subtitlePid)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!url || !*url)
            return KVR_ERR_INVALID_ARGUMENT;
        return player.play(request(PlayRequest::Stream, url, videoPid, audioPid, subtitlePid));
    });
}

int KVR_PlayHttp(KVR_ID id, const char *url, const char *options, int videoPid, int audioPid, int subtitlePid)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!url || !*url || !options)
            return KVR_ERR_INVALID_ARGUMENT;
        PlayRequest http = request(PlayRequest::Http, url, videoPid, audioPid, subtitlePid);
        http.headers = linesOf(options);
        return player.play(http);
    });
}

int KVR_PlayRtsp(KVR_ID id, const char *url, long long position, int mode, int videoPid, int audioPid, int subtitlePid)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!url || !*url || position < 0 || mode < 0 || mode > 1)
            return KVR_ERR_INVALID_ARGUMENT;
        PlayRequest rtsp = request(PlayRequest::Rtsp, url, videoPid, audioPid, subtitlePid);
        rtsp.start = seconds(position);
        rtsp.rtspOverTcp = mode == 1;
        return player.play(rtsp);
    });
}

int KVR_PlayMagnet(KVR_ID id, const char *magnet, const char *name, long long, long long position, long long, double,
                   int videoPid, int audioPid, int subtitlePid)
{
    return withPlayer(__func__, id, [=](Player &player) -> int {
        if (!magnet || !*magnet || !name || position < 0)
            return KVR_ERR_INVALID_ARGUMENT;
        PlayRequest torrent = request(PlayRequest::Magnet, magnet, videoPid, audioPid, subtitlePid);
        torrent.start = seconds(position);
        torrent.torrentFile = name;
        return player.play(torrent);
    });
}

int KVR_Pause(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.pause(); });
}

int KVR_Stop(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.stop(); });
}

int KVR_Continue(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.resume(); });
}

int KVR_NextFrame(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.nextFrame(); });
}

int KVR_SetPosition(KVR_ID id, long long position)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setPosition(position); });
}

long long KVR_GetPosition(KVR_ID id)
{
    return withPlayer(
        __func__, id, [](Player &player) { return player.status().position; },
        static_cast<long long>(KVR_ERR_INVALID_ID));
}

long long KVR_GetDuration(KVR_ID id)
{
    return withPlayer(
        __func__, id, [](Player &player) { return player.status().duration; },
        static_cast<long long>(KVR_ERR_INVALID_ID));
}

int KVR_SetSpeed(KVR_ID id, int speed)
{
    return withPlayer(__func__, id, [=](Player &player) { return player.setSpeed(speed); });
}

int KVR_GetSpeed(KVR_ID id)
{
    return withPlayer(__func__, id, [](Player &player) { return player.status().speed; });
}
