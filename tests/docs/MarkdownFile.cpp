// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MarkdownFile.h"

#include <QFile>
#include <QRegularExpression>

MarkdownFile::MarkdownFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return;
    static const char fence[] = "```";
    const QStringList texts = QString::fromUtf8(file.readAll()).split('\n');
    bool isCode = false;
    QString language;
    for (const QString &text : texts) {
        if (text.startsWith(fence)) {
            isCode = !isCode;
            language = isCode ? text.mid(int(qstrlen(fence))) : QString();
            m_lines.append({QString(), true, QString()});
        } else {
            m_lines.append({text, isCode, language});
        }
    }
}

QVector<MarkdownFile::Piece> MarkdownFile::links() const
{
    return matches(R"(\]\(([^)\s]+)\))");
}

QVector<MarkdownFile::Piece> MarkdownFile::codeSpans() const
{
    return matches("`([^`]+)`");
}

QVector<MarkdownFile::Piece> MarkdownFile::codeLines(const QString &language) const
{
    QVector<Piece> pieces;
    for (int number = 0; number < m_lines.size(); ++number) {
        if (m_lines.at(number).isCode && m_lines.at(number).language == language)
            pieces.append({number + 1, m_lines.at(number).text});
    }
    return pieces;
}

QVector<MarkdownFile::Piece> MarkdownFile::codeSpansBelow(const QString &anchor) const
{
    QVector<Piece> pieces;
    const QVector<Piece> all = codeSpans();
    for (const Piece &piece : all) {
        int heading = piece.line - 1;
        while (heading >= 0 && anchorOf(m_lines.at(heading)).isEmpty())
            --heading;
        if (heading >= 0 && anchorOf(m_lines.at(heading)) == anchor)
            pieces += piece;
    }
    return pieces;
}

QString MarkdownFile::anchorOf(const Line &line)
{
    static const QRegularExpression heading("^#+ +(.*)$");
    static const QRegularExpression dropped(R"([^\w\- ])", QRegularExpression::UseUnicodePropertiesOption);
    const QRegularExpressionMatch match = heading.match(line.text);
    return line.isCode ? QString() : match.captured(1).toLower().remove(dropped).replace(' ', '-');
}

QStringList MarkdownFile::anchors() const
{
    QStringList anchors;
    for (const Line &line : m_lines) {
        if (const QString anchor = anchorOf(line); !anchor.isEmpty())
            anchors += anchor;
    }
    return anchors;
}

QVector<MarkdownFile::Piece> MarkdownFile::matches(const char *pattern) const
{
    const QRegularExpression expression(pattern);
    QVector<Piece> pieces;
    for (int number = 0; number < m_lines.size(); ++number) {
        if (m_lines.at(number).isCode)
            continue;
        QRegularExpressionMatchIterator match = expression.globalMatch(m_lines.at(number).text);
        while (match.hasNext())
            pieces.append({number + 1, match.next().captured(1)});
    }
    return pieces;
}
