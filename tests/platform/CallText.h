// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <QByteArray>

/// Arguments of platform functions as texts for the log of calls.
namespace CallText {

/// An array with its length, which are one thing in the log.
struct IntArray
{
    const int *items;
    int count;
};

QByteArray of(int value);
QByteArray of(unsigned int value);
QByteArray of(long long value);
QByteArray of(double value);
QByteArray of(const char *text);
QByteArray of(KVR_Color color);
QByteArray of(const KVR_Rect *rect);
QByteArray of(IntArray array);
QByteArray of(KVR_EventHandler handler);

/// "function(argument, argument)"
template <typename... Args>
QByteArray ofCall(const char *function, const Args &...args)
{
    QByteArray text;
    ((text += text.isEmpty() ? "" : ", ", text += of(args)), ...);
    return function + ('(' + text + ')');
}

} // namespace CallText
