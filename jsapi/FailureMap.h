// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QVariant>

/// What a page gets when a call with a structured answer fails. Some codes are numbers and some are texts; portals know
/// which.
inline QVariantMap failureMap(const QString &message, const QVariant &code)
{
    QVariantMap map;
    map[QLatin1String("status")] = QLatin1String("FAIL");
    map[QLatin1String("message")] = message;
    map[QLatin1String("code")] = code;
    return map;
}
