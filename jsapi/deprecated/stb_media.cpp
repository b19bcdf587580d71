// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/deprecated/stb_media.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/StoragePath.h"
#include "jsapi/deprecated/DeprecatedCallbacks.h"
#include "jsapi/deprecated/JsonText.h"
#include "platform/stbapi.h"

#include <utility>

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
    registerPlayerCallbacks(id);
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

int stb_media::GetPlayerState(int id)
{
    trace("stb_media.GetPlayerState(%1)", id);
    return KVR_GetPlayerState(id);
}

// Traces the name of another method, which technicians know.
QString stb_media::getEventDescription()
{
    trace("stb_media.GetPlayerState()");
    return filled("{\"id\":\"%1\",\"type\":\"%2\"}", lastEventId, lastEventType);
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
