// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TerminalText.h"

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <cstring>

#include <langinfo.h>

namespace {

bool isPlain(const QByteArray &line)
{
    return std::all_of(line.begin(), line.end(),
                       [](char byte) { return (byte >= ' ' && byte <= '~') || byte == '\t'; });
}

bool isVisible(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
        return character == '\t';
    case QChar::Other_Format:
    case QChar::Other_NotAssigned:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

// Of a line for a terminal that takes every byte for a character, so that no part of one may be a control character.
QString fromBytes(const QByteArray &line)
{
    QString text;
    for (const char byte : line) {
        if (isPlain({1, byte}))
            text += QLatin1Char(byte);
        else
            text += QString("\\x%1").arg(uchar(byte), 2, 16, QChar('0'));
    }
    return text;
}

QString fromUtf8(const QByteArray &line)
{
    QString text;
    const QVector<uint> characters = QString::fromUtf8(line.constData(), line.size()).toUcs4();
    for (const uint character : characters) {
        if (isVisible(character))
            text += QString::fromUcs4(&character, 1);
        else if (character < 0x80)
            text += QString("\\x%1").arg(character, 2, 16, QChar('0'));
        else
            text += QString("\\u%1").arg(character, 4, 16, QChar('0'));
    }
    return text;
}

void disown(QString *text)
{
    // Accents and the like lie over the letter before, and are not always seen.
    static const QRegularExpression own(R"((k\p{M}*a\p{M}*v\p{M}*r\p{M}*o\p{M}*-\p{M}*b\p{M}*o\p{M}*x[\p{M}\s]*):)",
                                        QRegularExpression::CaseInsensitiveOption
                                            | QRegularExpression::UseUnicodePropertiesOption);
    text->replace(own, R"(\1\:)");
}

} // namespace

QByteArray TerminalText::harmless(const QByteArray &line)
{
    // Most lines are nothing but letters, and there are many.
    if (isPlain(line) && !line.contains(':'))
        return line;
    const bool isUtf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    QString text = isPlain(line) ? QString::fromLatin1(line) : isUtf8 ? fromUtf8(line) : fromBytes(line);
    disown(&text);
    return text.toUtf8();
}
