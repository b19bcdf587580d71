// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LastLines.h"

#include "TerminalText.h"

namespace {

const size_t mostLines = 50;
const int longestLine = 4096; // bytes

// Where the last lines of a text begin, so that a long text costs no more.
int lastLinesOf(const QByteArray &text)
{
    int position = text.size();
    for (size_t line = 0; line <= mostLines; ++line) {
        if (position <= 0)
            return 0;
        position = text.lastIndexOf('\n', position - 1);
        if (position < 0)
            return 0;
    }
    return position + 1;
}

void append(QByteArray *line, const char *text, int size)
{
    line->append(text, qMin(size, longestLine - line->size()));
}

} // namespace

void LastLines::add(size_t stream, const QByteArray &text)
{
    if (m_inProgress.size() <= stream)
        m_inProgress.resize(stream + 1);
    QByteArray &line = m_inProgress[stream];
    int begin = lastLinesOf(text);
    if (begin > 0)
        line.clear();
    for (int end = text.indexOf('\n', begin); end >= 0; end = text.indexOf('\n', begin)) {
        append(&line, text.constData() + begin, end - begin);
        add({line});
        line.clear();
        begin = end + 1;
    }
    append(&line, text.constData() + begin, text.size() - begin);
}

void LastLines::addOwn(const QByteArray &line)
{
    add({line, true});
}

QList<QByteArray> LastLines::lines() const
{
    QList<QByteArray> lines;
    for (const Line &line : m_lines)
        lines += line.isOwn ? line.text : TerminalText::harmless(line.text);
    for (const QByteArray &line : m_inProgress) {
        if (!line.isEmpty())
            lines += TerminalText::harmless(line);
    }
    return lines.mid(qMax(0, lines.size() - int(mostLines)));
}

void LastLines::add(const Line &line)
{
    m_lines.push_back(line);
    if (m_lines.size() > mostLines)
        m_lines.pop_front();
}
