// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// The box directory of a desk box, which has it for itself as long as this object lives.
class BoxDirectory
{
public:
    BoxDirectory() = default;
    ~BoxDirectory();
    BoxDirectory(const BoxDirectory &) = delete;
    BoxDirectory &operator=(const BoxDirectory &) = delete;

    /// Creates the directory if need be and takes it. Returns an ExitStatus, Done or the reason in *error.
    int open(const QString &path, QString *error);
    QString path() const { return m_path; }
    /// Gives a new box its files, if need be. Returns an ExitStatus; what is wrong has been said then.
    int fill() const;
    /// A port for the pages of this box, the same each time: a page's stored data belong to its address.
    quint16 port() const;

private:
    QString m_path;
    int m_lock = -1;
};
