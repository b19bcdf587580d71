// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "CallText.h"

#include <QByteArrayList>
#include <array>
#include <charconv>

namespace {

QByteArray null()
{
    return "null";
}

QByteArray inBraces(const QByteArrayList &items)
{
    return '{' + items.join(", ") + '}';
}

} // namespace

QByteArray CallText::of(int value)
{
    return QByteArray::number(value);
}

QByteArray CallText::of(unsigned int value)
{
    return QByteArray::number(value);
}

QByteArray CallText::of(long long value)
{
    return QByteArray::number(value);
}

QByteArray CallText::of(double value)
{
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return QByteArray(text.data(), int(end - text.data()));
}

QByteArray CallText::of(const char *text)
{
    return text ? QByteArray(text) : null();
}

QByteArray CallText::of(KVR_Color color)
{
    return inBraces({of(int(color.red)), of(int(color.green)), of(int(color.blue)), of(int(color.alpha))});
}

QByteArray CallText::of(const KVR_Rect *rect)
{
    return rect ? inBraces({of(rect->x), of(rect->y), of(rect->width), of(rect->height)}) : null();
}

QByteArray CallText::of(IntArray array)
{
    QByteArrayList items;
    for (int i = 0; array.items && i < array.count; ++i)
        items += of(array.items[i]);
    return (array.items ? inBraces(items) : null()) + ", " + of(array.count);
}

QByteArray CallText::of(KVR_EventHandler handler)
{
    return handler ? QByteArray("handler") : null();
}
