// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "KvrFunctions.h"

#include <QtGlobal>

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <type_traits>
#include <utility>

namespace {

// What the functions read and store through pointers.
struct Memory
{
    KVR_Track *tracks = nullptr;
    KVR_Record *records = nullptr;
    int *order = nullptr;
    char *text = nullptr;
    int count = 77;
    int noOrder[1] = {};
    KVR_Rect rect = {1, 2, 320, 180};
    KVR_Color color = {1, 2, 3, 4};
    KVR_MulticastEvent event = {"untouched", 1};
    char value[256] = "untouched";
};

const Memory untouched;
Memory memory;

void restoreMemory()
{
    std::free(memory.tracks);
    std::free(memory.records);
    std::free(memory.order);
    std::free(memory.text);
    std::memcpy(&memory, &untouched, sizeof memory);
}

int ignoreEvent(int)
{
    return 0;
}

QByteArray textOf(double number)
{
    return QByteArray::number(number);
}

QByteArray textOf(const char *text)
{
    return text;
}

QByteArray textOf(KVR_EventHandler handler)
{
    return handler ? "handler" : "null";
}

// The name by which the library offers it.
template <typename Function>
QByteArray nameOf(Function function)
{
    Dl_info info = {};
    if (::dladdr(reinterpret_cast<void *>(function), &info) == 0 || !info.dli_sname)
        qFatal("A function of the table is none of the library's");
    return info.dli_sname;
}

template <typename Argument>
Argument nullIf(bool isNull, Argument argument)
{
    if constexpr (std::is_pointer_v<Argument>)
        return isNull ? nullptr : argument;
    else
        return argument;
}

template <typename Invoke, std::size_t... positions, typename... Arguments>
KvrFunction entry(const QByteArray &name, KvrFunction::Subject subject, Invoke invoke,
                  std::index_sequence<positions...>, Arguments... arguments)
{
    KvrFunction result = {name, subject, [=](KVR_ID id) { return invoke(id, arguments...); }, {}};
    [[maybe_unused]] const auto addNullCall = [&](std::size_t position) {
        result.nullCalls.push_back([=](KVR_ID id) { return invoke(id, nullIf(position == positions, arguments)...); });
    };
    ((std::is_pointer_v<Arguments> ? addNullCall(positions) : void()), ...);
    return result;
}

template <typename Function, typename... Arguments>
KvrFunction ofBox(Function function, Arguments... arguments)
{
    const auto invoke = [function](KVR_ID, auto... values) {
        restoreMemory();
        return textOf(function(values...));
    };
    return entry(nameOf(function), KvrFunction::Box, invoke, std::index_sequence_for<Arguments...>(), arguments...);
}

template <typename Function, typename... Arguments>
KvrFunction about(KvrFunction::Subject subject, Function function, Arguments... arguments)
{
    const auto invoke = [function](KVR_ID id, auto... values) {
        restoreMemory();
        return textOf(function(id, values...));
    };
    return entry(nameOf(function), subject, invoke, std::index_sequence_for<Arguments...>(), arguments...);
}

template <typename Function, typename... Arguments>
KvrFunction ofPlayer(Function function, Arguments... arguments)
{
    return about(KvrFunction::Player, function, arguments...);
}

template <typename Function, typename... Arguments>
KvrFunction ofRecording(Function function, Arguments... arguments)
{
    return about(KvrFunction::Recording, function, arguments...);
}

KvrFunction answering(const char *unknown, KvrFunction function)
{
    function.unknown = unknown;
    return function;
}

} // namespace

const std::vector<KvrFunction> &kvrFunctions()
{
    static const uint32_t start = 4000000000U; // long after every test
    static const std::vector<KvrFunction> functions = {
        // Events. Registrations name pairs, which need no player.
        ofBox(KVR_RegisterEventHandler, KVR_BOX, KVR_EVENT_OUTPUT_STATE, ignoreEvent),
        ofBox(KVR_GetEventHandler, KVR_BOX, KVR_EVENT_OUTPUT_STATE),
        ofBox(KVR_DeleteEventHandler, KVR_BOX, KVR_EVENT_OUTPUT_STATE),

        // Players and playback.
        ofBox(KVR_CreatePlayer),
        ofBox(KVR_GetPlayersCount),
        ofPlayer(KVR_GetPlayerState),
        ofPlayer(KVR_PlayFile, "/mnt/stb/none.ts", 0, 0, 0, "", -1, -1, -1),
        ofPlayer(KVR_PlayStream, "udp://127.0.0.1:45454", -1, -1, -1),
        ofPlayer(KVR_PlayHttp, "http://127.0.0.1:9/", "", -1, -1, -1),
        ofPlayer(KVR_PlayRtsp, "rtsp://127.0.0.1:9/", 0, 1, -1, -1, -1),
        ofPlayer(KVR_PlayMagnet, "magnet:?xt=urn:btih:0123456789abcdef0123456789abcdef01234567", "", 0, 0, 0, 0, -1, -1,
                 -1),
        ofPlayer(KVR_Pause),
        ofPlayer(KVR_NextFrame),
        ofPlayer(KVR_SetPosition, 1000),
        ofPlayer(KVR_GetPosition),
        ofPlayer(KVR_GetDuration),
        ofPlayer(KVR_SetSpeed, 2),
        ofPlayer(KVR_GetSpeed),
        ofPlayer(KVR_Continue),

        // Tracks.
        ofPlayer(KVR_GetVideoTrackList, &memory.tracks, &memory.count),
        ofPlayer(KVR_GetAudioTrackList, &memory.tracks, &memory.count),
        ofPlayer(KVR_GetSubtitleTrackList, &memory.tracks, &memory.count),
        ofPlayer(KVR_GetTeletextTrackList, &memory.tracks, &memory.count),
        ofPlayer(KVR_GetVideoPid),
        ofPlayer(KVR_GetAudioPid),
        ofPlayer(KVR_SetAudioPid, -1),
        ofPlayer(KVR_GetSubtitlePid),
        ofPlayer(KVR_SetSubtitlePid, -1),
        ofPlayer(KVR_GetTeletextPid),
        ofPlayer(KVR_SetTeletextPid, -1),
        ofPlayer(KVR_GetTeletextPage),
        ofPlayer(KVR_SetTeletextPage, 123),
        ofPlayer(KVR_IsSubtitlesVisible),
        ofPlayer(KVR_SetSubtitlesVisible, 1),
        ofPlayer(KVR_IsTeletextVisible),
        ofPlayer(KVR_SetTeletextVisible, 1),
        ofPlayer(KVR_GetLastMulticastEvent, &memory.event),

        // Sound, picture and player window.
        ofPlayer(KVR_SetVolume, 50),
        ofPlayer(KVR_GetVolume),
        ofPlayer(KVR_SetMute, 1),
        ofPlayer(KVR_IsMute),
        ofPlayer(KVR_SetZoom, 1.1),
        ofPlayer(KVR_GetZoom),
        ofPlayer(KVR_GetFps),
        ofPlayer(KVR_SetPlayerViewPort, &memory.rect),
        ofPlayer(KVR_GetPlayerViewPort, &memory.rect),
        ofPlayer(KVR_SetPlayerAlphaLevel, 200),
        ofPlayer(KVR_GetPlayerAlphaLevel),
        ofPlayer(KVR_SetPlayerVisible, 1),
        ofPlayer(KVR_IsPlayerVisible),
        ofPlayer(KVR_SetPlayerDisplayMode, KVR_DISPLAY_CROP),
        ofPlayer(KVR_GetPlayerDisplayMode),

        // Their end.
        ofPlayer(KVR_Stop),
        ofPlayer(KVR_ClosePlayer),

        // Graphics layer and video layout.
        ofBox(KVR_SetResolution, 1280, 720),
        ofBox(KVR_SetGraphicsViewport, &memory.rect),
        ofBox(KVR_GetGraphicsViewport, &memory.rect),
        ofBox(KVR_SetGraphicsVisible, 1),
        ofBox(KVR_IsGraphicsVisible),
        ofBox(KVR_SetGraphicsAlphaLevel, 255),
        ofBox(KVR_GetGraphicsAlphaLevel),
        ofBox(KVR_SetChromaKey, KVR_Color{1, 2, 3, 4}),
        ofBox(KVR_GetChromaKey, &memory.color),
        ofBox(KVR_SetChromaKeyEnable, 1),
        ofBox(KVR_IsChromaKeyEnable),
        ofBox(KVR_SetCurrentLayout, 0),
        ofBox(KVR_GetCurrentLayout),
        ofBox(KVR_SwitchToNextLayout),
        ofBox(KVR_SetOrder, memory.noOrder, 1),
        ofBox(KVR_GetOrder, &memory.order, &memory.count),
        ofBox(KVR_IsOutportsEnabled),
        ofBox(KVR_GetHdmiState),

        // Device and boot parameters.
        ofBox(KVR_GetDeviceModel, &memory.text),
        ofBox(KVR_GetFirmwareVersion, &memory.text),
        ofBox(KVR_GetDeviceSerialNumber, &memory.text),
        ofBox(KVR_GetBootParamValue, "hdmi_config", memory.value),
        ofBox(KVR_SetBootParamValue, "hdmi_config", "1080p50"),
        ofBox(KVR_SyncBootParams),
        ofBox(KVR_UpgradeFirmware, "http://127.0.0.1:9/"),

        // Recordings.
        ofBox(KVR_AddRecord, "udp://239.1.1.1:5000", "a.ts", start, 60),
        ofBox(KVR_GetRecordsList, &memory.records, &memory.count),
        ofRecording(KVR_GetRecordStatus),
        ofRecording(KVR_SetRecordStartTime, start),
        ofRecording(KVR_SetRecordDuration, 60),
        ofRecording(KVR_SetRecordFilename, "b.ts"),
        ofRecording(KVR_SetRecordUrl, "udp://239.1.1.2:5000"),
        answering("", ofRecording(KVR_GetRecordFilename)),
        ofBox(KVR_CleanUpRecords),
        ofRecording(KVR_DeleteRecord),
        ofBox(KVR_SetRecordsSharedCallback, ignoreEvent),
        ofBox(KVR_CleanRecordsSharedCallback),
    };
    return functions;
}

bool kvrOutputsAreUntouched()
{
    return std::memcmp(&memory, &untouched, sizeof memory) == 0;
}
