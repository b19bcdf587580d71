// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/deprecated/stb_media.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/PlatformRecords.h"
#include "jsapi/PlayerCallbacks.h"
#include "jsapi/StoragePath.h"
#include "jsapi/deprecated/JsonText.h"
#include "platform/stbapi.h"

#include <utility>

namespace {

// The same answer in two spellings, each of which old portals compare with.
const char invalidIdOfList[] = "{\"errordescr\":\"Invalid Id\"}";
const char invalidIdOfRecord[] = "{\"errordescr\" : \"Invalid Id\"}";

QString trackEntry(const PlatformRecords::Track &track)
{
    return JsonText::filled("{\"id\":\"%1\",\"descr\":\"%2\",\"supported\":\"%3\"},\n", track.id, track.description,
                            track.supported);
}

QString subtitleTrackEntry(const PlatformRecords::Track &track)
{
    return JsonText::filled("{\"id\":\"%1\",\"descr\":\"%2\",\"supported\":\"%3\",\"encoding\":\"%4\"},\n", track.id,
                            track.description, track.supported, track.encoding);
}

QString answer(const PlatformRecords::TrackList &list, QString (*toEntry)(const PlatformRecords::Track &))
{
    if (!list.known)
        return QLatin1String(invalidIdOfList);
    QString entries;
    for (const PlatformRecords::Track &track : list.tracks)
        entries += toEntry(track);
    return JsonText::list(entries);
}

} // namespace

namespace KavroJSDeprecated {

stb_media::stb_media()
    : lastEventId(0)
    , lastEventType(0)
{
}

stb_media::~stb_media()
{
    for (int id : std::as_const(players))
        KVR_ClosePlayer(id);
}

int stb_media::CreatePlayer()
{
    trace("stb_media.CreatePlayer()");
    const int id = KVR_CreatePlayer();
    if (id < 0)
        return id;
    KavroJS::registerPlayerCallbacks(id);
    players.insert(id);
    return id;
}

int stb_media::ClosePlayer(int id)
{
    trace("stb_media.ClosePlayer(%1)", id);
    players.remove(id);
    return KVR_ClosePlayer(id);
}

int stb_media::GetPlayersCount()
{
    trace("stb_media.GetPlayersCount()");
    return KVR_GetPlayersCount();
}

int stb_media::PlayFile(int id, QString path, long long pos, long long duration, double fps, QString subt)
{
    trace("stb_media.PlayFile(%1, %2, %3, %4, %5, %6)", id, path, pos, duration, fps, subt);
    return KVR_PlayFile(id, storagePath(path).toUtf8().constData(), pos, duration, fps, subt.toUtf8().constData(), -1,
                        -1, -1);
}

int stb_media::PlayStream(int id, QString path)
{
    trace("stb_media.PlayStream(%1, %2)", id, path);
    return KVR_PlayStream(id, path.toUtf8().constData(), -1, -1, -1);
}

int stb_media::PlayHttp(int id, QString path, QString opt)
{
    trace("stb_media.PlayHttp(%1, %2, %3)", id, path, opt);
    return KVR_PlayHttp(id, path.toUtf8().constData(), opt.toUtf8().constData(), -1, -1, -1);
}

int stb_media::PlayRtsp(int id, QString path, int mode)
{
    trace("stb_media.PlayRtsp(%1, %2, %3)", id, path, mode);
    return KVR_PlayRtsp(id, path.toUtf8().constData(), 0, mode, -1, -1, -1);
}

int stb_media::PlayMagnet(int id, QString magnet, QString name, long long size, long long pos, long long duration,
                          double fps)
{
    trace("stb_media.PlayMagnet(%1, %2, %3, %4, %5, %6, %7)", id, magnet, name, size, pos, duration, fps);
    return KVR_PlayMagnet(id, magnet.toUtf8().constData(), name.toUtf8().constData(), size, pos, duration, fps, -1, -1,
                          -1);
}

int stb_media::Pause(int id)
{
    trace("stb_media.Pause(%1)", id);
    return KVR_Pause(id);
}

int stb_media::Stop(int id)
{
    trace("stb_media.Stop(%1)", id);
    return KVR_Stop(id);
}

int stb_media::Continue(int id)
{
    trace("stb_media.Continue(%1)", id);
    return KVR_Continue(id);
}

int stb_media::NextFrame(int id)
{
    trace("stb_media.NextFrame(%1)", id);
    return KVR_NextFrame(id);
}

int stb_media::SetPosition(int id, long long pos)
{
    trace("stb_media.SetPosition(%1, %2)", id, pos);
    return KVR_SetPosition(id, pos);
}

long long stb_media::GetPosition(int id)
{
    trace("stb_media.GetPosition(%1)", id);
    return KVR_GetPosition(id);
}

long long stb_media::GetDuration(int id)
{
    trace("stb_media.GetDuration(%1)", id);
    return KVR_GetDuration(id);
}

int stb_media::SetSpeed(int id, int speed)
{
    trace("stb_media.SetSpeed(%1, %2)", id, speed);
    return KVR_SetSpeed(id, speed);
}

int stb_media::GetSpeed(int id)
{
    trace("stb_media.GetSpeed(%1)", id);
    return KVR_GetSpeed(id);
}

int stb_media::GetVideoPid(int id)
{
    trace("stb_media.GetVideoPid(%1)", id);
    return KVR_GetVideoPid(id);
}

QString stb_media::GetVideoTrackList(int id)
{
    trace("stb_media.GetVideoTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetVideoTrackList, id), trackEntry);
}

int stb_media::SetAudioPid(int id, int pid)
{
    trace("stb_media.SetAudioPid(%1, %2)", id, pid);
    return KVR_SetAudioPid(id, pid);
}

int stb_media::GetAudioPid(int id)
{
    trace("stb_media.GetAudioPid(%1)", id);
    return KVR_GetAudioPid(id);
}

QString stb_media::GetAudioTrackList(int id)
{
    trace("stb_media.GetAudioTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetAudioTrackList, id), trackEntry);
}

int stb_media::SetSubtitlePid(int id, int pid)
{
    trace("stb_media.SetSubtitlePid(%1, %2)", id, pid);
    return KVR_SetSubtitlePid(id, pid);
}

int stb_media::GetSubtitlePid(int id)
{
    trace("stb_media.GetSubtitlePid(%1)", id);
    return KVR_GetSubtitlePid(id);
}

QString stb_media::GetSubtitleTrackList(int id)
{
    trace("stb_media.GetSubtitleTrackList(%1)", id);
    return answer(PlatformRecords::trackList(KVR_GetSubtitleTrackList, id), subtitleTrackEntry);
}

// This template and that of SetZoom have one place for two values. The toolkit fills in the first and warns of the
// second, whether or not tracing is on.

int stb_media::SetSubtitlesVisible(int id, int visibility)
{
    JsApiTracer::TRACE(QString::fromLatin1("stb_media.SetSubtitlesVisible(%1)").arg(id).arg(visibility));
    return KVR_SetSubtitlesVisible(id, visibility);
}

int stb_media::IsSubtitlesVisible(int playerInstance)
{
    trace("stb_media.IsSubtitlesVisible(%1)", playerInstance);
    return KVR_IsSubtitlesVisible(playerInstance);
}

int stb_media::SetVolume(int id, int vol)
{
    trace("stb_media.SetVolume(%1, %2)", id, vol);
    return KVR_SetVolume(id, vol);
}

int stb_media::GetVolume(int id)
{
    trace("stb_media.GetVolume(%1)", id);
    return KVR_GetVolume(id);
}

int stb_media::IsMute(int id)
{
    trace("stb_media.IsMute(%1)", id);
    return KVR_IsMute(id);
}

int stb_media::SetMute(int id, int mute)
{
    trace("stb_media.SetMute(%1, %2)", id, mute);
    return KVR_SetMute(id, mute);
}

double stb_media::GetZoom(int id)
{
    trace("stb_media.GetZoom(%1)", id);
    return KVR_GetZoom(id);
}

int stb_media::SetZoom(int id, double zoom)
{
    JsApiTracer::TRACE(QString::fromLatin1("stb_media.SetZoom(%1)").arg(id).arg(zoom));
    return KVR_SetZoom(id, zoom);
}

double stb_media::GetFps(int id)
{
    trace("stb_media.GetFps(%1)", id);
    return KVR_GetFps(id);
}

int stb_media::SetPlayerViewPort(int id, int x, int y, int w, int h)
{
    trace("stb_media.SetPlayerViewPort(%1, %2, %3, %4, %5)", id, x, y, w, h);
    const KVR_Rect window = {x, y, w, h};
    return KVR_SetPlayerViewPort(id, &window);
}

QString stb_media::GetPlayerViewPort(int id)
{
    trace("stb_media.GetPlayerViewPort(%1)", id);
    KVR_Rect window;
    if (!PlatformRecords::playerWindow(id, window))
        return QLatin1String(invalidIdOfRecord);
    return JsonText::rectangle(window);
}

int stb_media::SetPlayerAlphaLevel(int id, int alpha)
{
    trace("stb_media.SetPlayerAlphaLevel(%1, %2)", id, alpha);
    return KVR_SetPlayerAlphaLevel(id, alpha);
}

int stb_media::GetPlayerAlphaLevel(int id)
{
    trace("stb_media.GetPlayerAlphaLevel(%1)", id);
    return KVR_GetPlayerAlphaLevel(id);
}

int stb_media::SetPlayerVisible(int id, int visibility)
{
    trace("stb_media.SetPlayerVisible(%1, %2)", id, visibility);
    return KVR_SetPlayerVisible(id, visibility);
}

int stb_media::IsPlayerVisible(int id)
{
    trace("stb_media.IsPlayerVisible(%1)", id);
    return KVR_IsPlayerVisible(id);
}

int stb_media::GetPlayerDisplayMode(int id)
{
    trace("stb_media.GetPlayerDisplayMode(%1)", id);
    return KVR_GetPlayerDisplayMode(id);
}

int stb_media::SetPlayerDisplayMode(int id, int mode)
{
    trace("stb_media.SetPlayerDisplayMode(%1, %2)", id, mode);
    return KVR_SetPlayerDisplayMode(id, mode);
}

int stb_media::GetPlayerState(int id)
{
    trace("stb_media.GetPlayerState(%1)", id);
    return KVR_GetPlayerState(id);
}

QString stb_media::GetLastMulticastEvent(int id)
{
    trace("stb_media.GetLastMulticastEvent(%1)", id);
    PlatformRecords::MulticastEvent event;
    if (!PlatformRecords::lastMulticastEvent(id, event))
        return QLatin1String(invalidIdOfRecord);
    return JsonText::filled("{\"ip_port\":\"%1\",\"state\":\"%2\"}", event.address, event.state);
}

// Traces the name of another method, which technicians know.
QString stb_media::getEventDescription()
{
    trace("stb_media.GetPlayerState()");
    return JsonText::filled("{\"id\":\"%1\",\"type\":\"%2\"}", lastEventId, lastEventType);
}

// The browser keeps the handler; there is nothing here to read. Neither reading nor writing is traced.
QString stb_media::getEventHandler()
{
    return QString::fromLatin1("");
}

int stb_media::setEventHandler(QString code)
{
    emit jsCallback(code);
    return 0;
}

} // namespace KavroJSDeprecated
