// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordingPlatform.h"

#include "CallScript.h"
#include "EventSource.h"
#include "MemoryLedger.h"
#include "Results.h"

namespace RecordingPlatform {

Answer::Answer(int result)
    : integer(result)
{
}

Answer::Answer(long long result)
    : integer(result)
{
}

Answer::Answer(double result)
    : real(result)
{
}

Answer Answer::text(const QByteArray &text, int result)
{
    return bytes(Text, text.constData(), text.size() + 1, 0, result, 0);
}

Answer Answer::nullArray(int count, int result)
{
    return bytes(NullArray, nullptr, 0, 0, result, count);
}

Answer Answer::buffer(const QByteArray &bytes, int result)
{
    if (bytes.size() > Results::bufferSize)
        qFatal("The buffer takes %d bytes, not %d", Results::bufferSize, bytes.size());
    return Answer::bytes(Bytes, bytes.constData(), bytes.size(), Results::bufferSize, result, 0);
}

Answer Answer::bytes(Output output, const void *data, int size, int itemSize, int result, int count)
{
    Answer answer = result;
    answer.output = output;
    answer.data = QByteArray(static_cast<const char *>(data), size);
    answer.itemSize = itemSize;
    answer.count = count;
    return answer;
}

void reset()
{
    waitUntilFired();
    CallScript::instance().reset();
    MemoryLedger::instance().reset();
}

void forgetHandlers()
{
    EventSource::instance().forgetHandlers();
}

QByteArrayList calls()
{
    return CallScript::instance().calls();
}

QByteArrayList takeCalls()
{
    return CallScript::instance().takeCalls();
}

void answer(const char *function, const Answer &answer)
{
    CallScript::instance().answer(function, answer);
}

void answerOnce(const char *function, const Answer &answer)
{
    CallScript::instance().answerOnce(function, answer);
}

void onCall(const char *function, const std::function<void()> &action)
{
    CallScript::instance().onCall(function, action);
}

void fire(KVR_ID id, int type, int argument)
{
    EventSource::instance().fire({id, type, argument});
}

void fire(KVR_ID id, int type)
{
    fire(id, type, id);
}

void fireFromThreads(int threads, int eventsPerThread, const std::function<Event(int thread, int index)> &event)
{
    EventSource::instance().fireFromThreads(threads, eventsPerThread, event);
}

void fireHere(const Event &event)
{
    EventSource::instance().deliver(event);
}

void waitUntilFired()
{
    EventSource::instance().waitUntilFired();
}

int deliveredEvents()
{
    return EventSource::instance().deliveredEvents();
}

int blocksHandedOut()
{
    return MemoryLedger::instance().blocksHandedOut();
}

QByteArrayList memoryFaults()
{
    return MemoryLedger::instance().faults();
}

} // namespace RecordingPlatform
