// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StbMedia.h"

#include "browser/bridge/JsApiTracer.h"
#include "jsapi/PlayerCallbacks.h"
#include "jsapi/StoragePath.h"
#include "platform/stbapi.h"

#include <utility>

namespace {

const int noSubtitleText = -128;

} // namespace

namespace KavroJS {

StbMedia *StbMedia::inst_ = nullptr;

StbMedia *StbMedia::instance()
{
    if (!inst_)
        inst_ = new StbMedia;
    return inst_;
}

void StbMedia::destroyInstance()
{
    delete inst_;
    inst_ = nullptr;
}

StbMedia::StbMedia()
    : lastEventId(0)
    , lastEventType(0)
{
}

StbMedia::~StbMedia()
{
    for (int id : std::as_const(players)) {
        saveSound(id);
        KVR_ClosePlayer(id);
    }
}

void StbMedia::saveSound(int id)
{
    SetSystemVolume(GetVolume(id));
    SetSystemMute(IsMute(id));
}

// ---- Players and playback ----

int StbMedia::CreatePlayer()
{
    trace("StbMedia.CreatePlayer()");
    const int id = KVR_CreatePlayer();
    if (id >= 0) {
        registerPlayerCallbacks(id);
        players.insert(id);
    }
    // Also for a failure code: portals' traces have always shown these calls.
    SetVolume(id, GetSystemVolume());
    SetMute(id, IsSystemMute());
    return id;
}

int StbMedia::ClosePlayer(int id)
{
    trace("StbMedia.ClosePlayer(%1)", id);
    saveSound(id);
    players.remove(id);
    return KVR_ClosePlayer(id);
}

int StbMedia::GetPlayersCount()
{
    trace("StbMedia.GetPlayersCount()");
    return KVR_GetPlayersCount();
}

int StbMedia::PlayFile(int id, QString path, long long pos, long long duration, double fps, QVariant subt)
{
    trace("StbMedia.PlayFile(%1, %2, %3, %4, %5, %6", id, path, pos, duration, fps, subt);
    if (subt.type() != QVariant::String)
        return noSubtitleText;
    return KVR_PlayFile(id, storagePath(path).toUtf8().constData(), pos, duration, fps,
                        subt.toString().toUtf8().constData(), -1, -1, -1);
}

int StbMedia::PlayStream(int id, QString path)
{
    trace("StbMedia.PlayStream(%1, %2)", id, path);
    return KVR_PlayStream(id, path.toUtf8().constData(), -1, -1, -1);
}

int StbMedia::PlayHttp(int id, QString path, QString opt)
{
    trace("StbMedia.PlayHttp(%1, %2, %3)", id, path, opt);
    return KVR_PlayHttp(id, path.toUtf8().constData(), opt.toUtf8().constData(), -1, -1, -1);
}

int StbMedia::PlayRtsp(int id, QString path, long long pos, int mode)
{
    trace("StbMedia.PlayRtsp(%1, %2, %3, %4)", id, path, pos, mode);
    return KVR_PlayRtsp(id, path.toUtf8().constData(), pos, mode, -1, -1, -1);
}

int StbMedia::PlayMagnet(int id, QString magnet, QString name, long long size, long long pos, long long duration,
                         double fps)
{
    trace("StbMedia.PlayMagnet(%1, %2, %3, %4, %5, %6, %7)", id, magnet, name, size, pos, duration, fps);
    return KVR_PlayMagnet(id, magnet.toUtf8().constData(), name.toUtf8().constData(), size, pos, duration, fps, -1, -1,
                          -1);
}

int StbMedia::Pause(int id)
{
    trace("StbMedia.Pause(%1)", id);
    return KVR_Pause(id);
}

int StbMedia::Stop(int id)
{
    trace("StbMedia.Stop(%1)", id);
    return KVR_Stop(id);
}

int StbMedia::Continue(int id)
{
    trace("StbMedia.Continue(%1)", id);
    return KVR_Continue(id);
}

int StbMedia::NextFrame(int id)
{
    trace("StbMedia.NextFrame(%1)", id);
    return KVR_NextFrame(id);
}

int StbMedia::SetPosition(int id, long long pos)
{
    trace("StbMedia.SetPosition(%1, %2)", id, pos);
    return KVR_SetPosition(id, pos);
}

long long StbMedia::GetPosition(int id)
{
    trace("StbMedia.GetPosition(%1)", id);
    return KVR_GetPosition(id);
}

long long StbMedia::GetDuration(int id)
{
    trace("StbMedia.GetDuration(%1)", id);
    return KVR_GetDuration(id);
}

int StbMedia::SetSpeed(int id, int speed)
{
    trace("StbMedia.SetSpeed(%1, %2)", id, speed);
    return KVR_SetSpeed(id, speed);
}

int StbMedia::GetSpeed(int id)
{
    trace("StbMedia.GetSpeed(%1)", id);
    return KVR_GetSpeed(id);
}

int StbMedia::GetPlayerState(int id)
{
    trace("StbMedia.GetPlayerState(%1)", id);
    return KVR_GetPlayerState(id);
}

// ---- Events ----

void StbMedia::setLastEvent(int id, int type)
{
    lastEventId = id;
    lastEventType = type;
}

QVariant StbMedia::GetEventDescription()
{
    trace("StbMedia.GetEventDescription()");
    QVariantMap answer;
    answer[QLatin1String("id")] = lastEventId;
    answer[QLatin1String("type")] = lastEventType;
    return answer;
}

// The browser keeps the handler; there is nothing here to read.
QString StbMedia::getEventHandler()
{
    trace("StbMedia.onEvent");
    return QString::fromLatin1("");
}

int StbMedia::setEventHandler(QString code)
{
    trace("StbMedia.onEvent(%1)", code);
    emit jsCallback(code);
    return 0;
}

} // namespace KavroJS
