// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ManifestText.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

const char typeOfHomePage[] = "homepage";

QString quoted(const QString &value)
{
    return '"' + value.toHtmlEscaped() + '"';
}

QString unescaped(const QString &value)
{
    QXmlStreamReader reader("<a b=" + value + "/>");
    reader.readNextStartElement();
    return reader.attributes().value("b").toString();
}

} // namespace

ManifestText::ManifestText(const QString &text)
    : m_text(text)
{
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd()) {
        reader.readNext();
        const int end = int(reader.characterOffset());
        if (reader.isEndElement())
            m_rootEnd = end;
        // The last one counts. A tag holds no < but its first.
        if (reader.isStartElement() && reader.attributes().value("type") == QLatin1String(typeOfHomePage)) {
            m_homePage.begin = text.lastIndexOf('<', end - 1);
            m_homePage.length = end - m_homePage.begin;
        }
    }
    if (reader.hasError())
        m_error = QString("%1, line %2").arg(reader.errorString()).arg(reader.lineNumber());
}

// The part from the blank before the attribute's name to the quote behind its value.
ManifestText::Part ManifestText::findAttribute(const QString &name) const
{
    static const QRegularExpression form("\\s+([^\\s=]+)\\s*=\\s*(?:\"[^\"]*\"|'[^']*')");
    auto matches = form.globalMatch(m_text.mid(m_homePage.begin, m_homePage.length));
    while (m_homePage.begin >= 0 && matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.captured(1) == name)
            return {m_homePage.begin + match.capturedStart(), match.capturedLength()};
    }
    return {};
}

std::optional<QString> ManifestText::attribute(const QString &name) const
{
    const Part found = findAttribute(name);
    if (found.begin < 0)
        return std::nullopt;
    return unescaped(m_text.mid(found.begin, found.length).section('=', 1).trimmed());
}

void ManifestText::setAttribute(const QString &name, const std::optional<QString> &value)
{
    if (m_homePage.begin < 0)
        addHomePage();
    Part place = findAttribute(name);
    if (place.begin < 0) // behind the attributes that are there
        place.begin =
            m_homePage.begin + m_homePage.length - (m_text.at(m_homePage.begin + m_homePage.length - 2) == '/' ? 2 : 1);
    const QString replacement = value ? ' ' + name + '=' + quoted(*value) : QString();
    m_text.replace(place.begin, place.length, replacement);
    m_homePage.length += replacement.length() - place.length;
}

void ManifestText::addHomePage()
{
    const QString element = QString("<page type=\"%1\"/>").arg(typeOfHomePage);
    const int rootTag = m_text.lastIndexOf('<', m_rootEnd - 1);
    if (m_text.at(rootTag + 1) == '/') {
        m_text.insert(rootTag, "    " + element + '\n');
        m_homePage.begin = rootTag + 4;
    } else { // the root is empty, and a single tag
        static const QRegularExpression nameEnd("[\\s/]");
        const QString name = m_text.mid(rootTag + 1).section(nameEnd, 0, 0);
        m_text.replace(m_rootEnd - 2, 2, ">" + element + "</" + name + '>');
        m_homePage.begin = m_rootEnd - 1;
    }
    m_homePage.length = element.length();
}
