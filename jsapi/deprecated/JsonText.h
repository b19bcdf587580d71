// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "browser/bridge/JsApiTracer.h"
#include "platform/stbapi.h"

#include <QString>

/// The deprecated objects' answers: texts that old portals evaluate as script. Every value stands as a string, and
/// nothing is escaped.
namespace JsonText {

/// A list of the entries, each of which a template has ended with a comma and a line feed. The last comma stays.
inline QString list(const QString &entries)
{
    return QLatin1String("[\n") + entries + QLatin1Char(']');
}

inline QString rectangle(const KVR_Rect &rectangle)
{
    return filled("{\"x\":\"%1\",\"y\":\"%2\",\"width\":\"%3\",\"height\":\"%4\"}", rectangle.x, rectangle.y,
                  rectangle.width, rectangle.height);
}

} // namespace JsonText
