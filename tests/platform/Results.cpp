// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Results.h"

#include "MemoryLedger.h"

#include <cstring>
#include <limits>

namespace {

using RecordingPlatform::Answer;

void require(bool suits, const char *function, const char *what)
{
    if (!suits)
        qFatal("The answer scripted for %s is not %s", function, what);
}

void *handedOut(const char *function, const QByteArray &data, bool platformOwned = false)
{
    void *block = MemoryLedger::instance().allocate(function, std::size_t(data.size()), platformOwned);
    std::memcpy(block, data.constData(), std::size_t(data.size()));
    return block;
}

} // namespace

long long Results::toLongLong(const char *function, const Answer &answer)
{
    require(!answer.real, function, "an integer");
    return answer.integer;
}

int Results::toInt(const char *function, const Answer &answer)
{
    const long long result = toLongLong(function, answer);
    require(result >= std::numeric_limits<int>::min() && result <= std::numeric_limits<int>::max(), function, "an int");
    return int(result);
}

double Results::toDouble(const Answer &answer)
{
    return answer.real.value_or(double(answer.integer));
}

int Results::toText(const char *function, const Answer &answer, char **text)
{
    require(answer.output == Answer::Untouched || answer.output == Answer::Text, function, "a text");
    if (answer.output == Answer::Text)
        *text = static_cast<char *>(handedOut(function, answer.data));
    return toInt(function, answer);
}

const char *Results::toOwnText(const char *function, const Answer &answer)
{
    require(answer.output == Answer::Text, function, "a text");
    return static_cast<const char *>(handedOut(function, answer.data, true));
}

int Results::toBytes(const char *function, const Answer &answer, void *bytes, int size)
{
    const bool stored = answer.output == Answer::Bytes;
    require(answer.output == Answer::Untouched || (stored && answer.itemSize == size), function, "of its type");
    if (stored)
        std::memcpy(bytes, answer.data.constData(), std::size_t(answer.data.size()));
    return toInt(function, answer);
}

int Results::toArray(const char *function, const Answer &answer, void **items, int itemSize, int *count)
{
    const bool array = answer.output == Answer::Array && answer.itemSize == itemSize;
    const bool null = answer.output == Answer::NullArray;
    require(array || null || answer.output == Answer::Untouched, function, "an array of its type");
    if (array || null) {
        *items = array ? handedOut(function, answer.data) : nullptr;
        *count = answer.count;
    }
    return toInt(function, answer);
}
