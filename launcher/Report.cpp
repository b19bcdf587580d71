// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Report.h"

#include <cstdio>
#include <utility>

namespace {

const int longestText = 8000; // characters; what pages have a part in may be of any length

Reporter &currentReporter()
{
    static Reporter reporter;
    return reporter;
}

void report(const QString &text, bool mayWait)
{
    QString line = text.size() > longestText ? text.left(longestText) + "..." : text;
    for (QChar &character : line) {
        if (character.category() == QChar::Other_Control)
            character = ' ';
    }
    const QByteArray bytes = line.toLocal8Bit();
    if (currentReporter())
        currentReporter()(bytes, mayWait);
    else
        std::fprintf(stderr, "kavro-box: %s\n", bytes.constData());
}

} // namespace

void report(const QString &text)
{
    report(text, true);
}

void reportNow(const QString &text)
{
    report(text, false);
}

void setReporter(Reporter reporter)
{
    currentReporter() = std::move(reporter);
}
