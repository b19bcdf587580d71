// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "common/other/substitution.h"

QString Common::substituted(const char *text, const QString arguments[], int count)
{
    QString result;
    for (; *text; ++text) {
        const int place = *text == '%' ? text[1] - '1' : -1;
        if (place < 0 || place >= count || place > 8) {
            result += QLatin1Char(*text);
        } else {
            result += arguments[place];
            ++text;
        }
    }
    return result;
}
