// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <QByteArrayList>
#include <QMetaType>
#include <QVector>
#include <functional>
#include <optional>

#pragma GCC visibility push(default)

/// The test's side of the recording libstbapi.so, which notes every call that the program makes to the platform and
/// answers as the test said beforehand. Every function here may be called from any thread.
namespace RecordingPlatform {

/// What a KVR_... function gives back: its result and, when it has an out-pointer, what it stores there. An answer
/// made from a number alone leaves the out-pointers as they are.
struct Answer
{
    enum Output { Untouched, Text, Array, NullArray, Bytes };

    Answer() = default;
    Answer(int result);       // NOLINT(google-explicit-constructor): a row of a table says -7 and means it
    Answer(long long result); // NOLINT(google-explicit-constructor)
    Answer(double result);    // NOLINT(google-explicit-constructor)

    /// A text in memory of its own; for KVR_GetRecordFilename in the library's.
    static Answer text(const QByteArray &text, int result = KVR_OK);
    /// An array of KVR_Track, KVR_Record or int in memory of its own, also when it is empty. A count tells the
    /// caller of another length than the array has: shorter, or negative.
    template <typename T>
    static Answer array(const QVector<T> &items, int result = KVR_OK);
    template <typename T>
    static Answer array(const QVector<T> &items, int result, int count);
    /// A null pointer with a count.
    static Answer nullArray(int count, int result = KVR_OK);
    /// A structure stored in the caller's: KVR_Rect, KVR_Color or KVR_MulticastEvent.
    template <typename T>
    static Answer structure(const T &value, int result = KVR_OK);
    /// Exactly these bytes, at most 256, at the beginning of the caller's buffer; a closing NUL only if it is among
    /// them.
    static Answer buffer(const QByteArray &bytes, int result = KVR_OK);

    long long integer = KVR_OK;
    std::optional<double> real; ///< what a function of type double returns; the integer when there is none
    Output output = Untouched;
    QByteArray data;  ///< what is stored, as bytes
    int itemSize = 0; ///< of Array; of Bytes, how many the caller has room for
    int count = 0;    ///< of Array and NullArray, as told to the caller

private:
    static Answer bytes(Output output, const void *data, int size, int itemSize, int result, int count);
};

/// Forgets calls, answers, actions and the memory handed out, and numbers players and recordings from 1 again,
/// after all events have been delivered. Event handlers stay registered.
void reset();
/// Forgets the event handlers.
void forgetHandlers();

/// The calls so far, such as "KVR_PlayStream(1, udp://%2, -1, -1, -1)", in their order. Texts stand as they are,
/// byte for byte; doubles have as many digits as they need; structures and arrays are in braces; out-pointers are
/// left out; a handler is "handler"; a null pointer is "null".
QByteArrayList calls();
/// The same, and forgets them.
QByteArrayList takeCalls();

/// What function answers from now on. Unscripted, functions answer 0, 0.0, an empty text, an empty array or a
/// structure of zeros; KVR_CreatePlayer and KVR_AddRecord count up from 1; KVR_GetDeviceModel answers
/// "MZ-600 test"; handlers are kept as the contract says.
void answer(const char *function, const Answer &answer);
/// What function answers to one further call, after the calls already so answered and before what answer() says.
void answerOnce(const char *function, const Answer &answer);
/// Runs action inside each call of function, on the calling thread, after the call was noted.
void onCall(const char *function, const std::function<void()> &action);

/// An event of the platform. KVR_EVENT_RECORDS of KVR_BOX goes to the handler of KVR_SetRecordsSharedCallback.
struct Event
{
    KVR_ID id;
    int type;
    int argument;
};

/// Sends an event from the library's own thread. Returns at once. An event without a handler at its time is lost.
void fire(KVR_ID id, int type, int argument);
/// The same with the identifier for the argument, as for the events of a player.
void fire(KVR_ID id, int type);
/// Sends events from several further threads, which begin together. event makes the event of an index from 0 to
/// eventsPerThread - 1, and is called on those threads. Returns at once.
void fireFromThreads(int threads, int eventsPerThread, const std::function<Event(int thread, int index)> &event);
/// Calls the handler on the calling thread, which a library that keeps to the contract does not do inside a call.
void fireHere(const Event &event);
/// Waits until all events have been delivered. Not for use in a handler.
void waitUntilFired();
/// The number of handlers' calls that have returned, since the library was loaded.
int deliveredEvents();

/// The number of blocks of memory handed out since the last reset().
int blocksHandedOut();
/// A line for each block that was not freed exactly once, such as "KVR_GetOrder: never freed", "KVR_GetOrder: freed
/// 2 times" or "KVR_GetRecordFilename: freed, but the library's own". Under the address sanitizer a second free
/// ends the program with the sanitizer's report instead.
QByteArrayList memoryFaults();

template <typename T>
Answer Answer::array(const QVector<T> &items, int result)
{
    return array(items, result, items.size());
}

template <typename T>
Answer Answer::array(const QVector<T> &items, int result, int count)
{
    return bytes(Array, items.constData(), items.size() * int(sizeof(T)), sizeof(T), result, count);
}

template <typename T>
Answer Answer::structure(const T &value, int result)
{
    return bytes(Bytes, &value, sizeof value, sizeof value, result, 0);
}

} // namespace RecordingPlatform

#pragma GCC visibility pop

Q_DECLARE_METATYPE(RecordingPlatform::Answer)
