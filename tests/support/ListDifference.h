// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QStringList>

/// How a list differs from what it should be, with the names that it is about; empty if they are equal.
inline QString listDifference(const QStringList &actual, const QStringList &expected)
{
    QStringList differences;
    for (const QString &text : expected) {
        if (!actual.contains(text))
            differences += text + " is missing";
    }
    for (const QString &text : actual) {
        if (!expected.contains(text))
            differences += text + " is not expected";
    }
    if (!differences.isEmpty() || actual == expected)
        return differences.join("; ");
    int i = 0;
    while (i < actual.size() && actual[i] == expected.value(i))
        ++i;
    return QString("'%1' stands where '%2' should").arg(actual.value(i), expected.value(i));
}
