// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// A file as a web server delivers it: opened for reading, a regular one in the server's folder, even if links lead to
/// it, and none that is hidden or in a hidden folder by a dot before its name.
class ServedFile
{
public:
    /// root is a canonical path, path what follows the server's name in an address. A folder stands for its index.html.
    ServedFile(const QString &root, const QString &path);
    ~ServedFile();
    ServedFile(const ServedFile &) = delete;
    ServedFile &operator=(const ServedFile &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    qint64 size() const { return m_size; }
    const char *contentType() const { return m_contentType; }
    /// The caller closes it.
    int takeDescriptor();

private:
    int m_descriptor = -1;
    qint64 m_size = 0;
    const char *m_contentType = nullptr;
};

/// The part of a file that a request asks for.
struct ByteRange
{
    enum Kind { Whole, Part, Outside };

    Kind kind;
    qint64 first;
    qint64 last;

    qint64 length() const { return last - first + 1; }
    /// header may be null. A header that makes no sense, or that asks for several parts, asks for the whole file.
    static ByteRange fromHeader(const char *header, qint64 size);
};
