// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>

/// The names of the functions that the text of stbapi.h declares, in their order.
inline QStringList functionsOfStbApi(QString header)
{
    static const QRegularExpression comment("/\\*.*?\\*/", QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression function("\\b(KVR_\\w+)\\(");
    header.remove(comment);
    QStringList names;
    for (auto matches = function.globalMatch(header); matches.hasNext();)
        names += matches.next().captured(1);
    return names;
}
