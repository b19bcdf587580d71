// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// What a document in Markdown says that can be tested.
class MarkdownFile
{
public:
    struct Piece
    {
        int line; ///< from 1
        QString text;
    };

    /// Reads the file; one that cannot be read is empty.
    explicit MarkdownFile(const QString &fileName);

    /// The targets of links and pictures.
    QVector<Piece> links() const;
    /// What stands between backticks within the text.
    QVector<Piece> codeSpans() const;
    /// The same between a heading, as links name it, and the next one.
    QVector<Piece> codeSpansBelow(const QString &anchor) const;
    /// The lines of the code blocks in this language.
    QVector<Piece> codeLines(const QString &language) const;
    /// What links name the headings by.
    QStringList anchors() const;

private:
    struct Line
    {
        QString text;
        bool isCode;      // in a code block, or one of its borders
        QString language; // of the code block
    };

    QVector<Piece> matches(const char *pattern) const;
    // What links name a line by, if it is a heading.
    static QString anchorOf(const Line &line);

    QVector<Line> m_lines;
};
