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

void say(const QByteArray &text, bool mayWait)
{
    if (currentReporter())
        currentReporter()(text, mayWait);
    else
        std::fprintf(stderr, "kavro-box: %s\n", text.constData());
}

} // namespace

void report(const QString &text)
{
    QString line = text.size() > longestText ? text.left(longestText) + "..." : text;
    for (QChar &character : line) {
        if (character.category() == QChar::Other_Control)
            character = ' ';
    }
    say(line.toLocal8Bit(), true);
}

void reportNow(const QByteArray &text)
{
    say(text, false);
}

void setReporter(Reporter reporter)
{
    currentReporter() = std::move(reporter);
}
