// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "config/DirectfbrcParser.h"

#include <QRegExp>
#include <QTextStream>

#include <utility>

#include <unistd.h>

namespace {

const long long largestFile = 64 * 1024 * 1024; // bytes, of what others may have made of it

QRegExp modeLine()
{
    return QRegExp(QLatin1String("\\s*mode=(\\d+x\\d+)\\s*.*"));
}

// Each byte stands for itself, so that lines in any encoding are kept.
void keepBytes(QTextStream &stream)
{
    stream.setCodec("ISO 8859-1");
    stream.setAutoDetectUnicode(false);
}

QStringList readLines(QFile &file)
{
    QStringList lines;
    QTextStream stream(&file);
    keepBytes(stream);
    while (!stream.atEnd())
        lines.append(stream.readLine());
    return lines;
}

QSize firstMode(const QStringList &lines)
{
    QRegExp expression = modeLine();
    for (const QString &line : lines) {
        if (!expression.exactMatch(line))
            continue;
        const QStringList numbers = expression.cap(1).split(QLatin1Char('x'));
        return QSize(numbers[0].toInt(), numbers[1].toInt());
    }
    return QSize();
}

} // namespace

DirectfbrcParser::DirectfbrcParser(const QString &path)
    : m_file(path)
{
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Text, largestFile))
        return;
    m_lines = readLines(m_file);
    m_mode = firstMode(m_lines);
}

DirectfbrcParser::~DirectfbrcParser()
{
    m_file.close();
}

QSize DirectfbrcParser::mode() const
{
    return m_mode;
}

bool DirectfbrcParser::setMode(QSize size)
{
    m_mode = size;
    const QRegExp expression = modeLine();
    const QString line = QString::fromLatin1("mode=%1x%2").arg(size.width()).arg(size.height());
    for (int i = 0; i < m_lines.size(); ++i) {
        if (expression.exactMatch(m_lines.at(i)))
            m_lines[i] = line;
    }
    return true;
}

bool DirectfbrcParser::write()
{
    if (!m_file.isOpen())
        return true;
    m_file.seek(0);
    m_file.resize(0);
    QTextStream stream(&m_file);
    keepBytes(stream);
    for (const QString &line : std::as_const(m_lines))
        stream << line << '\n';
    // Users of this class expect the disk to be busy now; the last of the text follows when the stream is finished.
    sync();
    return true;
}
