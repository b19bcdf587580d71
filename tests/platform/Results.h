// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "CallScript.h"

/// Turns the answer to a call into what the function of the platform returns, and stores in its out-pointers. An answer
/// that does not suit the function ends the test program with a message that names it.
namespace Results {

using RecordingPlatform::Answer;

/// The size of the buffer that KVR_GetBootParamValue takes.
constexpr int bufferSize = 256;

int toInt(const char *function, const Answer &answer);
int toText(const char *function, const Answer &answer, char **text);
int toBytes(const char *function, const Answer &answer, void *bytes, int size);
int toArray(const char *function, const Answer &answer, void **items, int itemSize, int *count);
/// A text that stays the library's.
const char *toOwnText(const char *function, const Answer &answer);
/// What the test gave as the result of a function of type long long or double.
long long toLongLong(const char *function, const Answer &answer);
double toDouble(const Answer &answer);

} // namespace Results

template <typename... Args>
int recordedInt(const char *function, const Args &...args)
{
    return Results::toInt(function, recordedOr(KVR_OK, function, args...));
}

template <typename... Args>
long long recordedLongLong(const char *function, const Args &...args)
{
    return Results::toLongLong(function, recordedOr(0, function, args...));
}

template <typename... Args>
double recordedDouble(const char *function, const Args &...args)
{
    return Results::toDouble(recordedOr(0, function, args...));
}

template <typename... Args>
int recordedText(char **text, const char *unscripted, const char *function, const Args &...args)
{
    const auto answer = recordedOr(RecordingPlatform::Answer::text(unscripted), function, args...);
    return Results::toText(function, answer, text);
}

template <typename T, typename... Args>
int recordedArray(T **items, int *count, const char *function, const Args &...args)
{
    const auto answer = recordedOr(RecordingPlatform::Answer::array(QVector<T>()), function, args...);
    void *array = *items;
    const int result = Results::toArray(function, answer, &array, sizeof(T), count);
    *items = static_cast<T *>(array);
    return result;
}

template <typename T, typename... Args>
int recordedStructure(T *value, const char *function, const Args &...args)
{
    const auto answer = recordedOr(RecordingPlatform::Answer::structure(T()), function, args...);
    return Results::toBytes(function, answer, value, sizeof(T));
}

/// A result that identifies something new: a number of its own unless scripted.
template <typename... Args>
KVR_ID recordedNewId(const char *function, const Args &...args)
{
    const auto answer = CallScript::instance().called(function, CallText::ofCall(function, args...));
    return answer ? Results::toInt(function, *answer) : CallScript::instance().nextId(function);
}
